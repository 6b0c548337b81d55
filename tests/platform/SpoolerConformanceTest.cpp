#include <gtest/gtest.h>

#include <algorithm>

#include "platform/Spooler.h"
#include "support/SeamFixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

TEST(SpoolerConformance, OpensPrintersByNameAndCountsTheirJobs) {
  TestPrinter printer("Kestrivon Test Printer", 7);
  if (!printer.Installed()) GTEST_SKIP() << "no printer driver to install a test printer with";
  const struct {
    const char* name;
    bool opens;
  } cases[] = {
      {"Kestrivon Test Printer", true},
      {"KESTRIVON test printer", true},
      {"Kestrivon Test Printer 2", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    OwnedPrinter opened;
    ASSERT_EQ(OpenPrinterByName(c.name, opened.Put()), c.opens);
    if (!c.opens) {
      EXPECT_FALSE(opened.Valid());
      EXPECT_EQ(GetLastError(), kErrorInvalidPrinterName);
      continue;
    }
    EXPECT_EQ(QueuedJobCount(opened.Get(), 5), std::min(printer.QueuedJobs(), 5u));
    EXPECT_EQ(QueuedJobCount(opened.Get(), 100), printer.QueuedJobs());
    EXPECT_EQ(PrinterStatus(opened.Get()), printer.QueuedJobs() > 0 ? 1u : 0u) << "paused or idle";
  }
}

TEST(SpoolerConformance, AHandleThatIsNoneIsRefused) {
  constexpr PrinterHandle kNone = 0x7FF0;
  EXPECT_FALSE(ClosePrinterHandle(kNone));
  EXPECT_EQ(GetLastError(), 6u);
  EXPECT_EQ(PrinterStatus(kNone), std::nullopt);
  EXPECT_EQ(QueuedJobCount(kNone, 5), 0u) << "no job can be listed";
}

}  // namespace
}  // namespace kestrivon::test
