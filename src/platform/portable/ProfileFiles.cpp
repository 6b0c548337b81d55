#include "platform/portable/ProfileFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <optional>
#include <vector>

#include "platform/ProfileFiles.h"
#include "platform/TempFiles.h"
#include "platform/portable/Internal.h"

// The rules are those of the Windows profile functions as they answer under
// Wine: names match without regard to case and are trimmed; a value is
// trimmed and, read alone, loses one pair of enclosing quotes; only the
// first section of a name counts; lines starting with ';' are comments to
// the section listing but not to the key look-up; writing rewrites the
// file in key=value form with CR LF line ends.

namespace kestrivon::platform {
namespace portable {
namespace {

struct Entry {
  std::string name;
  std::optional<std::string> value;
};

struct Section {
  bool named = false;
  std::string name;
  std::vector<Entry> entries;
};

struct Profile {
  std::vector<Section> sections;
};

// Profile lines lose line ends as well as blanks.
std::string Trim(const std::string& text) { return std::string(kestrivon::Trim(text, " \t\r\n")); }

std::string TrimRight(const std::string& text) { return std::string(kestrivon::TrimRight(text)); }

// A bare file name lives in the Windows directory.
std::string ProfileHostPath(const std::string& fileName) {
  const bool bare = fileName.find_first_of("\\/:") == std::string::npos;
  const std::string windowsPath = bare ? WindowsDirectory() + "\\" + fileName : fileName;
  return ResolveHostPath(windowsPath);
}

// A profile larger than this is taken for one that cannot be held in memory,
// as Windows fails on it when it cannot allocate the whole file; no real
// profile comes near it (Wine reads 100 MB in a second).
constexpr off_t kMaxProfileBytes = off_t{256} << 20;

// The profile in a file, or nothing when there is none; *error then tells
// why an existing one could not be read. Only a regular file is read: a
// pipe or a device would never end, so it reads as empty, as under Wine.
std::optional<Profile> Load(const std::string& hostPath, uint32_t* error = nullptr) {
  constexpr uint32_t kErrorNotEnoughMemory = 8;
  if (hostPath.empty()) return std::nullopt;
  const int fd = ::open(hostPath.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  struct stat st {};
  uint32_t why = 0;
  std::string text;
  if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    why = kErrorAccessDenied;
  } else if (st.st_size > kMaxProfileBytes) {
    why = kErrorNotEnoughMemory;
  } else {
    text.resize(static_cast<size_t>(st.st_size));
    size_t got = 0;
    while (got < text.size()) {
      const ssize_t n = ::read(fd, text.data() + got, text.size() - got);
      if (n <= 0) break;
      got += static_cast<size_t>(n);
    }
    text.resize(got);
  }
  ::close(fd);
  if (why != 0) {
    if (error != nullptr) *error = why;
    return std::nullopt;
  }
  if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) text.erase(0, 3);
  Profile profile;
  profile.sections.push_back(Section{});
  // A CR ends a line as an LF does, alone or not.
  for (size_t start = 0; start < text.size();) {
    const size_t end = std::min(text.find_first_of("\r\n", start), text.size());
    const std::string trimmed = Trim(text.substr(start, end - start));
    start = end + 1;
    if (!trimmed.empty() && trimmed.front() == '[') {
      const size_t close = trimmed.rfind(']');
      if (close != std::string::npos) {
        profile.sections.push_back(Section{true, Trim(trimmed.substr(1, close - 1)), {}});
        continue;
      }
    }
    Entry entry;
    const size_t equals = trimmed.find('=');
    if (equals == std::string::npos) {
      entry.name = trimmed;
    } else {
      entry.name = TrimRight(trimmed.substr(0, equals));
      entry.value = Trim(trimmed.substr(equals + 1));
    }
    if (entry.name.empty() && !entry.value) continue;
    profile.sections.back().entries.push_back(std::move(entry));
  }
  return profile;
}

Section* FindSection(Profile& profile, const std::string& name) {
  const std::string wanted = Trim(name);
  for (auto& section : profile.sections) {
    if (section.named && EqualNoCase(section.name, wanted)) return &section;
  }
  return nullptr;
}

Entry* FindEntry(Section& section, const std::string& name) {
  const std::string wanted = Trim(name);
  for (auto& entry : section.entries) {
    if (entry.value && EqualNoCase(entry.name, wanted)) return &entry;
  }
  return nullptr;
}

std::string Unquote(const std::string& value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
      value.back() == value.front()) {
    return value.substr(1, value.size() - 2);
  }
  return value;
}

uint32_t CopyTruncated(const std::string& text, char* buffer, uint32_t size) {
  if (buffer == nullptr || size == 0) return 0;
  const auto n = static_cast<uint32_t>(std::min<size_t>(text.size(), size - 1));
  std::memcpy(buffer, text.data(), n);
  buffer[n] = '\0';
  return n;
}

bool Save(const std::string& hostPath, const Profile& profile) {
  std::ofstream out(hostPath, std::ios::binary | std::ios::trunc);
  if (!out) return false;
  for (const auto& section : profile.sections) {
    if (section.named) out << '[' << section.name << "]\r\n";
    for (const auto& entry : section.entries) {
      out << entry.name;
      if (entry.value) out << '=' << *entry.value;
      out << "\r\n";
    }
  }
  return static_cast<bool>(out);
}

}  // namespace

std::string WindowsDirectory() {
  char buffer[kMaxPath];
  const uint32_t n = GetTempPathA(kMaxPath, buffer);
  std::string folder(buffer, n);
  if (!folder.empty() && folder.back() == '\\') folder.pop_back();
  return folder;
}

}  // namespace portable

uint32_t GetPrivateProfileStringA(const std::string& section, const std::string& key,
                                  const std::string& defaultValue, char* buffer, uint32_t size,
                                  const std::string& fileName) {
  std::optional<portable::Profile> profile = portable::Load(portable::ProfileHostPath(fileName));
  if (profile) {
    if (portable::Section* found = portable::FindSection(*profile, section)) {
      if (portable::Entry* entry = portable::FindEntry(*found, key)) {
        return portable::CopyTruncated(portable::Unquote(*entry->value), buffer, size);
      }
    }
  }
  return portable::CopyTruncated(portable::TrimRight(defaultValue), buffer, size);
}

uint32_t GetPrivateProfileSectionA(const std::string& section, char* buffer, uint32_t size,
                                   const std::string& fileName) {
  if (buffer == nullptr || size == 0) return 0;
  std::string stream;
  std::optional<portable::Profile> profile = portable::Load(portable::ProfileHostPath(fileName));
  if (profile) {
    if (portable::Section* found = portable::FindSection(*profile, section)) {
      for (const auto& entry : found->entries) {
        if (!entry.name.empty() && entry.name.front() == ';') continue;
        stream += entry.name;
        if (entry.value) stream += '=' + *entry.value;
        stream += '\0';
      }
    }
  }
  // Nothing, or no room for anything: the buffer is empty (no NUL past it).
  if (stream.empty() || size < 2) {
    buffer[0] = '\0';
    if (size > 1) buffer[1] = '\0';
    return 0;
  }
  if (stream.size() + 1 < size) {
    std::memcpy(buffer, stream.data(), stream.size());
    buffer[stream.size()] = '\0';
    return static_cast<uint32_t>(stream.size());
  }
  // Too long (or just long enough to fill the buffer): the last string is
  // cut and the buffer ends in two NULs.
  std::memcpy(buffer, stream.data(), size - 2);
  buffer[size - 2] = '\0';
  buffer[size - 1] = '\0';
  return size - 2;
}

bool WritePrivateProfileStringA(const std::string& section, const std::string& key,
                                const std::string& value, const std::string& fileName) {
  const std::string hostPath = portable::ProfileHostPath(fileName);
  if (hostPath.empty()) return false;
  uint32_t unreadable = 0;
  portable::Profile profile =
      portable::Load(hostPath, &unreadable).value_or(portable::Profile{{portable::Section{}}});
  // What cannot be read is not rewritten either: its content would be lost.
  if (unreadable != 0) {
    portable::SetLastError(unreadable);
    return false;
  }
  portable::Section* target = portable::FindSection(profile, section);
  if (target == nullptr) {
    profile.sections.push_back(portable::Section{true, portable::Trim(section), {}});
    target = &profile.sections.back();
  }
  if (portable::Entry* entry = portable::FindEntry(*target, key)) {
    entry->value = value;
  } else {
    target->entries.push_back(portable::Entry{portable::Trim(key), value});
  }
  if (!portable::Save(hostPath, profile)) {
    portable::SetLastError(kErrorPathNotFound);
    return false;
  }
  return true;
}

}  // namespace kestrivon::platform
