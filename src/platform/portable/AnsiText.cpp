#include "platform/AnsiText.h"

namespace kestrivon::platform {
namespace {

// The lower case of a capital letter of the European ANSI code pages
// (Latin, Greek, Cyrillic), all of which this side's UTF-8 holds. Each
// pair is two bytes long in UTF-8 on both sides.
char32_t LowerLetter(char32_t c) {
  const bool even = c % 2 == 0;
  if ((c >= 0xC0 && c <= 0xDE && c != 0xD7) || (c >= 0x391 && c <= 0x3AB && c != 0x3A2) ||
      (c >= 0x410 && c <= 0x42F)) {
    return c + 0x20;
  }
  if (c >= 0x400 && c <= 0x40F) return c + 0x50;
  if (c == 0x178) return 0xFF;  // Ÿ
  if ((c >= 0x100 && c <= 0x137 && even && c != 0x130) || (c >= 0x139 && c <= 0x148 && !even) ||
      (c >= 0x14A && c <= 0x177 && even) || (c >= 0x179 && c <= 0x17E && !even) || c == 0x490) {
    return c + 1;
  }
  return c;
}

}  // namespace

// The portable side's ANSI code page is UTF-8, as a Linux locale has it.
std::string ToAnsiCodePage(const std::string& utf8) { return utf8; }
std::string FromAnsiCodePage(const std::string& ansi) { return ansi; }

std::string LowerAnsiLetters(const std::string& utf8) {
  std::string lower(utf8);
  for (size_t i = 0; i < lower.size(); ++i) {
    const auto lead = static_cast<unsigned char>(lower[i]);
    if (lead >= 'A' && lead <= 'Z') {
      lower[i] = static_cast<char>(lead - 'A' + 'a');
    } else if (lead >= 0xC2 && lead <= 0xDF && i + 1 < lower.size() &&
               (static_cast<unsigned char>(lower[i + 1]) & 0xC0) == 0x80) {
      const auto trail = static_cast<unsigned char>(lower[i + 1]);
      const char32_t letter =
          LowerLetter(static_cast<char32_t>(((lead & 0x1F) << 6) | (trail & 0x3F)));
      lower[i] = static_cast<char>(0xC0 | (letter >> 6));
      lower[++i] = static_cast<char>(0x80 | (letter & 0x3F));
    }
  }
  return lower;
}

}  // namespace kestrivon::platform
