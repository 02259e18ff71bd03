#include "cli/text/Utf8.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace cli {

namespace {

/// A row of the Unicode Standard's Table 3-7, "Well-Formed UTF-8 Byte Sequences". Bytes from the third on are
/// always 80 to BF.
struct Form {
  unsigned char firstLead;
  unsigned char lastLead;
  unsigned char firstSecond;
  unsigned char lastSecond;
  std::size_t length;
};

constexpr Form kForms[] = {
    {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

/// None for a byte that begins no character.
const Form* FormOf(unsigned char lead) {
  const auto* const form = std::find_if(std::begin(kForms), std::end(kForms), [lead](const Form& row) {
    return row.firstLead <= lead && lead <= row.lastLead;
  });
  return form == std::end(kForms) ? nullptr : form;
}

bool IsContinuation(unsigned char byte, std::size_t at, const Form& form) {
  if (at == 1) return form.firstSecond <= byte && byte <= form.lastSecond;
  return 0x80 <= byte && byte <= 0xBF;
}

/// The bits of a lead byte that belong to the code point.
char32_t LeadBits(unsigned char lead, std::size_t length) {
  return length == 1 ? lead : lead & (0x7FU >> length);
}

constexpr char32_t kReplacementCode = 0xFFFD;

}  // namespace

Character FirstCharacter(std::string_view text) {
  constexpr unsigned int kBitsPerByte = 6;
  const auto lead = static_cast<unsigned char>(text.front());
  const Form* const form = FormOf(lead);
  if (form == nullptr) return {text.substr(0, 1), kReplacementCode, false};
  char32_t code = LeadBits(lead, form->length);
  for (std::size_t at = 1; at < form->length; ++at) {
    if (at == text.size() || !IsContinuation(static_cast<unsigned char>(text[at]), at, *form)) {
      return {text.substr(0, at), kReplacementCode, false};
    }
    code = (code << kBitsPerByte) | (static_cast<unsigned char>(text[at]) & 0x3FU);
  }
  return {text.substr(0, form->length), code, true};
}

void AppendByteEscapes(std::string_view bytes, std::string& out) {
  for (const char c : bytes) {
    fmt::format_to(std::back_inserter(out), "\\x{:02x}", static_cast<unsigned char>(c));
  }
}

void AppendUtf16Escape(std::string_view prefix, char32_t code, std::string& out) {
  constexpr char32_t kFirstBeyond = 0x10000;
  const auto append = [prefix, &out](unsigned int unit) {
    fmt::format_to(std::back_inserter(out), "{}{:04x}", prefix, unit);
  };
  if (code < kFirstBeyond) return append(code);
  append(0xD800U + ((code - kFirstBeyond) >> 10U));
  append(0xDC00U + ((code - kFirstBeyond) & 0x3FFU));
}

}  // namespace cli
