#include "services/IniFiles.h"

#include <vector>

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "platform/AnsiText.h"
#include "platform/FileSystem.h"
#include "platform/ProfileFiles.h"
#include "platform/SystemNames.h"
#include "platform/TempFiles.h"
#include "runtime/VbStrings.h"

namespace kestrivon {
namespace {

constexpr uint32_t kIniBuffer = 1024;
constexpr uint32_t kSectionBuffer = 32767;
constexpr uint32_t kSectionOverflow = kSectionBuffer - 2;

// Split of the run time: every piece between the separators.
std::vector<std::string> Split(const std::string& text, const std::string& separator) {
  std::vector<std::string> pieces;
  size_t start = 0;
  while (true) {
    const size_t found = text.find(separator, start);
    if (found == std::string::npos) {
      pieces.push_back(text.substr(start));
      return pieces;
    }
    pieces.push_back(text.substr(start, found - start));
    start = found + separator.size();
  }
}

std::string ReplaceAll(const std::string& text, char from, const std::string& to) {
  std::string out;
  for (char c : text) {
    if (c == from) {
      out += to;
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace

std::string ReadIniString(const std::string& iniFile, const std::string& section,
                          const std::string& key, const std::string& defaultValue) try {
  std::string buffer(kIniBuffer, ' ');
  const uint32_t n = platform::GetPrivateProfileStringA(section, key, defaultValue, buffer.data(),
                                                        kIniBuffer, iniFile);
  return platform::FromAnsiCodePage(vb::Left(buffer, n));
} catch (...) {
  return Procedure(kGlobalsLabel, "Public Function ReadIniString").Report(std::string());
}

bool FillDictionaryFromIniFileSection(StringDictionary* dictionary, const std::string& iniFile,
                                      const std::string& section) {
  const Procedure procedure(kGlobalsLabel, "Public Function 'FillDictionaryFromIniFileSection'");
  try {
    if (dictionary == nullptr) {
      WriteTrace(
          "VemraKestrivon::Globals::FillDictionaryFromIniFileSection(): Parameter 'oDict' is nothing.");
      return false;
    }
    std::string buffer(kSectionBuffer, ' ');
    const auto n = static_cast<int32_t>(
        platform::GetPrivateProfileSectionA(section, buffer.data(), kSectionBuffer, iniFile));
    if (n == static_cast<int32_t>(kSectionOverflow)) {
      WriteTrace(
          "VemraKestrivon::Globals::FillDictionaryFromIniFileSection(): Size of section exceeds 32k bytes.");
      return false;
    }
    if (n <= 0) {
      WriteTrace(
          "VemraKestrivon::Globals::FillDictionaryFromIniFileSection(): No bytes were written to 'sRet'.");
      return false;
    }
    const std::string text =
        ReplaceAll(platform::FromAnsiCodePage(vb::Left(buffer, n - 1)), '\0', "\r\n");
    const std::vector<std::string> lines = Split(text, "\r\n");
    dictionary->RemoveAll();
    for (const std::string& line : lines) {
      const std::vector<std::string> pieces = Split(line, "=");
      if (pieces.size() >= 2) dictionary->Add(pieces[0], pieces[1]);
    }
    return true;
  } catch (...) {
    return procedure.Report(false);
  }
}

std::string TempFolder() {
  // Each statement goes on after an error.
  const Procedure procedure(kGlobalsLabel, "Private Function 'TempFolder'");
  std::string buffer;
  procedure.ReportAndGoOn([&] { buffer.assign(kIniBuffer, ' '); });
  uint32_t n = 0;
  procedure.ReportAndGoOn([&] { n = platform::GetTempPathA(kIniBuffer, buffer.data()); });
  std::string result;
  procedure.ReportAndGoOn([&] { result = platform::FromAnsiCodePage(vb::Left(buffer, n)); });
  procedure.ReportAndGoOn([&] {
    if (vb::Right(result, 1) == "\\")
      result = vb::Left(result, static_cast<long long>(result.size()) - 1);
  });
  return result;
}

std::string TempFileName(const std::string& extension) {
  // Each statement goes on after an error.
  const Procedure procedure(kGlobalsLabel, "Public Function TempFileName");
  std::string folder;
  procedure.ReportAndGoOn([&] { folder = TempFolder(); });
  std::string buffer;
  procedure.ReportAndGoOn([&] { buffer.assign(platform::kMaxPath, ' '); });
  procedure.ReportAndGoOn([&] { platform::GetTempFileNameA(folder, "R2P", 0, buffer.data()); });
  std::string name;
  procedure.ReportAndGoOn([&] {
    const auto nul = vb::InStr(1, buffer, std::string(1, '\0'));
    name = platform::FromAnsiCodePage(vb::Left(buffer, static_cast<long long>(nul) - 1));
  });
  // Only the name is wanted, not the file that made it unique.
  procedure.ReportAndGoOn([&] { platform::DeleteFileA(name); });
  if (!extension.empty()) {
    procedure.ReportAndGoOn([&] {
      const size_t dot = vb::InStrRev(name, ".");
      if (dot > 0) name = vb::Left(name, static_cast<long long>(dot) - 1);
      name = name + "." + extension;
    });
  }
  return name;
}

std::string WinUserName() try {
  std::string buffer(255, ' ');
  uint32_t size = 255;
  if (!platform::GetUserNameA(buffer.data(), &size)) return std::string();
  return platform::FromAnsiCodePage(vb::Left(buffer, static_cast<long long>(size) - 1));
} catch (...) {
  return Procedure(kGlobalsLabel, "Public Function 'WinUserName'").Report(std::string());
}

bool CheckCreateOutputFolder(const std::string& path) {
  // The answer is set before the last trace: a failing trace still answers it.
  bool result = false;
  try {
    const size_t lastSlash = vb::InStrRev(path, "\\");
    const size_t lastDot = vb::InStrRev(path, ".");
    std::string folder =
        lastDot > lastSlash ? vb::Left(path, static_cast<long long>(lastSlash) - 1) : path;
    // Appended even after a trailing backslash: C:\a\ becomes C:\a\\.
    folder += "\\";
    WriteTrace("VemraKestrivon::Globals::CheckCreateOutputFolder(): checking whether '" + folder +
               "' exists...");
    const size_t start = vb::Left(folder, 2) == "\\\\" ? 3 : 4;
    size_t position = vb::InStr(start, folder, "\\");
    while (position > 0) {
      const std::string prefix = vb::Left(folder, static_cast<long long>(position) - 1);
      WriteTrace("VemraKestrivon::Globals::CheckCreateOutputFolder(): checking '" + prefix + "'");
      if (!platform::FolderExists(prefix)) {
        if (!platform::CreateFolder(prefix)) break;
      }
      position = vb::InStr(position + 1, folder, "\\");
    }
    result = platform::FolderExists(folder);
    WriteTrace(
        std::string("VemraKestrivon::Globals::CheckCreateOutputFolder(): was successfull: '") +
        (result ? "True" : "False") + "'");
  } catch (...) {
    Procedure(kGlobalsLabel, "Function CheckCreateOutputFolder()").Report();
  }
  return result;
}

}  // namespace kestrivon
