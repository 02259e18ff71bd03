#include "kernel/ClassName.h"

namespace kernel {

std::string_view ClassName(std::uint8_t classCode) {
  switch (classCode) {
    case 0x00:
      return ">ifc";
    case 0x01:
      return "audio";
    case 0x02:
      return "comm.";
    case 0x03:
      return "HID";
    case 0x05:
      return "PID";
    case 0x06:
      return "still";
    case 0x07:
      return "print";
    case 0x08:
      return "stor.";
    case 0x09:
      return "hub";
    case 0x0a:
      return "data";
    case 0x0b:
      return "scard";
    case 0x0d:
      return "c-sec";
    case 0x0e:
      return "video";
    case 0x0f:
      return "perhc";
    case 0x10:
      return "av";
    case 0x11:
      return "blbrd";
    case 0x12:
      return "bridg";
    case 0xe0:
      return "wlcon";
    case 0xef:
      return "misc";
    case 0xfe:
      return "app.";
    case 0xff:
      return "vend.";
    default:
      return "unk.";
  }
}

}  // namespace kernel
