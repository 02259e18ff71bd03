#include "kernel/ClassName.h"

namespace kernel {
namespace {

struct NamedClass {
  std::uint8_t classCode;
  // No pointer, which would have to be adjusted at each start of the program.
  char name[6];
};

constexpr NamedClass kClasses[] = {
    {0x00, ">ifc"},  {0x01, "audio"}, {0x02, "comm."}, {0x03, "HID"},   {0x05, "PID"},   {0x06, "still"},
    {0x07, "print"}, {0x08, "stor."}, {0x09, "hub"},   {0x0a, "data"},  {0x0b, "scard"}, {0x0d, "c-sec"},
    {0x0e, "video"}, {0x0f, "perhc"}, {0x10, "av"},    {0x11, "blbrd"}, {0x12, "bridg"}, {0xe0, "wlcon"},
    {0xef, "misc"},  {0xfe, "app."},  {0xff, "vend."},
};

}  // namespace

std::string_view ClassName(std::uint8_t classCode) {
  for (const NamedClass& named : kClasses) {
    if (named.classCode == classCode) return named.name;
  }
  return "unk.";
}

}  // namespace kernel
