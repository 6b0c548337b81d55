// "RevisionSleeper" values of any type and size under the machine's and the
// user's key, read with GetValue and by GetRevisionSleeper. The input is a
// list of records "<M|U> <type> <byte count>:<bytes>".

#include <charconv>

#include "FuzzSupport.h"
#include "RecordingHost.h"
#include "platform/portable/Registry.h"
#include "services/RegistrySettings.h"

namespace {

using namespace kestrivon;
namespace pp = platform::portable;

constexpr const char* kKey = "Software\\HALDRIM\\VEMRA";
constexpr const char* kName = "RevisionSleeper";

// Stores the records; a malformed one ends the list.
void Store(std::string_view text) {
  while (!text.empty()) {
    const size_t start = text.find_first_not_of(" \r\n");
    if (start == std::string_view::npos || start + 2 >= text.size()) return;
    const platform::HKey hive =
        text[start] == 'M' ? platform::kHKeyLocalMachine : platform::kHKeyCurrentUser;
    const char* end = text.data() + text.size();
    uint32_t type = 0;
    size_t count = 0;
    const auto typeRead = std::from_chars(text.data() + start + 2, end, type);
    if (typeRead.ec != std::errc() || typeRead.ptr == end) return;
    const auto countRead = std::from_chars(typeRead.ptr + 1, end, count);
    const char* at = countRead.ptr;
    if (countRead.ec != std::errc() || at == end || *at != ':') return;
    const std::string_view bytes(at + 1, std::min<size_t>(count, end - at - 1));
    pp::SetRegistryValue(pp::ProcessRegistryView(), hive, kKey, kName, type, std::string(bytes));
    text.remove_prefix(static_cast<size_t>(at + 1 - text.data()) + bytes.size());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  pp::ClearRegistry();
  Store(fuzz::AsText(data, size));
  const test::RecordingHost host;  // also forgets the cached sleeper
  for (const int32_t hive : {kHKeyLocalMachine, kHKeyCurrentUser}) {
    Variant value;
    GetValue(hive, kKey, kName, value);
  }
  const int32_t first = GetRevisionSleeper();
  if (first >= 1 && GetRevisionSleeper() != first) fuzz::Fail("the cached sleeper changed");
  if (pp::OpenRegistryHandles() != 0) fuzz::Fail("a registry key was left open");
  return 0;
}
