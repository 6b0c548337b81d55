#include "platform/AnsiText.h"

#include "platform/win/Text.h"
#include "runtime/Text.h"

namespace kestrivon::platform {
namespace {

int Utf8Length(wchar_t c) { return c < 0x80 ? 1 : c < 0x800 ? 2 : 3; }

}  // namespace

std::string ToAnsiCodePage(const std::string& utf8) { return win::ToAnsi(utf8); }
std::string FromAnsiCodePage(const std::string& ansi) { return win::FromAnsi(ansi); }

std::string LowerAnsiLetters(const std::string& utf8) {
  std::wstring wide = win::ToWide(utf8);
  for (wchar_t& c : wide) {
    if (c < 0x80) {
      if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
      continue;
    }
    // A character of the code page is one byte there, lowered by the code
    // page's own rules.
    char ansi = 0;
    BOOL defaulted = FALSE;
    if (::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, &c, 1, &ansi, 1, nullptr, &defaulted) !=
            1 ||
        defaulted) {
      continue;
    }
    ::CharLowerBuffA(&ansi, 1);
    wchar_t lower = 0;
    if (::MultiByteToWideChar(CP_ACP, 0, &ansi, 1, &lower, 1) == 1 &&
        Utf8Length(lower) == Utf8Length(c)) {
      c = lower;
    }
  }
  std::string lower = win::FromWide(wide.c_str(), static_cast<int>(wide.size()));
  // Text that is no valid UTF-8 changes its length on the way: ASCII only.
  return lower.size() == utf8.size() ? lower : LowerAscii(utf8);
}

}  // namespace kestrivon::platform
