#include <windows.h>

#include <filesystem>
#include <stdexcept>

#include "Fixture.h"

namespace kestrivon::test {
namespace {

std::string ExecutableFolder() {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string folder = path;
  return folder.substr(0, folder.rfind('\\'));
}

REGSAM ViewFlag(View view) { return view == View::k64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY; }

HKEY Hive(platform::HKey hive) { return reinterpret_cast<HKEY>(hive); }

// Once its recorder is set, the window records what reaches it and does
// nothing else (so a WM_CLOSE does not destroy it).
LRESULT CALLBACK RecordingProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* recorder = reinterpret_cast<RecordingWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  if (recorder == nullptr) return DefWindowProcA(window, message, wParam, lParam);
  recorder->received.push_back({message, wParam});
  return 0;
}

const char* RecordingClass() {
  static const char* name = [] {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = RecordingProcedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "KestrivonRecordingWindow";
    RegisterClassA(&windowClass);
    return "KestrivonRecordingWindow";
  }();
  return name;
}

}  // namespace

ScratchFolder::ScratchFolder() {
  static int counter = 0;
  char temp[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, temp);
  // An earlier run under the same (reused) process id may have left one
  // behind that is too deep to remove: then the next name.
  for (int tries = 0; tries < 100; ++tries) {
    path_ = std::string(temp) + "kestrivon-test-" + std::to_string(GetCurrentProcessId()) + "-" +
            std::to_string(++counter);
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
    if (CreateDirectoryA(path_.c_str(), nullptr)) return;
  }
  throw std::runtime_error("no scratch folder");
}

std::string WindowsDirectory() {
  char folder[MAX_PATH] = {};
  GetWindowsDirectoryA(folder, MAX_PATH);
  return folder;
}

std::string ChildProgram() { return ExecutableFolder() + "\\kestrivon_test_child.exe"; }

std::string NativePath(const std::string& path) { return path; }

void CopyChildProgram(const std::string& target) {
  CopyFileA(ChildProgram().c_str(), target.c_str(), FALSE);
}

FileHolder::FileHolder(const std::string& path, uint32_t holdMs) : path_(path) {
  std::string commandLine = "\"";  // appended to: the other operator+ warns falsely (-Wrestrict)
  commandLine += ChildProgram() + "\" hold \"" + path + "\" " + std::to_string(holdMs);
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION information = {};
  if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &information)) {
    throw std::runtime_error("cannot start the holder");
  }
  CloseHandle(information.hThread);
  process_ = reinterpret_cast<std::intptr_t>(information.hProcess);
  for (int i = 0; i < 1000 && !PathExists(path + ".ready"); ++i) Sleep(10);
}

FileHolder::~FileHolder() {
  auto process = reinterpret_cast<HANDLE>(process_);
  TerminateProcess(process, 0);
  WaitForSingleObject(process, 10000);
  CloseHandle(process);
  DeleteFileA((path_ + ".ready").c_str());
}

bool Is64BitProcess() { return sizeof(void*) == 8; }

void CreateTestKey(View view, platform::HKey hive, const std::string& path) {
  SetTestValue(view, hive, path, "", REG_NONE, {});
}

// With a type of REG_NONE only the key is made.
void SetTestValue(View view, platform::HKey hive, const std::string& path, const std::string& name,
                  uint32_t type, const std::string& bytes) {
  HKEY key = nullptr;
  if (RegCreateKeyExA(Hive(hive), path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | ViewFlag(view),
                      nullptr, &key, nullptr) != ERROR_SUCCESS) {
    return;
  }
  if (type != REG_NONE) {
    RegSetValueExA(key, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                   static_cast<DWORD>(bytes.size()));
  }
  RegCloseKey(key);
}

void DeleteTestKey(View view, platform::HKey hive, const std::string& path) {
  const size_t slash = path.rfind('\\');
  const std::string parentPath = slash == std::string::npos ? "" : path.substr(0, slash);
  const std::string leaf = slash == std::string::npos ? path : path.substr(slash + 1);
  HKEY parent = nullptr;
  if (RegOpenKeyExA(Hive(hive), parentPath.c_str(), 0, KEY_ALL_ACCESS | ViewFlag(view), &parent) ==
      ERROR_SUCCESS) {
    RegDeleteTreeA(parent, leaf.c_str());
    RegDeleteKeyExA(parent, leaf.c_str(), ViewFlag(view), 0);
    RegCloseKey(parent);
  }
}

RecordingWindow::RecordingWindow() {
  HWND window = CreateWindowExA(0, RecordingClass(), "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                GetModuleHandleA(nullptr), nullptr);
  SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  handle_ = reinterpret_cast<platform::WindowHandle>(window);
}

RecordingWindow::~RecordingWindow() {
  HWND window = reinterpret_cast<HWND>(handle_);
  SetWindowLongPtrA(window, GWLP_USERDATA, 0);
  DestroyWindow(window);
}

void RecordingWindow::Post(uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) const {
  PostMessageA(reinterpret_cast<HWND>(handle_), message, wParam, lParam);
}

void PostThreadMessageToSelf(uint32_t message, std::uintptr_t wParam) {
  PostThreadMessageA(GetCurrentThreadId(), message, wParam, 0);
}

void DrainMessages() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
  }
}

}  // namespace kestrivon::test
