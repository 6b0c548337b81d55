#include "TestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <regex>
#include <sstream>

#include "core/Environment.h"
#include "core/TraceLog.h"

#ifdef _WIN32
#include <process.h>
#define getpid _getpid
#else
#include <unistd.h>
#endif

namespace kestrivon::hostkit::test {

TempDir::TempDir() {
  static std::atomic<int> serial{0};
  const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
  const std::string name = info ? std::string(info->test_suite_name()) + "." + info->name() : "x";
  path_ = std::filesystem::temp_directory_path() / ("hostkit-test-" + std::to_string(getpid()) +
                                                    "-" + std::to_string(serial++) + "-" + name);
  std::filesystem::remove_all(path_);
  std::filesystem::create_directories(path_);
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

ScopedVariable::ScopedVariable(std::string name, const std::optional<std::string>& value)
    : name_(std::move(name)), saved_(GetEnvironment(name_)) {
  SetEnvironment(name_, value);
}

ScopedVariable::~ScopedVariable() { SetEnvironment(name_, saved_); }

void WriteFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<std::vector<std::string>> Entries(const std::filesystem::path& log) {
  static const std::regex kStamp(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} #[0-9a-f]{8})");
  std::vector<std::vector<std::string>> entries;
  std::istringstream lines(ReadFile(log));
  std::string line;
  while (std::getline(lines, line)) {
    auto fields = SplitEntry(line);
    EXPECT_GE(fields.size(), 2u) << line;
    EXPECT_TRUE(std::regex_match(fields[0], kStamp)) << line;
    fields.erase(fields.begin());
    entries.push_back(std::move(fields));
  }
  return entries;
}

std::vector<std::vector<std::string>> EntriesOf(const std::filesystem::path& log,
                                                const std::string& kind) {
  std::vector<std::vector<std::string>> selected;
  for (auto& entry : Entries(log)) {
    if (entry[0] != kind) continue;
    entry.erase(entry.begin());
    selected.push_back(std::move(entry));
  }
  return selected;
}

}  // namespace kestrivon::hostkit::test
