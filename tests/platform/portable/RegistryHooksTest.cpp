#include <gtest/gtest.h>

#include "platform/Registry.h"
#include "platform/portable/Registry.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;
using portable::RegistryView;

class RegistryHooks : public ::testing::Test {
 protected:
  void SetUp() override { portable::ClearRegistry(); }
  void TearDown() override {
    portable::ClearRegistry();
    portable::SetProcessRegistryView(RegistryView::k32);
  }
};

TEST_F(RegistryHooks, TheDeployedComponentSeesTheThirtyTwoBitView) {
  EXPECT_EQ(portable::ProcessRegistryView(), RegistryView::k32);
  portable::SetRegistryString(RegistryView::k32, kHKeyLocalMachine, "Software\\Vendor", "V", "32");
  EXPECT_TRUE(portable::RegistryKeyExists(RegistryView::k64, kHKeyLocalMachine,
                                          "Software\\Wow6432Node\\Vendor"));
  EXPECT_FALSE(
      portable::RegistryKeyExists(RegistryView::k64, kHKeyLocalMachine, "Software\\Vendor"));
  HKey key = 0;
  EXPECT_EQ(RegOpenKeyExA(kHKeyLocalMachine, "Software\\Vendor", 0, 0x19, &key), kErrorSuccess);
  RegCloseKey(key);
  EXPECT_EQ(RegOpenKeyExA(kHKeyLocalMachine, "Software\\Wow6432Node\\Vendor", 0, 0x119, &key),
            kErrorSuccess);
  RegCloseKey(key);
  portable::SetProcessRegistryView(RegistryView::k64);
  EXPECT_EQ(RegOpenKeyExA(kHKeyLocalMachine, "Software\\Vendor", 0, 0x19, &key),
            kErrorFileNotFound);
}

TEST_F(RegistryHooks, ValuesAreStoredAsTheyWouldBeWritten) {
  portable::SetRegistryString(RegistryView::k32, kHKeyCurrentUser, "Software\\A", "S", "abc");
  portable::SetRegistryDword(RegistryView::k32, kHKeyCurrentUser, "Software\\A", "D", 0x01020304);
  auto text = portable::RegistryValueOf(RegistryView::k64, kHKeyCurrentUser, "software\\a", "s");
  ASSERT_TRUE(text);
  EXPECT_EQ(text->type, kRegSz);
  EXPECT_EQ(text->bytes, std::string("abc\0", 4));
  auto number = portable::RegistryValueOf(RegistryView::k32, kHKeyCurrentUser, "Software\\A", "D");
  ASSERT_TRUE(number);
  EXPECT_EQ(number->bytes, std::string("\x04\x03\x02\x01", 4));
  EXPECT_FALSE(portable::RegistryValueOf(RegistryView::k32, kHKeyCurrentUser, "Software\\A", "X"));
}

TEST_F(RegistryHooks, HandlesAreCountedUntilClosed) {
  portable::CreateRegistryKey(RegistryView::k32, kHKeyCurrentUser, "Software\\A");
  HKey a = 0;
  HKey b = 0;
  ASSERT_EQ(RegOpenKeyExA(kHKeyCurrentUser, "Software\\A", 0, 0x19, &a), kErrorSuccess);
  ASSERT_EQ(RegOpenKeyExA(kHKeyCurrentUser, "Software\\A", 0, 0x19, &b), kErrorSuccess);
  EXPECT_NE(a, b);
  EXPECT_EQ(portable::OpenRegistryHandles(), 2u);
  RegCloseKey(a);
  RegCloseKey(b);
  EXPECT_EQ(portable::OpenRegistryHandles(), 0u);
  EXPECT_EQ(RegCloseKey(a), kErrorInvalidHandle);
}

}  // namespace
}  // namespace kestrivon::test
