#pragma once

// Printers and file types for the conformance tests of the spooler and the
// shell, set up by each side's own means (Win32 calls, or the portable
// side's hooks) and removed when the object goes.

#include <cstdint>
#include <string>

namespace kestrivon::test {

// A local printer with jobs in its queue. Jobs can be queued only where the
// printer can be paused first; Wine cannot pause one (its spooler lists no
// job either), so there the queue stays empty.
class TestPrinter {
 public:
  TestPrinter(std::string name, uint32_t jobs);
  ~TestPrinter();
  TestPrinter(const TestPrinter&) = delete;
  TestPrinter& operator=(const TestPrinter&) = delete;
  [[nodiscard]] uint32_t QueuedJobs() const { return queued_; }
  // False where the system has no driver to install it with (32-bit Wine
  // without its PostScript driver).
  [[nodiscard]] bool Installed() const { return installed_; }

 private:
  std::string name_;
  uint32_t queued_ = 0;
  bool installed_ = true;
};

// Files with the extension (".kvt") open with the program.
class TestFileType {
 public:
  TestFileType(std::string extension, const std::string& program);
  ~TestFileType();
  TestFileType(const TestFileType&) = delete;
  TestFileType& operator=(const TestFileType&) = delete;

 private:
  std::string extension_;
};

}  // namespace kestrivon::test
