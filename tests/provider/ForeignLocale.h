// Locales as a host may have set them, each in force for the lifetime of one object, which puts back what
// was there before. Results of the plug-in must not depend on them.
#pragma once

#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <locale>
#include <string>

namespace usbinfo_test {

/// Groups thousands with a comma.
class GroupingNumbers : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

/// Has '_' as its only blank, and converts to lower case as Turkish does: the capital of 'i' is not 'I' but a
/// byte above 127.
class ForeignLetters : public std::ctype<char> {
 public:
  ForeignLetters() : std::ctype<char>(Table()) {}

 protected:
  char do_tolower(char c) const override {
    if (c == 'I') return '\xFD';
    if (c == '\xDD') return 'i';
    return std::ctype<char>::do_tolower(c);
  }
  const char* do_tolower(char* first, const char* last) const override {
    for (; first != last; ++first) *first = do_tolower(*first);
    return last;
  }

 private:
  static const mask* Table() {
    static mask table[table_size];
    for (std::size_t i = 0; i < table_size; ++i) table[i] = classic_table()[i] & static_cast<mask>(~space);
    table[static_cast<std::size_t>('_')] = space;
    return table;
  }
};

/// The global C++ locale replaced by one with the facets above.
class ForeignGlobalLocale {
 public:
  ForeignGlobalLocale()
      : fBefore(std::locale::global(
            std::locale(std::locale(std::locale::classic(), new GroupingNumbers), new ForeignLetters))) {}
  ForeignGlobalLocale(const ForeignGlobalLocale&) = delete;
  ForeignGlobalLocale& operator=(const ForeignGlobalLocale&) = delete;
  ~ForeignGlobalLocale() { std::locale::global(fBefore); }

 private:
  std::locale fBefore;
};

/// The C library's locale replaced by a Turkish one of single bytes, where the machine could make it.
class ForeignCLocale {
 public:
  ForeignCLocale() {
#ifdef FOREIGN_LOCALE_DIR
    setenv("LOCPATH", FOREIGN_LOCALE_DIR, 1);
    fIsSet = std::setlocale(LC_ALL, "tr_TR.iso88599") != nullptr;
    unsetenv("LOCPATH");
#endif
  }
  ForeignCLocale(const ForeignCLocale&) = delete;
  ForeignCLocale& operator=(const ForeignCLocale&) = delete;
  ~ForeignCLocale() {
    std::setlocale(LC_ALL, "C");
  }

  bool IsSet() const {
    return fIsSet;
  }

 private:
  bool fIsSet = false;
};

}  // namespace usbinfo_test
