#pragma once

#include <cstdint>

namespace kestrivon::platform {

inline constexpr int32_t kErrorInsufficientBuffer = 122;
inline constexpr int32_t kErrorBufferOverflow = 111;

// GetUserNameA: on success size holds the length including the NUL.
bool GetUserNameA(char* buffer, uint32_t* size);

// GetComputerNameA: on success size holds the length without the NUL.
bool GetComputerNameA(char* buffer, uint32_t* size);

}  // namespace kestrivon::platform
