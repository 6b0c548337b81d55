#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "Fixture.h"
#include "platform/portable/FileSystem.h"
#include "platform/portable/MessageQueue.h"
#include "platform/portable/ProfileFiles.h"
#include "platform/portable/Registry.h"

extern char** environ;

namespace kestrivon::test {
namespace {

namespace fs = std::filesystem;
namespace pp = platform::portable;

pp::RegistryView ToView(View view) {
  return view == View::k64 ? pp::RegistryView::k64 : pp::RegistryView::k32;
}

std::string ExecutableFolder() { return fs::read_symlink("/proc/self/exe").parent_path().string(); }

}  // namespace

ScratchFolder::ScratchFolder() {
  std::string pattern = (fs::temp_directory_path() / "kestrivon-test-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = pp::WindowsPath(pattern);
}

std::string WindowsDirectory() { return pp::WindowsDirectory(); }

std::string ChildProgram() { return pp::WindowsPath(ExecutableFolder() + "/kestrivon_test_child"); }

std::string NativePath(const std::string& path) { return pp::HostPath(path); }

void CopyChildProgram(const std::string& target) {
  fs::copy_file(ExecutableFolder() + "/kestrivon_test_child", NativePath(target),
                fs::copy_options::overwrite_existing);
  fs::permissions(NativePath(target), fs::perms::owner_exec, fs::perm_options::add);
}

FileHolder::FileHolder(const std::string& path, uint32_t holdMs) : path_(path) {
  const std::string child = ExecutableFolder() + "/kestrivon_test_child";
  std::string mode = "hold";
  std::string target = NativePath(path);
  std::string ms = std::to_string(holdMs);
  char* argv[] = {const_cast<char*>(child.c_str()), mode.data(), target.data(), ms.data(), nullptr};
  pid_t pid = 0;
  if (::posix_spawn(&pid, child.c_str(), nullptr, nullptr, argv, environ) != 0) {
    throw std::runtime_error("cannot start the holder");
  }
  process_ = pid;
  for (int i = 0; i < 1000 && !fs::exists(target + ".ready"); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

FileHolder::~FileHolder() {
  ::kill(static_cast<pid_t>(process_), SIGKILL);
  int status = 0;
  ::waitpid(static_cast<pid_t>(process_), &status, 0);
  std::error_code ignored;
  fs::remove(NativePath(path_) + ".ready", ignored);
}

bool Is64BitProcess() { return pp::ProcessRegistryView() == pp::RegistryView::k64; }

void CreateTestKey(View view, platform::HKey hive, const std::string& path) {
  pp::CreateRegistryKey(ToView(view), hive, path);
}

void SetTestValue(View view, platform::HKey hive, const std::string& path, const std::string& name,
                  uint32_t type, const std::string& bytes) {
  pp::SetRegistryValue(ToView(view), hive, path, name, type, bytes);
}

void DeleteTestKey(View view, platform::HKey hive, const std::string& path) {
  pp::DeleteRegistryKey(ToView(view), hive, path);
}

RecordingWindow::RecordingWindow() {
  handle_ = pp::RegisterWindow([this](const platform::Message& message) -> std::intptr_t {
    received.push_back({message.message, message.wParam});
    return 0;
  });
}

RecordingWindow::~RecordingWindow() { pp::UnregisterWindow(handle_); }

void RecordingWindow::Post(uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) const {
  pp::PostMessage(handle_, message, wParam, lParam);
}

void PostThreadMessageToSelf(uint32_t message, std::uintptr_t wParam) {
  pp::PostMessage(0, message, wParam, 0);
}

void DrainMessages() { pp::ClearMessageQueue(); }

}  // namespace kestrivon::test
