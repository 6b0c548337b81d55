#pragma once

// Copying one file as CopyFile does (names in UTF-8, not limited to the
// ANSI code page), and the system's text for an error code.
//
// Error convention of this header: calls answer bool; on failure
// platform::GetLastError() holds the Win32 error code. Nothing throws.

#include <cstdint>
#include <string>

#include "platform/LastError.h"

namespace kestrivon::platform {

// CopyFile: the copy takes the source's attributes (read-only included).
// Without overwrite an existing target stays and the copy fails with
// kErrorFileExists. A missing source fails with kErrorFileNotFound (2), a
// missing target folder with kErrorPathNotFound, a folder as source or
// target and a read-only target with kErrorAccessDenied (5) (Wine run by
// root overwrites a read-only target), a file that another holds open with
// kErrorSharingViolation, a full disk with kErrorDiskFull and a file
// beyond the size allowed with kErrorFileTooLarge; a copy that fails on the
// way leaves no target behind.
bool CopyFileTo(const std::string& source, const std::string& target, bool overwrite);

// MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING when replace): puts a
// file in the place of another in one step, so that a reader sees the old
// file or the new one and never a part. Both names lie in one folder (one
// volume). Without replace an existing target stays and the move fails with
// kErrorAlreadyExists. A missing source fails with kErrorFileNotFound (2), a
// missing target folder with kErrorPathNotFound, a folder, a read-only file
// or a file someone holds open as target with kErrorAccessDenied (5).
bool MoveFileTo(const std::string& from, const std::string& to, bool replace);

// FormatMessageA's text for a Win32 error code, without the line end. The
// portable side knows Wine's texts for the codes its calls leave and writes
// "error " and the number for the others.
std::string SystemErrorText(uint32_t code);

}  // namespace kestrivon::platform
