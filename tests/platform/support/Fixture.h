#pragma once

// What the conformance tests need around the platform seam, done per side
// with the side's own means (Win32 calls, or the portable side's hooks and
// the host system), the files through the standard library on both
// (Fixture.cpp). The tests themselves call only the seam.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "platform/MessageQueue.h"
#include "platform/Registry.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::test {

// The run-time error number a call raises, or 0.
template <class Call>
int32_t ErrorOf(Call&& call) {
  try {
    call();
  } catch (const RunTimeError& e) {
    return e.Number();
  }
  return 0;
}

// A new empty folder (Windows path, no trailing backslash) for one test,
// removed with everything in it when the object goes.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + "\\" + name; }

 private:
  std::string path_;
};

void WriteWholeFile(const std::string& path, const std::string& bytes);
std::string ReadWholeFile(const std::string& path);
bool PathExists(const std::string& path);
void RemoveFile(const std::string& path);
void MakeFolder(const std::string& path);
void SetReadOnly(const std::string& path, bool readOnly);
std::string WindowsDirectory();

// The side's own form of a Windows path, as the standard library and the
// helper program take it.
std::string NativePath(const std::string& path);

// The helper program next to the test program (Windows path).
std::string ChildProgram();
// Copies the helper program, keeping it runnable.
void CopyChildProgram(const std::string& target);

// Another process holds the file open exclusively while the object lives,
// or for the given time.
class FileHolder {
 public:
  explicit FileHolder(const std::string& path, uint32_t milliseconds = 600000);
  ~FileHolder();
  FileHolder(const FileHolder&) = delete;
  FileHolder& operator=(const FileHolder&) = delete;

 private:
  std::string path_;
  std::intptr_t process_ = 0;
};

bool Is64BitProcess();

enum class View { k32, k64 };
void CreateTestKey(View view, platform::HKey hive, const std::string& path);
void SetTestValue(View view, platform::HKey hive, const std::string& path, const std::string& name,
                  uint32_t type, const std::string& bytes);
void DeleteTestKey(View view, platform::HKey hive, const std::string& path);
inline View ProcessView() { return Is64BitProcess() ? View::k64 : View::k32; }

// Keys that are gone, in both views of both hives, before and after a test.
class ScratchKeys {
 public:
  explicit ScratchKeys(std::vector<std::string> paths) : paths_(std::move(paths)) { Clean(); }
  ~ScratchKeys() { Clean(); }
  ScratchKeys(const ScratchKeys&) = delete;
  ScratchKeys& operator=(const ScratchKeys&) = delete;
  void Clean() const {
    for (View view : {View::k32, View::k64}) {
      for (platform::HKey hive : {platform::kHKeyCurrentUser, platform::kHKeyLocalMachine}) {
        for (const auto& path : paths_) DeleteTestKey(view, hive, path);
      }
    }
  }

 private:
  std::vector<std::string> paths_;
};

// Value data as RegSetValueExA is given them.
inline std::string Sz(const std::string& text) { return text + '\0'; }
inline std::string Dword(uint32_t value) {
  std::string bytes(4, '\0');
  std::memcpy(bytes.data(), &value, 4);
  return bytes;
}

// A window of the calling thread that records what is dispatched to it.
class RecordingWindow {
 public:
  RecordingWindow();
  ~RecordingWindow();
  RecordingWindow(const RecordingWindow&) = delete;
  RecordingWindow& operator=(const RecordingWindow&) = delete;
  [[nodiscard]] platform::WindowHandle Handle() const { return handle_; }
  void Post(uint32_t message, std::uintptr_t wParam = 0, std::intptr_t lParam = 0) const;

  struct Received {
    uint32_t message;
    std::uintptr_t wParam;
  };
  std::vector<Received> received;

 private:
  platform::WindowHandle handle_ = 0;
};

void PostThreadMessageToSelf(uint32_t message, std::uintptr_t wParam = 0);
// Empties the calling thread's queue without dispatching.
void DrainMessages();

}  // namespace kestrivon::test
