#pragma once

// What the benchmark programs share: a scratch folder, the Windows form of
// its paths, and reference commands run as child processes.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kestrivon::bench {

// A fresh folder under $TMPDIR (or /tmp); all of them are removed with
// their contents when the program ends.
std::filesystem::path ScratchFolder();

// The path as the component sees it: drive Z: maps the host's root.
std::string WindowsPath(const std::filesystem::path& path);

// Runs the program (looked up in PATH) with its output dropped; false when
// it could not be started or did not exit with 0. usage receives the
// child's resource use, ru_maxrss its own peak memory in KiB (the child is
// started through peak_run, so that it does not count this process's).
bool RunChild(const std::vector<std::string>& argv, rusage* usage = nullptr);

// Runs the command as a child once per iteration of the benchmark, with
// the children's peak memory as its counter "peak_KiB"; the count of runs,
// or nothing after a failed one (the benchmark then skipped with an error).
std::optional<int> RunEach(benchmark::State& state, const std::vector<std::string>& command);

// This program's own file, for running it again as a child.
std::string SelfPath();

}  // namespace kestrivon::bench
