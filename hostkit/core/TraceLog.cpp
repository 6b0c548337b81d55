#include "core/TraceLog.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "core/Environment.h"
#include "platform/Clock.h"
#include "platform/LocaleText.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::hostkit {
namespace {

bool Escaped(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

// Whether a backslash in front of c would be read as the start of an escape:
// before the letters of the escapes, a backslash, or a character that is
// itself written as an escape.
bool StartsEscape(char c) {
  return c == 'r' || c == 'n' || c == 't' || c == 'x' || c == '\\' || Escaped(c);
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string TimeStamp() {
  const platform::LocalTime now = platform::LocalTimeNow();
  char text[64];
  std::snprintf(text, sizeof text, "%04lld-%02u-%02u %02d:%02d:%02d.%03d",
                static_cast<long long>(now.year), now.month, now.day, now.hour, now.minute,
                now.second, now.milliseconds);
  return text;
}

bool EnsureFolder(const std::filesystem::path& path, std::string* why) {
  const auto folder = path.parent_path();
  if (folder.empty()) return true;
  std::error_code ec;
  std::filesystem::create_directories(folder, ec);
  if (ec && !std::filesystem::is_directory(folder)) {
    if (why) *why = "cannot create the folder: " + ec.message();
    return false;
  }
  return true;
}

constexpr std::intptr_t kNoFile = -1;

#ifdef _WIN32

// FILE_APPEND_DATA without FILE_WRITE_DATA: every write goes to the end of
// the file as one piece, whoever else appends. Sharing delete lets others
// rename or remove the log meanwhile, as they could when it was closed.
std::intptr_t OpenAppending(const std::filesystem::path& path, uint64_t /*identity*/[2]) {
  HANDLE file = ::CreateFileW(path.c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  return file == INVALID_HANDLE_VALUE ? kNoFile : reinterpret_cast<std::intptr_t>(file);
}

// Whether the file at path is still the open one. Asking the handle for its
// file index costs as much as opening the file under Wine, and Wine's
// creation time moves with each write; so the file at the path counts as
// the open one while it is a file of the same size.
bool StillAtPath(std::intptr_t file, const uint64_t /*identity*/[2],
                 const std::filesystem::path& path) {
  LARGE_INTEGER size;
  WIN32_FILE_ATTRIBUTE_DATA data;
  return ::GetFileSizeEx(reinterpret_cast<HANDLE>(file), &size) &&
         ::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) &&
         (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
         data.nFileSizeHigh == static_cast<DWORD>(size.QuadPart >> 32) &&
         data.nFileSizeLow == static_cast<DWORD>(size.QuadPart & 0xFFFFFFFF);
}

bool WriteEntry(std::intptr_t file, const std::string& entry) {
  DWORD written = 0;
  return ::WriteFile(reinterpret_cast<HANDLE>(file), entry.data(), static_cast<DWORD>(entry.size()),
                     &written, nullptr) &&
         written == entry.size();
}

void CloseLogFile(std::intptr_t file) { ::CloseHandle(reinterpret_cast<HANDLE>(file)); }

uint64_t FileSize(std::intptr_t file) {
  LARGE_INTEGER size;
  return ::GetFileSizeEx(reinterpret_cast<HANDLE>(file), &size)
             ? static_cast<uint64_t>(size.QuadPart)
             : 0;
}

uint64_t ProcessNumber() { return ::GetCurrentProcessId(); }

// Every handle on the log shares delete, so the log can be renamed while
// other processes hold it open.
bool RenameOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  return ::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

#else

// Whether the file at path is still the open one: the same device and inode.
bool StillAtPath(std::intptr_t /*file*/, const uint64_t identity[2],
                 const std::filesystem::path& path) {
  struct stat st {};
  return ::stat(path.c_str(), &st) == 0 && static_cast<uint64_t>(st.st_dev) == identity[0] &&
         static_cast<uint64_t>(st.st_ino) == identity[1];
}

// O_APPEND: the kernel puts every write at the end of the file as one
// piece, whoever else appends.
std::intptr_t OpenAppending(const std::filesystem::path& path, uint64_t identity[2]) {
  const int file = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (file < 0) return kNoFile;
  struct stat st {};
  if (::fstat(file, &st) != 0) {
    ::close(file);
    return kNoFile;
  }
  identity[0] = st.st_dev;
  identity[1] = st.st_ino;
  return file;
}

bool WriteEntry(std::intptr_t file, const std::string& entry) {
  const ssize_t written = ::write(static_cast<int>(file), entry.data(), entry.size());
  return written == static_cast<ssize_t>(entry.size());
}

void CloseLogFile(std::intptr_t file) { ::close(static_cast<int>(file)); }

uint64_t FileSize(std::intptr_t file) {
  struct stat st {};
  return ::fstat(static_cast<int>(file), &st) == 0 ? static_cast<uint64_t>(st.st_size) : 0;
}

uint64_t ProcessNumber() { return static_cast<uint64_t>(::getpid()); }

bool RenameOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  return ::rename(from.c_str(), to.c_str()) == 0;
}

#endif

}  // namespace

TraceLog::TraceLog(std::filesystem::path path, std::uint64_t maxBytes)
    : path_(std::move(path)), maxBytes_(maxBytes) {}

const std::string& TraceLog::RunId() {
  static std::mutex guard;
  static uint64_t owner = 0;
  static std::string id;
  std::lock_guard lock(guard);
  // Made afresh in a forked child: a run is a process.
  const uint64_t process = ProcessNumber();
  if (id.empty() || owner != process) {
    // The process, the moment and the system's randomness: two runs at once
    // or one after the other get different identifiers.
    std::random_device random;
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    std::seed_seq seed{static_cast<uint32_t>(random()), static_cast<uint32_t>(process),
                       static_cast<uint32_t>(now), static_cast<uint32_t>(now >> 32)};
    std::mt19937 mix(seed);
    char text[9];
    std::snprintf(text, sizeof text, "%08x", static_cast<unsigned>(mix()));
    id = text;
    owner = process;
  }
  return id;
}

void TraceLog::RotateIfFull(std::size_t entrySize) {
  if (maxBytes_ == 0) return;
  const uint64_t size = FileSize(file_);
  if (size == 0 || size + entrySize <= maxBytes_) return;
  // Only the file still at the path is rotated: another process may have
  // rotated it already, and its new log is not full.
  if (StillAtPath(file_, identity_, path_)) {
    Close();
    std::filesystem::path older = path_;
    older += ".1";
    RenameOver(path_, older);  // a failed rename leaves the log growing, nothing lost
  } else {
    Close();
  }
  std::string why;
  Open(&why);
}

TraceLog::~TraceLog() { Close(); }

bool TraceLog::Open(std::string* why) {
  if (file_ != kNoFile) {
    if (StillAtPath(file_, identity_, path_)) return true;
    Close();
  }
  if (!EnsureFolder(path_, why)) return false;
  file_ = OpenAppending(path_, identity_);
  if (file_ == kNoFile) {
    *why = "cannot write to the file";
    return false;
  }
  return true;
}

void TraceLog::Close() noexcept {
  if (file_ != kNoFile) CloseLogFile(file_);
  file_ = kNoFile;
}

void TraceLog::Append(std::string_view kind, const std::vector<std::string>& fields) {
  std::string entry = TimeStamp();
  entry += " #";
  entry += RunId();
  entry += '\t';
  entry += EscapeField(kind);
  for (const auto& field : fields) {
    entry += '\t';
    entry += EscapeField(field);
  }
  entry += platform::TextLineEnd();

  std::lock_guard lock(mutex_);
  std::string why;
  if (Open(&why)) {
    RotateIfFull(entry.size());
  }
  if (file_ != kNoFile || Open(&why)) {
    // One write per entry: it reaches the system whole or not at all.
    if (WriteEntry(file_, entry)) return;
    why = "cannot write to the file";
    Close();
  }
  throw RunTimeError(kLogWriteFault, "Trace log '" + PathToUtf8(path_) + "': " + why,
                     "VemraHostKit");
}

bool TraceLog::Writable(std::string* why) const {
  if (!EnsureFolder(path_, why)) return false;
  std::error_code ec;
  const bool existed = std::filesystem::exists(path_, ec);
  {
    std::ofstream file(path_, std::ios::binary | std::ios::app);
    if (!file) {
      if (why) *why = "cannot open the file for writing";
      return false;
    }
  }
  // Asking leaves no empty log behind.
  if (!existed) std::filesystem::remove(path_, ec);
  return true;
}

std::string EscapeField(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    switch (c) {
      case '\r':
        out += "\\r";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\\':
        out += (i + 1 < text.size() && StartsEscape(text[i + 1])) ? "\\\\" : "\\";
        break;
      default:
        if (Escaped(c)) {
          char hex[8];
          std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned char>(c));
          out += hex;
        } else {
          out += c;
        }
    }
  }
  return out;
}

std::string UnescapeField(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c != '\\' || i + 1 == text.size()) {
      out += c;
      continue;
    }
    const char next = text[i + 1];
    if (next == 'r') {
      out += '\r';
    } else if (next == 'n') {
      out += '\n';
    } else if (next == 't') {
      out += '\t';
    } else if (next == '\\') {
      out += '\\';
    } else if (next == 'x' && i + 3 < text.size() && HexValue(text[i + 2]) >= 0 &&
               HexValue(text[i + 3]) >= 0) {
      out += static_cast<char>(HexValue(text[i + 2]) * 16 + HexValue(text[i + 3]));
      i += 2;
    } else {
      out += c;  // a lone backslash stands for itself
      continue;
    }
    ++i;
  }
  return out;
}

std::vector<std::string> SplitEntry(std::string_view line) {
  if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  std::vector<std::string> fields;
  size_t start = 0;
  for (;;) {
    const size_t tab = line.find('\t', start);
    fields.push_back(UnescapeField(line.substr(start, tab - start)));
    if (tab == std::string_view::npos) break;
    start = tab + 1;
  }
  return fields;
}

}  // namespace kestrivon::hostkit
