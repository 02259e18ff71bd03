#include "store/DocumentSplitter.h"

#include <algorithm>
#include <utility>

namespace store {

namespace {

/// What is kept of a text that is no document, to show what it is.
constexpr std::size_t kHeadBytes = 4096;

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool MattersInString(char c) {
  return c == '"' || c == '\\' || c == '\n';
}

bool MattersOutsideStrings(char c) {
  return c == '"' || c == '{' || c == '}' || c == '\n';
}

}  // namespace

void DocumentSplitter::Take(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t plain = PlainBytes(bytes);
    fDocument.text += bytes.substr(0, plain);
    if (plain < bytes.size()) TakeOne(bytes[plain]);
    bytes.remove_prefix(std::min(plain + 1, bytes.size()));
  }
}

std::size_t DocumentSplitter::PlainBytes(std::string_view bytes) const {
  const std::string& text = fDocument.text;
  if (text.empty() || text.front() != '{' || text.size() + bytes.size() > fLongest) return 0;
  if (fFraming == Framing::kLines) return std::min(bytes.find('\n'), bytes.size());
  if (fIsAtLineStart || fIsEscaped) return 0;
  const auto* const end = fIsInString ? std::find_if(bytes.begin(), bytes.end(), MattersInString)
                                      : std::find_if(bytes.begin(), bytes.end(), MattersOutsideStrings);
  return static_cast<std::size_t>(end - bytes.begin());
}

void DocumentSplitter::TakeOne(char c) {
  if (fFraming == Framing::kLines) {
    TakeInLine(c);
  } else {
    TakeInBraces(c);
  }
}

void DocumentSplitter::Finish() {
  if (!fDocument.text.empty()) Emit();
}

void DocumentSplitter::TakeInLine(char c) {
  if (c == '\n') {
    Emit();
  } else if (!fDocument.text.empty() || !IsBlank(c)) {
    Keep(c);
  }
}

void DocumentSplitter::TakeInBraces(char c) {
  if (fIsAtLineStart && c == '{') Finish();
  fIsAtLineStart = c == '\n';
  if (fDocument.text.empty() && IsBlank(c)) return;
  Keep(c);
  if (fDocument.text.front() != '{') return;
  Follow(c);
  if (fDepth == 0) Emit();
}

void DocumentSplitter::Follow(char c) {
  if (fIsInString) {
    if (c == '"' && !fIsEscaped) fIsInString = false;
    fIsEscaped = c == '\\' && !fIsEscaped;
  } else if (c == '"') {
    fIsInString = true;
  } else if (c == '{') {
    ++fDepth;
  } else if (c == '}') {
    --fDepth;
  }
}

void DocumentSplitter::Keep(char c) {
  const bool mayBeDocument = fDocument.text.empty() ? c == '{' : fDocument.text.front() == '{';
  if (fDocument.text.size() < (mayBeDocument ? fLongest : kHeadBytes)) {
    fDocument.text += c;
  } else if (mayBeDocument) {
    fDocument.isTooLong = true;
  }
}

void DocumentSplitter::Emit() {
  Document document = std::exchange(fDocument, {});
  if (document.isTooLong) document.text = document.text.substr(0, kHeadBytes);
  fDepth = 0;
  fIsInString = false;
  fIsEscaped = false;
  fTake(document);
}

}  // namespace store
