// The nodes that reports are collected from: which host each is, and why the last report could not be had.
#pragma once

#include <string>

#include "store/Database.h"
#include "store/TimeText.h"

namespace store {

/// The node gave a report of `host`.
void RecordNode(Database& database, const std::string& node, const std::string& host, Seconds now);

/// The node gave no report; which host it is stays known. Both throw DatabaseError.
void RecordFailure(Database& database, const std::string& node, const std::string& reason, Seconds now);

}  // namespace store
