#include <gtest/gtest.h>

#include <cctype>
#include <cstring>

#include "platform/LastError.h"
#include "platform/SystemNames.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

// The user name's size counts its NUL, the computer name's leaves it out
// (and is upper case); a buffer too small fails with the size wanted.
TEST(SystemNamesConformance, SizesAndTooSmallBuffers) {
  const struct {
    const char* what;
    bool (*get)(char*, uint32_t*);
    uint32_t nul;
    uint32_t tooSmall;
  } kNames[] = {{"user", GetUserNameA, 1, 122}, {"computer", GetComputerNameA, 0, 111}};
  for (const auto& c : kNames) {
    SCOPED_TRACE(c.what);
    char buffer[255] = {};
    uint32_t size = sizeof buffer;
    ASSERT_TRUE(c.get(buffer, &size));
    const auto length = static_cast<uint32_t>(std::strlen(buffer));
    EXPECT_GT(length, 0u);
    EXPECT_EQ(size, length + c.nul);
    if (c.nul == 0) {
      for (char ch : std::string(buffer))
        EXPECT_FALSE(std::islower(static_cast<unsigned char>(ch)));
    }
    char small[1] = {'\x01'};
    size = 1;
    EXPECT_FALSE(c.get(small, &size));
    EXPECT_EQ(GetLastError(), c.tooSmall);
    EXPECT_EQ(size, length + 1);
  }
}

}  // namespace
}  // namespace kestrivon::test
