#include "ShownText.h"

namespace {

const char kHex[] = "0123456789abcdef";

}  // namespace

std::string ShownText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); i++) {
    auto c = static_cast<unsigned char>(text[i]);
    if (c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
        static_cast<unsigned char>(text[i + 1]) <= 0x9F) {
      auto code = static_cast<unsigned char>(text[++i]);
      out += "\\u00";
      out += kHex[code >> 4];
      out += kHex[code & 15];
    } else if ((c >= 0x20 && c != 0x7F) || c == '\t') {
      out += char(c);
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else {
      out += "\\x";
      out += kHex[c >> 4];
      out += kHex[c & 15];
    }
  }
  return out;
}
