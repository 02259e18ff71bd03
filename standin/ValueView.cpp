#include "standin/ValueView.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <variant>

#include "standin/HostData.h"

using NKESTA20::HostData;
using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;

namespace standin {

namespace {

const ReferenceData& DataOf(const TCIMReference& path) {
  static const ReferenceData kEmpty;
  const ReferenceData* const data = HostData::Of(path);
  return data == nullptr ? kEmpty : *data;
}

template <typename Content>
const Content& ContentOf(const TCIMValue& value) {
  const ValueData* const data = HostData::Of(value);
  if (data == nullptr) throw std::bad_variant_access();
  return std::get<Content>(data->content);
}

bool IsPlain(const std::string& text) {
  return text.find('"') == std::string::npos && text.find('\\') == std::string::npos;
}

void AppendEscaped(const std::string& text, std::string& out) {
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
}

void AppendQuoted(const std::string& text, std::string& out) {
  out += '"';
  if (IsPlain(text)) {
    out += text;
  } else {
    AppendEscaped(text, out);
  }
  out += '"';
}

void AppendKeyText(const TCIMValue& value, std::string& out) {
  const ValueData* const data = HostData::Of(value);
  const bool isNumber = data != nullptr && std::holds_alternative<std::uint64_t>(data->content);
  if (isNumber) {
    out += TextOf(value);
  } else {
    AppendQuoted(TextOf(value), out);
  }
}

std::string PathText(const ReferenceData& data) {
  std::string text = data.className;
  char separator = '.';
  for (const auto& [name, value] : data.keys) {
    text.append(1, separator).append(name).append(1, '=');
    AppendKeyText(value, text);
    separator = ',';
  }
  return text;
}

struct ContentText {
  std::string operator()(std::uint64_t number) const { return std::to_string(number); }
  std::string operator()(const std::string& text) const { return text; }
  std::string operator()(const TCIMReference& path) const { return TextOf(path); }
  std::string operator()(const std::vector<std::string>& elements) const {
    std::string text;
    for (const std::string& element : elements) {
      text += (&element == &elements.front() ? "" : ", ") + element;
    }
    return "{" + text + "}";
  }
};

}  // namespace

TCIMValue::TCIMType::ECIMType TypeOf(const TCIMValue& value) {
  const ValueData* const data = HostData::Of(value);
  return data == nullptr ? TCIMValue::TCIMType::kNull : data->type;
}

std::uint64_t NumberOf(const TCIMValue& value) {
  return ContentOf<std::uint64_t>(value);
}

const std::string& StringOf(const TCIMValue& value) {
  return ContentOf<std::string>(value);
}

const std::vector<std::string>& StringsOf(const TCIMValue& value) {
  return ContentOf<std::vector<std::string>>(value);
}

const TCIMReference& ReferenceOf(const TCIMValue& value) {
  return ContentOf<TCIMReference>(value);
}

std::string TextOf(const TCIMValue& value) {
  const ValueData* const data = HostData::Of(value);
  return data == nullptr ? std::string() : std::visit(ContentText(), data->content);
}

const std::string& ClassNameOf(const TCIMReference& path) {
  return DataOf(path).className;
}

const std::vector<std::pair<std::string, TCIMValue>>& KeysOf(const TCIMReference& path) {
  return DataOf(path).keys;
}

const std::string& TextOf(const TCIMReference& path) {
  return DataOf(path).text;
}

TCIMReference MakePath(const std::string& className, std::vector<std::pair<std::string, TCIMValue>> keys) {
  const auto byName = [](const auto& left, const auto& right) { return left.first < right.first; };
  std::sort(keys.begin(), keys.end(), byName);
  auto data = std::make_unique<ReferenceData>();
  data->className = className;
  data->keys = std::move(keys);
  data->text = PathText(*data);
  return HostData::MakeReference(data.release());
}

}  // namespace standin
