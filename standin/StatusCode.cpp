#include "standin/StatusCode.h"

#include "host/TQSVException.h"
#include "host/TQSVStatusCode.h"
#include "standin/HostEntry.h"

namespace {

struct StatusEntry {
  unsigned int code;
  const char* name;
};

constexpr StatusEntry kFailedEntry = {1, "CIM_ERR_FAILED"};

constexpr StatusEntry kStatusTable[] = {
    kFailedEntry,
    {2, "CIM_ERR_ACCESS_DENIED"},
    {3, "CIM_ERR_INVALID_NAMESPACE"},
    {4, "CIM_ERR_INVALID_PARAMETER"},
    {5, "CIM_ERR_INVALID_CLASS"},
    {6, "CIM_ERR_NOT_FOUND"},
    {7, "CIM_ERR_NOT_SUPPORTED"},
    {8, "CIM_ERR_CLASS_HAS_CHILDREN"},
    {9, "CIM_ERR_CLASS_HAS_INSTANCES"},
    {10, "CIM_ERR_INVALID_SUPERCLASS"},
    {11, "CIM_ERR_ALREADY_EXISTS"},
    {12, "CIM_ERR_NO_SUCH_PROPERTY"},
    {13, "CIM_ERR_TYPE_MISMATCH"},
    {14, "CIM_ERR_QUERY_LANGUAGE_NOT_SUPPORTED"},
    {15, "CIM_ERR_INVALID_QUERY"},
    {16, "CIM_ERR_METHOD_NOT_AVAILABLE"},
    {17, "CIM_ERR_METHOD_NOT_FOUND"},
};

const StatusEntry* FindEntry(unsigned int code) {
  for (const StatusEntry& entry : kStatusTable) {
    if (entry.code == code) return &entry;
  }
  return &kFailedEntry;
}

}  // namespace

namespace NKESTA20 {

TQSVStatusCode::TQSVStatusCode(unsigned int code) : fData(FindEntry(code)) {}

std::string TQSVStatusCode::TranslateStatusCode() const {
  const char* const name = static_cast<const StatusEntry*>(fData)->name;
  standin::HostEntry::PassWith(standin::HostOperation::kTranslateStatusCode,
                               [name] { return std::string(name); });
  return name;
}

}  // namespace NKESTA20

namespace standin {

void Throw(StatusCode code) {
  throw NKESTA20::TQSVException(NKESTA20::TQSVStatusCode(static_cast<unsigned int>(code)));
}

}  // namespace standin
