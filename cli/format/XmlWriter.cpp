// libxml2's writer, owned; see the header.
#include "cli/format/XmlWriter.h"

#include <fmt/format.h>

#include <new>

#include "cli/text/Text.h"

namespace cli {

namespace {

const xmlChar* Xml(const char* text) {
  return reinterpret_cast<const xmlChar*>(text);
}

void Check(int result) {
  if (result < 0) throw std::bad_alloc();
}

bool IsForbidden(unsigned char byte) {
  return byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
}

/// What XML 1.0 has no character for, as U+FFFD; `text` is valid UTF-8.
std::string ReplaceForbidden(const std::string& text) {
  std::string fit;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::string three = text.substr(at, 3);
    if (three == "\xEF\xBF\xBE" || three == "\xEF\xBF\xBF") {
      fit += "\xEF\xBF\xBD";
      at += 2;
    } else if (IsForbidden(static_cast<unsigned char>(text[at]))) {
      fit += "\xEF\xBF\xBD";
    } else {
      fit += text[at];
    }
  }
  return fit;
}

/// What needs a reference where a reader of the plain document is not to meet it; the library knows what the
/// ASCII characters before it need.
bool NeedsReference(unsigned int control) {
  return control >= 0x7F;
}

}  // namespace

XmlWriter::XmlWriter() : fBuffer(xmlBufferCreate()) {
  if (fBuffer) fWriter.reset(xmlNewTextWriterMemory(fBuffer.get(), 0));
  if (!fWriter) throw std::bad_alloc();
  Check(xmlTextWriterSetIndent(fWriter.get(), 1));
  Check(xmlTextWriterStartDocument(fWriter.get(), nullptr, "UTF-8", nullptr));
}

void XmlWriter::Start(const char* element) {
  Check(xmlTextWriterStartElement(fWriter.get(), Xml(element)));
}

void XmlWriter::Attribute(const char* name, const std::string& value) {
  const std::string fit = ReplaceForbidden(ReplaceInvalidUtf8(value));
  Check(xmlTextWriterWriteAttribute(fWriter.get(), Xml(name), Xml(fit.c_str())));
}

void XmlWriter::Text(const std::string& text) {
  const std::string fit = ReplaceForbidden(ReplaceInvalidUtf8(text));
  std::string plain;
  for (std::size_t at = 0; at < fit.size();) {
    const std::size_t length = CharacterLength(fit[at]);
    const unsigned int control = ControlAt(fit, at);
    if (NeedsReference(control)) {
      WriteText(plain);
      plain.clear();
      Check(xmlTextWriterWriteRaw(fWriter.get(), Xml(fmt::format("&#x{:X};", control).c_str())));
    } else {
      plain.append(fit, at, length);
    }
    at += length;
  }
  WriteText(plain);
}

void XmlWriter::WriteText(const std::string& text) {
  Check(xmlTextWriterWriteString(fWriter.get(), Xml(text.c_str())));
}

void XmlWriter::End() {
  Check(xmlTextWriterFullEndElement(fWriter.get()));
}

std::string XmlWriter::Finish() {
  Check(xmlTextWriterEndDocument(fWriter.get()));
  Check(xmlTextWriterFlush(fWriter.get()));
  return std::string(reinterpret_cast<const char*>(xmlBufferContent(fBuffer.get())),
                     static_cast<std::size_t>(xmlBufferLength(fBuffer.get())));
}

}  // namespace cli
