#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kestrivon::hostkit::test {

// A fresh folder per test, removed afterwards; tests may run in parallel.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  [[nodiscard]] const std::filesystem::path& Path() const noexcept { return path_; }
  [[nodiscard]] std::filesystem::path operator/(const std::string& name) const {
    return path_ / name;
  }

 private:
  std::filesystem::path path_;
};

// Sets (or with nullopt removes) one environment variable for a scope.
class ScopedVariable {
 public:
  ScopedVariable(std::string name, const std::optional<std::string>& value);
  ~ScopedVariable();
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  std::string name_;
  std::optional<std::string> saved_;
};

void WriteFile(const std::filesystem::path& path, const std::string& text);
std::string ReadFile(const std::filesystem::path& path);

// The log's entries, each split into its unescaped fields; the time stamp
// (field 0) is checked for its form and dropped.
std::vector<std::vector<std::string>> Entries(const std::filesystem::path& log);
// Only the entries of one kind, without the kind.
std::vector<std::vector<std::string>> EntriesOf(const std::filesystem::path& log,
                                                const std::string& kind);

}  // namespace kestrivon::hostkit::test
