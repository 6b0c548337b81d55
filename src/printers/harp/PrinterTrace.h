#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/Workset.h"

namespace kestrivon {

// Levels of the host's trace source "Printer" as the HARP classes write it.
inline constexpr int32_t kTraceFailure = 2;
inline constexpr int32_t kTraceInformation = 8;

// The trace source "Printer" of a new host trace facility; null when the
// facility has none of that name. Raises when the facility cannot be made.
std::shared_ptr<host::TraceSource> MakePrinterTraceSource();

// One write at the level with the number 42. Without a source this is
// error 91 of the caller: the write has no handler of its own.
void WritePrinterTrace(const std::shared_ptr<host::TraceSource>& source, int32_t level,
                       const std::string& text);

}  // namespace kestrivon
