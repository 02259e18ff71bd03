// The style and the script of the HTML page. The build makes them from the files in cli/html, wrapped so that
// an XML parser takes them for text.
#pragma once

namespace cli {

struct PageAsset {
  /// The text between the tags.
  const char* text;
  /// Its hash as a source of a content security policy: 'sha256-...'.
  const char* source;
};

extern const PageAsset kPageStyle;
extern const PageAsset kPageScript;

}  // namespace cli
