// Cuts a stream into documents, each as soon as it is complete, whatever the length of the stream.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace store {

struct Document {
  /// Its beginning where it is too long or cannot be JSON.
  std::string text;
  /// It has more bytes than kLongestDocument.
  bool isTooLong = false;
};

class DocumentSplitter {
 public:
  static constexpr std::size_t kLongestDocument = std::size_t{64} << 20;

  enum class Framing {
    /// A document is a line, also an empty one.
    kLines,
    /// A document begins with a brace and ends with the one that belongs to it, on whichever line. One that
    /// is cut off ends before the next line that begins with a brace, as does anything else.
    kBraces
  };

  /// Calls `take` with each document, without blanks before it. `longest` is the limit.
  DocumentSplitter(Framing framing, std::function<void(const Document&)> take,
                   std::size_t longest = kLongestDocument)
      : fFraming(framing), fTake(std::move(take)), fLongest(longest) {}

  /// The next part of the stream.
  void Take(std::string_view bytes);
  /// The stream has ended.
  void Finish();

 private:
  /// How many bytes at the beginning of `bytes` only make the document longer.
  std::size_t PlainBytes(std::string_view bytes) const;
  void TakeOne(char c);
  void TakeInLine(char c);
  void TakeInBraces(char c);
  void Follow(char c);
  void Keep(char c);
  void Emit();

  Framing fFraming;
  std::function<void(const Document&)> fTake;
  std::size_t fLongest;
  Document fDocument;
  /// Of a document that begins with a brace.
  std::size_t fDepth = 0;
  bool fIsInString = false;
  bool fIsEscaped = false;
  bool fIsAtLineStart = true;
};

}  // namespace store
