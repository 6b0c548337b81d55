#include <gtest/gtest.h>

#include <cctype>
#include <cstring>

#include "platform/LastError.h"
#include "platform/SystemNames.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

TEST(SystemNamesConformance, UserNameSizeCountsTheNul) {
  char buffer[255] = {};
  uint32_t size = sizeof buffer;
  ASSERT_TRUE(GetUserNameA(buffer, &size));
  const auto length = static_cast<uint32_t>(std::strlen(buffer));
  EXPECT_GT(length, 0u);
  EXPECT_EQ(size, length + 1);

  char small[1] = {'\x01'};
  size = 1;
  EXPECT_FALSE(GetUserNameA(small, &size));
  EXPECT_EQ(GetLastError(), 122u);
  EXPECT_EQ(size, length + 1);
}

TEST(SystemNamesConformance, ComputerNameSizeLeavesTheNulOut) {
  char buffer[64] = {};
  uint32_t size = sizeof buffer;
  ASSERT_TRUE(GetComputerNameA(buffer, &size));
  const auto length = static_cast<uint32_t>(std::strlen(buffer));
  EXPECT_GT(length, 0u);
  EXPECT_EQ(size, length);
  for (char c : std::string(buffer)) EXPECT_FALSE(std::islower(static_cast<unsigned char>(c)));

  char small[1];
  size = 1;
  EXPECT_FALSE(GetComputerNameA(small, &size));
  EXPECT_EQ(GetLastError(), 111u);
  EXPECT_EQ(size, length + 1);
}

}  // namespace
}  // namespace kestrivon::test
