# Run by the build: makes the C++ source of cli/format/html/PageAssets.h from the page's style and script.
# cmake -DSTYLE=page.css -DSCRIPT=page.js -DOUTPUT=PageAssets.cpp -P EmbedPage.cmake

set(BASE64 "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")

# base64_of_hash(RESULT HEX): the 32 bytes of a SHA-256 sum, given as 64 hexadecimal digits, in base64.
function(base64_of_hash result hex)
  set(text "")
  # Three bytes make four digits; the last two bytes are padded with one that is left out again.
  foreach(at RANGE 0 60 6)
    string(SUBSTRING "${hex}0000" ${at} 6 three)
    foreach(shift 18 12 6 0)
      math(EXPR digit "(0x${three} >> ${shift}) & 63")
      string(SUBSTRING "${BASE64}" ${digit} 1 character)
      string(APPEND text "${character}")
    endforeach()
  endforeach()
  string(SUBSTRING "${text}" 0 43 text)
  set(${result} "${text}=" PARENT_SCOPE)
endfunction()

# asset(RESULT NAME FILE): the definition of one asset.
function(asset result name file)
  file(READ "${file}" content)
  set(text "/*<![CDATA[*/\n${content}/*]]>*/")
  string(SHA256 hash "${text}")
  base64_of_hash(base64 "${hash}")
  set(${result} "const PageAsset ${name} = {R\"asset(${text})asset\",\n  \"'sha256-${base64}'\"};\n" PARENT_SCOPE)
endfunction()

asset(STYLE_DEFINITION kPageStyle "${STYLE}")
asset(SCRIPT_DEFINITION kPageScript "${SCRIPT}")
file(WRITE "${OUTPUT}" "// Made by cli/format/html/EmbedPage.cmake from the page's style and script.\n#include \"cli/format/html/PageAssets.h\"\n\n"
                       "namespace cli {\n\n${STYLE_DEFINITION}\n${SCRIPT_DEFINITION}\n}  // namespace cli\n")
