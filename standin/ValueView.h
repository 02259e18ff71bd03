// Typed access to values and object paths for programs that run the stand-in; the host's own types convert
// only to text and small numbers. Reading does not call the observer of HostSeam, since it is not an
// operation of the plug-in.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/TCIMReference.h"
#include "host/TCIMValue.h"
#include "standin/Export.h"

namespace standin {

USBINFO_STANDIN_EXPORT NKESTA20::TCIMValue::TCIMType::ECIMType TypeOf(const NKESTA20::TCIMValue& value);

/// The content of a value of the matching type; each throws std::bad_variant_access for another one.
USBINFO_STANDIN_EXPORT std::uint64_t NumberOf(const NKESTA20::TCIMValue& value);
USBINFO_STANDIN_EXPORT const std::string& StringOf(const NKESTA20::TCIMValue& value);
USBINFO_STANDIN_EXPORT const std::vector<std::string>& StringsOf(const NKESTA20::TCIMValue& value);
USBINFO_STANDIN_EXPORT const NKESTA20::TCIMReference& ReferenceOf(const NKESTA20::TCIMValue& value);

/// A value as text: strings unchanged, numbers in decimal, arrays as `{a, b}`, references as their path, null
/// empty.
USBINFO_STANDIN_EXPORT std::string TextOf(const NKESTA20::TCIMValue& value);

USBINFO_STANDIN_EXPORT const std::string& ClassNameOf(const NKESTA20::TCIMReference& path);
/// The key values, ascending by name.
USBINFO_STANDIN_EXPORT const std::vector<std::pair<std::string, NKESTA20::TCIMValue>>& KeysOf(
    const NKESTA20::TCIMReference& path);
/// The path as text: `Class.Key="value",...`; empty for an empty path.
USBINFO_STANDIN_EXPORT const std::string& TextOf(const NKESTA20::TCIMReference& path);

/// A path from its parts; `keys` in any order.
USBINFO_STANDIN_EXPORT NKESTA20::TCIMReference MakePath(
    const std::string& className, std::vector<std::pair<std::string, NKESTA20::TCIMValue>> keys);

}  // namespace standin
