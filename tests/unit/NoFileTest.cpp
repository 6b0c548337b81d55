#include <gtest/gtest.h>

#include <filesystem>

#include "RecordingHost.h"
#include "printers/pdf/NoFile.h"

namespace kestrivon::test {
namespace {

namespace fs = std::filesystem;

TEST(NoFile, RunsAWholeRevisionWithoutTouchingAFile) {
  RecordingHost host;
  const fs::path folder = fs::temp_directory_path() / "kestrivon-nofile-test";
  fs::remove_all(folder);
  fs::create_directories(folder);
  NoFile printer;
  EXPECT_TRUE(printer.InitPrnSettings());
  EXPECT_EQ(printer.CheckPrnSettings(), "");
  EXPECT_TRUE(printer.IsPrinterAvailable());
  EXPECT_TRUE(printer.DoPrint(nullptr, nullptr, folder.string(), "A-100"));
  EXPECT_TRUE(printer.DoPrint(std::make_shared<host::HostObject>(), nullptr, "", ""));
  EXPECT_TRUE(printer.AppendFile((folder / "missing.pdf").string(), (folder / "A-100").string()));
  EXPECT_TRUE(fs::is_empty(folder));
  const std::string line =
      "VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> nothing to do";
  EXPECT_EQ(host.traceLines, (Lines{line, line}));
  EXPECT_TRUE(host.errors.empty());
  fs::remove_all(folder);
}

}  // namespace
}  // namespace kestrivon::test
