#pragma once

#include <cstdint>

namespace kestrivon::platform {

// The calling thread's last Win32 error code, as the platform functions
// that answer only success or failure leave it.
uint32_t GetLastError();

// Codes that the seam's calls leave (the registry's own are in Registry.h).
inline constexpr uint32_t kErrorPathNotFound = 3;
inline constexpr uint32_t kErrorNoMoreFiles = 18;
inline constexpr uint32_t kErrorSharingViolation = 32;
inline constexpr uint32_t kErrorFileExists = 80;
inline constexpr uint32_t kErrorDiskFull = 112;
inline constexpr uint32_t kErrorAlreadyExists = 183;
inline constexpr uint32_t kErrorFileTooLarge = 223;
inline constexpr uint32_t kErrorEnvironmentVariableNotFound = 203;
inline constexpr uint32_t kErrorInvalidPrinterName = 1801;

}  // namespace kestrivon::platform
