#include "platform/TempFiles.h"

#include <windows.h>

#include "platform/win/Text.h"

namespace kestrivon::platform {

uint32_t GetTempPathA(uint32_t bufferLength, char* buffer) {
  return ::GetTempPathA(bufferLength, buffer);
}

uint32_t GetTempFileNameA(const std::string& pathName, const std::string& prefix, uint32_t unique,
                          char* buffer) {
  return ::GetTempFileNameA(win::ToAnsi(pathName).c_str(), win::ToAnsi(prefix).c_str(), unique,
                            buffer);
}

bool DeleteFileA(const std::string& fileName) {
  return ::DeleteFileA(win::ToAnsi(fileName).c_str()) != FALSE;
}

}  // namespace kestrivon::platform
