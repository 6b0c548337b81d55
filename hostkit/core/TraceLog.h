#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace kestrivon::hostkit {

// The host kit's log file. One entry per line:
//   <local time "YYYY-MM-DD hh:mm:ss.mmm"> " #" <run> TAB <kind> TAB <field> ...
// The run identifier (eight hexadecimal digits) is the same on every line
// of one process and differs between processes, so that the runs that
// share a log can be told apart. At the size cap the log is rotated: it
// becomes <log>.1 (replacing an older one) and a new log begins.
// Fields are escaped with EscapeField so that an entry never spans lines and
// a tab always separates fields. Entries are appended; the file and its
// folder are created when missing. The file stays open for appending and
// each entry goes out in one write: the system holds what was written when
// the process dies, and the entries of several processes sharing the log
// interleave whole (see docs/hostkit.md).
class TraceLog {
 public:
  // maxBytes 0: no cap.
  explicit TraceLog(std::filesystem::path path, std::uint64_t maxBytes = 0);
  ~TraceLog();
  TraceLog(const TraceLog&) = delete;
  TraceLog& operator=(const TraceLog&) = delete;

  [[nodiscard]] const std::filesystem::path& Path() const noexcept { return path_; }

  // Raises RunTimeError (kLogWriteFault) when the entry cannot be written.
  void Append(std::string_view kind, const std::vector<std::string>& fields);

  // This process's run identifier, as every entry carries it.
  static const std::string& RunId();

  // Whether an entry could be appended now, without writing one.
  [[nodiscard]] bool Writable(std::string* why = nullptr) const;

 private:
  // Opens the file for appending unless the one held is still the file at
  // the path (a log removed or replaced meanwhile is opened afresh).
  bool Open(std::string* why);
  void Close() noexcept;
  // Rotates the log when the entry would take it past the cap.
  void RotateIfFull(std::size_t entrySize);

  std::filesystem::path path_;
  std::uint64_t maxBytes_;
  std::mutex mutex_;
  std::intptr_t file_ = -1;  // a descriptor natively, a HANDLE on Windows
  // Natively the open file's device and inode, which tell it from another
  // file put at the path.
  std::uint64_t identity_[2] = {0, 0};
};

// The host's failure when the log cannot take an entry: the HRESULT of a
// write fault, which the component sees as the error number.
inline constexpr int32_t kLogWriteFault = static_cast<int32_t>(0x8007001DU);

// CR, LF and TAB become \r, \n and \t, other control characters \xHH. A
// backslash is doubled only where it would otherwise start one of these
// escapes (followed by r, n, t, x, a backslash or a character that is
// escaped), so Windows paths stay readable: "C:\Revisions" is written as it
// is, "C:\new" as "C:\\new".
std::string EscapeField(std::string_view text);
// The exact inverse of EscapeField.
std::string UnescapeField(std::string_view text);

// A text split into its fields at the tabs, each one unescaped.
std::vector<std::string> SplitEntry(std::string_view line);

}  // namespace kestrivon::hostkit
