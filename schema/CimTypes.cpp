#include "schema/CimTypes.h"

using Type = NKESTA20::TCIMValue::TCIMType;

namespace schema {

std::string CimTypeName(Type::ECIMType type) {
  switch (type) {
    case Type::kUint8:
      return "uint8";
    case Type::kUint16:
      return "uint16";
    case Type::kUint64:
      return "uint64";
    case Type::kReference:
      return "reference";
    default:
      return "string";
  }
}

}  // namespace schema
