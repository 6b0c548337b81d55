#pragma once

#include <cstddef>
#include <string>

namespace kestrivon::hostkit {

// File names as the component writes them (Windows form) and as this
// side's system opens them: natively the portable platform maps drive and
// UNC names to the host's folders, on Windows both are the same.
std::string HostFileName(const std::string& windowsName);
std::string WindowsFileName(const std::string& hostName);

// Creates an empty file that did not exist (CREATE_NEW, O_EXCL): false
// when the name is taken or cannot be made.
bool CreateNewFile(const std::string& windowsName);

// This process's id, and whether a process of that id runs.
unsigned CurrentProcessId();
bool ProcessRuns(unsigned id);

// Ends the process at once, as a kill does: no clean-up, no exit handler.
[[noreturn]] void EndProcessAbruptly();

// A file written by one writer that nobody else may open meanwhile, as a
// printer driver holds the PDF it is still writing: an exclusive lock
// natively, a handle without sharing on Windows.
class HeldFile {
 public:
  HeldFile() = default;
  ~HeldFile();
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;

  // Creates the file anew (a file of that name from before is removed, so
  // that the new one has a creation time of its own) and takes it; false
  // when it cannot.
  bool Create(const std::string& windowsName);
  bool Write(const char* data, size_t size);
  void Close();

 private:
#ifdef _WIN32
  void* handle_ = nullptr;
#else
  int fd_ = -1;
#endif
};

}  // namespace kestrivon::hostkit
