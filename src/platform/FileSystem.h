#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Owned.h"

namespace kestrivon::platform {

// File and folder work with the semantics of the scripting file-system
// object. Paths are Windows paths in UTF-8. Where that object raises a
// run-time error, these raise kestrivon::RunTimeError with its number:
// 53 file not found, 58 file already exists, 70 permission denied,
// 76 path not found.

// FileExists: true for an existing file, false for a folder or nothing.
bool FileExists(const std::string& path);

// GetFile(path).DateCreated: local creation time in whole seconds, as days
// since 30 December 1899. Raises 53 when there is no such file.
double FileDateCreated(const std::string& path);

// DeleteFile(path, force), named apart from the Win32 macro: force also deletes read-only files.
// Raises 53 when there is no such file and 70 when it is read-only (unforced) or held open by
// someone.
void DeleteFileWithForce(const std::string& path, bool force);

// GetTempName: "rad", five random upper-case hexadecimal digits and ".tmp".
// Only a name: no file is made and no folder is looked at.
std::string TempName();

// FolderExists.
bool FolderExists(const std::string& path);

// CreateFolder: true when a folder object came back. Raises 58 when the
// folder exists and 76 when its parent does not.
bool CreateFolder(const std::string& path);

// The names of the files (not folders) of a folder. Raises 76 when the
// folder does not exist.
std::vector<std::string> FolderFileNames(const std::string& folder);

// Open ... For Binary Access Write Lock Read Write: opens (creating it when
// missing) the file for writing with no sharing at all. Answers
// kInvalidFile when someone else holds it or it cannot be opened.
using FileHandle = std::intptr_t;
inline constexpr FileHandle kInvalidFile = -1;
FileHandle OpenFileExclusive(const std::string& path);
void CloseFile(FileHandle file);
using OwnedFile = Owned<FileHandle, &CloseFile, kInvalidFile>;

// CreateTextFile(path, True, False), a WriteLine per line, Close: creates or
// overwrites the file with the lines in the ANSI code page, each ended by
// CR LF. The file is written whole in one step (beside it, then moved over
// it): a reader finds the old file or the new one, never a part. Raises 76
// when the folder is missing and 70 when the file cannot be written.
void WriteAnsiTextLines(const std::string& path, const std::vector<std::string>& lines);
// OpenTextFile(path, ForReading, False) and count ReadLine calls: each line
// ends at CR LF or LF and comes back in UTF-8. Raises 53 when there is no
// such file, 70 when it cannot be opened and 62 "Input past end of file"
// when a ReadLine call finds the end. kAllLines reads until the end.
inline constexpr size_t kAllLines = static_cast<size_t>(-1);
std::vector<std::string> ReadAnsiTextLines(const std::string& path, size_t count);

}  // namespace kestrivon::platform
