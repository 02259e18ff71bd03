// Reading values and object paths as what they are, for those who run the stand-in: the host's own types
// only turn into text and small numbers. Reading does not pass the seam, for it is not the plug-in's doing.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/TCIMReference.h"
#include "host/TCIMValue.h"

namespace standin {

NKESTA20::TCIMValue::TCIMType::ECIMType TypeOf(const NKESTA20::TCIMValue& value);

/// The content of a value of the matching type; each throws std::bad_variant_access for another one.
std::uint64_t NumberOf(const NKESTA20::TCIMValue& value);
const std::string& StringOf(const NKESTA20::TCIMValue& value);
const std::vector<std::string>& StringsOf(const NKESTA20::TCIMValue& value);
const NKESTA20::TCIMReference& ReferenceOf(const NKESTA20::TCIMValue& value);

/// A value as text: strings unchanged, numbers in decimal, arrays as `{a, b}`, references as their path, null
/// empty.
std::string TextOf(const NKESTA20::TCIMValue& value);

const std::string& ClassNameOf(const NKESTA20::TCIMReference& path);
/// The key values, ascending by name.
const std::vector<std::pair<std::string, NKESTA20::TCIMValue>>& KeysOf(const NKESTA20::TCIMReference& path);
/// The path as text: `Class.Key="value",...`; empty for an empty path.
const std::string& TextOf(const NKESTA20::TCIMReference& path);

/// A path from its parts; `keys` in any order.
NKESTA20::TCIMReference MakePath(const std::string& className,
                                 std::vector<std::pair<std::string, NKESTA20::TCIMValue>> keys);

}  // namespace standin
