// The host's typed value: null, a string, an unsigned number, a reference or an array of these. Declared
// here, defined by the host, which also defines what a copy is. The plug-in builds values for the properties
// it sets and reads numbers and texts back.
#pragma once

#include <string>
#include <vector>

#include "host/HostApi.h"

namespace NKESTA20 {

class TCIMReference;

class USBINFO_HOST_API TCIMValue {
 public:
  /// The type of a value. The codes are the host's; the plug-in names only 13, the array of strings.
  class USBINFO_HOST_API TCIMType {
   public:
    enum ECIMType {
      kNull = 0,
      kUint8 = 1,
      kUint16 = 2,
      kUint64 = 4,
      kString = 8,
      kReference = 10,
      kStringArray = 13,
    };

    TCIMType(ECIMType code);  // NOLINT(google-explicit-constructor): the enumerator stands for the type

    ECIMType GetCode() const { return fCode; }

   private:
    ECIMType fCode;
  };

  /// The null value.
  TCIMValue();
  /// A string value; a null pointer gives the empty string.
  explicit TCIMValue(const char* text);
  explicit TCIMValue(const std::string& text);
  explicit TCIMValue(unsigned char number);
  explicit TCIMValue(unsigned short number);
  explicit TCIMValue(unsigned long number);
  /// A reference to the object that `path` names.
  explicit TCIMValue(TCIMReference& path);
  /// An array of `count` values of the element type that `type` implies.
  TCIMValue(TCIMType type, unsigned int count, const std::vector<TCIMValue>& elements);
  TCIMValue(const TCIMValue& other);
  TCIMValue& operator=(const TCIMValue& other);
  ~TCIMValue();

  bool IsNull() const;
  /// The value as text, in the host's rendering.
  operator std::string() const;  // NOLINT(google-explicit-constructor): the host's conversion is implicit
  /// The number, 0 to 65535; throws TQSVException when the value is not a number of that range.
  operator unsigned short() const;  // NOLINT(google-explicit-constructor): as above

 private:
  friend class HostData;
  const void* fData = nullptr;
};

}  // namespace NKESTA20
