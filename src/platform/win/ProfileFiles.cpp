#include "platform/ProfileFiles.h"

#include <windows.h>

#include "platform/win/Text.h"

namespace kestrivon::platform {

uint32_t GetPrivateProfileStringA(const std::string& section, const std::string& key,
                                  const std::string& defaultValue, char* buffer, uint32_t size,
                                  const std::string& fileName) {
  return ::GetPrivateProfileStringA(win::ToAnsi(section).c_str(), win::ToAnsi(key).c_str(),
                                    win::ToAnsi(defaultValue).c_str(), buffer, size,
                                    win::ToAnsi(fileName).c_str());
}

uint32_t GetPrivateProfileSectionA(const std::string& section, char* buffer, uint32_t size,
                                   const std::string& fileName) {
  return ::GetPrivateProfileSectionA(win::ToAnsi(section).c_str(), buffer, size,
                                     win::ToAnsi(fileName).c_str());
}

bool WritePrivateProfileStringA(const std::string& section, const std::string& key,
                                const std::string& value, const std::string& fileName) {
  return ::WritePrivateProfileStringA(win::ToAnsi(section).c_str(), win::ToAnsi(key).c_str(),
                                      win::ToAnsi(value).c_str(),
                                      win::ToAnsi(fileName).c_str()) != FALSE;
}

}  // namespace kestrivon::platform
