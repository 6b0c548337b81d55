#pragma once

// The text-file line conventions of the scripting file-system object, the
// same on both sides of the seam: WriteLine ends each line with CR LF,
// ReadLine stops at LF and drops a CR before it.

#include <string>
#include <vector>

#include "platform/AnsiText.h"
#include "platform/FileSystemErrors.h"

namespace kestrivon::platform::text_lines {

inline std::string Join(const std::vector<std::string>& lines) {
  std::string bytes;
  for (const std::string& line : lines) bytes.append(ToAnsiCodePage(line)).append("\r\n");
  return bytes;
}

// The first count lines of the file's bytes; a ReadLine past the end raises
// 62, as the text stream does. A count of SIZE_MAX takes every line.
inline std::vector<std::string> Split(const std::string& bytes, size_t count) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (lines.size() < count) {
    if (start >= bytes.size()) {
      if (count == static_cast<size_t>(-1)) break;  // every line up to the end
      RaiseFileSystemError(kErrInputPastEndOfFile);
    }
    size_t end = bytes.find('\n', start);
    if (end == std::string::npos) end = bytes.size();
    size_t stop = end;
    if (stop > start && bytes[stop - 1] == '\r') --stop;
    lines.push_back(FromAnsiCodePage(bytes.substr(start, stop - start)));
    start = end + 1;
  }
  return lines;
}

}  // namespace kestrivon::platform::text_lines
