#include "BenchSupport.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

extern char** environ;

namespace kestrivon::bench {

std::filesystem::path ScratchFolder() {
  // Removed at exit, after the benchmarks' own statics are gone.
  static struct Made {
    std::vector<std::filesystem::path> folders;
    ~Made() {
      std::error_code ec;
      for (const auto& folder : folders) std::filesystem::remove_all(folder, ec);
    }
  } made;
  const char* tmp = std::getenv("TMPDIR");
  std::string pattern =
      std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/kestrivon-bench-XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  made.folders.emplace_back(pattern);
  return pattern;
}

std::string WindowsPath(const std::filesystem::path& path) {
  std::string text = "Z:" + std::filesystem::absolute(path).string();
  for (char& c : text) {
    if (c == '/') c = '\\';
  }
  return text;
}

bool RunChild(const std::vector<std::string>& command, rusage* usage) {
  // Its peak memory is read by peak_run, built beside this program.
  std::vector<std::string> argv;
  static const std::string peakFile = (ScratchFolder() / "peak").string();
  if (usage != nullptr) {
    argv = {(std::filesystem::path(SelfPath()).parent_path() / "peak_run").string(), peakFile};
  }
  argv.insert(argv.end(), command.begin(), command.end());
  std::vector<char*> args;
  for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
  args.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int failed = ::posix_spawnp(&child, args[0], &actions, nullptr, args.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) return false;
  int status = 0;
  rusage used{};
  if (::wait4(child, &status, 0, &used) != child) return false;
  if (usage != nullptr) {
    *usage = used;
    FILE* peak = std::fopen(peakFile.c_str(), "r");
    const bool read = peak != nullptr && std::fscanf(peak, "%ld", &usage->ru_maxrss) == 1;
    if (peak != nullptr) std::fclose(peak);
    if (!read) return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::optional<int> RunEach(benchmark::State& state, const std::vector<std::string>& command) {
  long peak = 0;
  int runs = 0;
  for (auto _ : state) {
    rusage usage{};
    if (!RunChild(command, &usage)) {
      state.SkipWithError(("failed: " + command.front()).c_str());
      return std::nullopt;
    }
    ++runs;
    peak = std::max(peak, usage.ru_maxrss);
  }
  state.counters["peak_KiB"] = static_cast<double>(peak);
  return runs;
}

std::string SelfPath() { return std::filesystem::read_symlink("/proc/self/exe").string(); }

}  // namespace kestrivon::bench
