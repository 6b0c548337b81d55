#pragma once

#include <cstdint>

#include "runtime/RunTimeError.h"

namespace kestrivon::platform {

// The run-time errors of the scripting file-system object.
inline constexpr int32_t kErrInputPastEndOfFile = 62;
inline constexpr int32_t kErrFileNotFound = 53;
inline constexpr int32_t kErrFileAlreadyExists = 58;
inline constexpr int32_t kErrPermissionDenied = 70;
inline constexpr int32_t kErrPathNotFound = 76;

[[noreturn]] inline void RaiseFileSystemError(int32_t number) {
  const char* description = "Path not found";
  switch (number) {
    case kErrFileNotFound:
      description = "File not found";
      break;
    case kErrFileAlreadyExists:
      description = "File already exists";
      break;
    case kErrPermissionDenied:
      description = "Permission denied";
      break;
    case kErrInputPastEndOfFile:
      description = "Input past end of file";
      break;
    default:
      break;
  }
  throw RunTimeError(number, description);
}

}  // namespace kestrivon::platform
