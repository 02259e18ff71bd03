// An identity of the machine that says nothing to other programs.
#pragma once

#include <optional>
#include <string>

namespace cli {

/// 32 hexadecimal digits: the beginning of the HMAC-SHA-256 of a text of ours, keyed with the content of
/// /etc/machine-id, which programs are to keep to themselves. Nothing where that file is missing or holds no
/// id.
std::optional<std::string> MachineIdHash(const std::string& path = "/etc/machine-id");

}  // namespace cli
