#include <gtest/gtest.h>

#include <filesystem>

#include "FakeHost.h"
#include "printers/pdf/NoFile.h"

namespace kestrivon::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDoPrintLine =
    "VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> nothing to do";

TEST(NoFile, RunsAWholeRevisionWithoutTouchingAFile) {
  FakeHost host;
  const fs::path folder = fs::temp_directory_path() / "kestrivon-nofile-test";
  fs::remove_all(folder);
  fs::create_directories(folder);
  NoFile printer;
  EXPECT_TRUE(printer.InitPrnSettings());
  EXPECT_EQ(printer.CheckPrnSettings(), "");
  EXPECT_TRUE(printer.IsPrinterAvailable());
  EXPECT_TRUE(printer.SetPrnDefaults());
  EXPECT_TRUE(printer.DoPrint(nullptr, nullptr, folder.string(), "A-100"));
  EXPECT_TRUE(printer.AppendFile((folder / "missing.pdf").string(), (folder / "A-100").string()));
  EXPECT_TRUE(fs::is_empty(folder));
  EXPECT_EQ(host.traceLines, (std::vector<std::string>{kDoPrintLine}));
  EXPECT_TRUE(host.errors.empty());
  fs::remove_all(folder);
}

TEST(NoFile, DoPrintAcceptsEmptyArguments) {
  FakeHost host;
  NoFile printer;
  EXPECT_TRUE(printer.DoPrint(nullptr, nullptr, "", ""));
  EXPECT_TRUE(printer.DoPrint(std::make_shared<host::HostObject>(), nullptr, "", ""));
  EXPECT_EQ(host.traceLines.size(), 2u);
}

TEST(NoFile, DoPrintFailsOnlyWhenItsLineCannotBeWritten) {
  FakeHost host;
  NoFile printer;
  host.writeTraceFails = true;
  EXPECT_FALSE(printer.DoPrint(nullptr, nullptr, "C:\\Rev", "A"));
  ASSERT_EQ(host.errors.size(), 1u);
  EXPECT_EQ(host.errors[0].classLabel, "VemraKestrivon::NoFile");
  EXPECT_EQ(host.errors[0].procedureLabel, " Function IRevisionPrinter_DoPrint");
  host.writeTraceFails = false;
  EXPECT_TRUE(printer.DoPrint(nullptr, nullptr, "C:\\Rev", "A"));
}

TEST(NoFile, InformationalAnswersHoldBeforeAndAfterOtherCalls) {
  FakeHost host;
  NoFile printer;
  EXPECT_EQ(printer.Extension(), "NoFile");
  EXPECT_EQ(printer.Version(), 1);
  printer.DoPrint(nullptr, nullptr, "x", "y");
  printer.AppendFile("a", "b");
  EXPECT_EQ(printer.Extension(), "NoFile");
  EXPECT_EQ(printer.Version(), 1);
}

}  // namespace
}  // namespace kestrivon::test
