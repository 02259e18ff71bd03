// The host's value types, TCIMValue and TCIMReference, over the stand-in's shared data.
#include <utility>

#include "host/TCIMReference.h"
#include "host/TCIMValue.h"
#include "standin/HostData.h"
#include "standin/HostEntry.h"
#include "standin/StatusCode.h"
#include "standin/ValueView.h"

using standin::HostEntry;
using standin::HostOperation;
using standin::Release;
using standin::Share;
using standin::StatusCode;
using standin::ValueData;

namespace NKESTA20 {

namespace {

const ValueData* MakeString(std::string text) {
  HostEntry::Pass(HostOperation::kMakeStringValue, text);
  return new ValueData(TCIMValue::TCIMType::kString, std::move(text));
}

const ValueData* MakeNumber(TCIMValue::TCIMType::ECIMType type, std::uint64_t number) {
  HostEntry::PassWith(HostOperation::kMakeNumberValue, [number] { return std::to_string(number); });
  return new ValueData(type, number);
}

const ValueData* MakeReferenceValue(const TCIMReference& path) {
  HostEntry::Pass(HostOperation::kMakeReferenceValue, standin::TextOf(path));
  return new ValueData(TCIMValue::TCIMType::kReference, path);
}

const ValueData* MakeStringArray(TCIMValue::TCIMType type, unsigned int count,
                                 const std::vector<TCIMValue>& elements) {
  HostEntry::PassWith(HostOperation::kMakeArrayValue, [count] { return std::to_string(count); });
  if (type.GetCode() != TCIMValue::TCIMType::kStringArray) Throw(StatusCode::kTypeMismatch);
  if (count != elements.size()) Throw(StatusCode::kInvalidParameter);
  std::vector<std::string> texts;
  texts.reserve(elements.size());
  for (const TCIMValue& element : elements) {
    if (standin::TypeOf(element) != TCIMValue::TCIMType::kString) Throw(StatusCode::kTypeMismatch);
    texts.push_back(standin::StringOf(element));
  }
  return new ValueData(TCIMValue::TCIMType::kStringArray, std::move(texts));
}

}  // namespace

TCIMValue::TCIMType::TCIMType(ECIMType code) : fCode(code) {}

TCIMValue::TCIMValue() = default;

TCIMValue::TCIMValue(const char* text) : fData(MakeString(text == nullptr ? "" : text)) {}

TCIMValue::TCIMValue(const std::string& text) : fData(MakeString(text)) {}

TCIMValue::TCIMValue(unsigned char number) : fData(MakeNumber(TCIMType::kUint8, number)) {}

TCIMValue::TCIMValue(unsigned short number) : fData(MakeNumber(TCIMType::kUint16, number)) {}

TCIMValue::TCIMValue(unsigned long number) : fData(MakeNumber(TCIMType::kUint64, number)) {}

TCIMValue::TCIMValue(TCIMReference& path) : fData(MakeReferenceValue(path)) {}

TCIMValue::TCIMValue(TCIMType type, unsigned int count, const std::vector<TCIMValue>& elements)
    : fData(MakeStringArray(type, count, elements)) {}

TCIMValue::TCIMValue(const TCIMValue& other) : fData(Share(HostData::Of(other))) {}

TCIMValue& TCIMValue::operator=(const TCIMValue& other) {
  TCIMValue copy(other);
  std::swap(fData, copy.fData);
  return *this;
}

TCIMValue::~TCIMValue() {
  Release(HostData::Of(*this));
}

bool TCIMValue::IsNull() const {
  HostEntry::Pass(HostOperation::kIsNull);
  return fData == nullptr;
}

TCIMValue::operator std::string() const {
  HostEntry::Pass(HostOperation::kConvertToString);
  return standin::TextOf(*this);
}

TCIMValue::operator unsigned short() const {
  HostEntry::Pass(HostOperation::kConvertToNumber);
  const ValueData* const data = HostData::Of(*this);
  const auto* const number = data == nullptr ? nullptr : std::get_if<std::uint64_t>(&data->content);
  if (number == nullptr || *number > 0xFFFF) Throw(StatusCode::kTypeMismatch);
  return static_cast<unsigned short>(*number);
}

TCIMReference::TCIMReference() = default;

TCIMReference::TCIMReference(const TCIMReference& other) : fData(Share(HostData::Of(other))) {}

TCIMReference& TCIMReference::operator=(const TCIMReference& other) {
  TCIMReference copy(other);
  std::swap(fData, copy.fData);
  return *this;
}

TCIMReference::~TCIMReference() {
  Release(HostData::Of(*this));
}

bool TCIMReference::operator==(const TCIMReference& other) const {
  HostEntry::Pass(HostOperation::kCompareReferences, standin::TextOf(*this));
  return standin::TextOf(*this) == standin::TextOf(other);
}

}  // namespace NKESTA20
