#include "platform/portable/DebugOutput.h"

#include <cstdio>
#include <cstdlib>

#include "platform/DebugOutput.h"

namespace kestrivon::platform {
namespace {
portable::DebugSink& Sink() {
  static portable::DebugSink sink;
  return sink;
}
}  // namespace

void portable::SetDebugSink(DebugSink sink) { Sink() = std::move(sink); }

void OutputDebugText(const std::string& text) {
  if (Sink()) {
    Sink()(text);
  } else if (std::getenv("KESTRIVON_DEBUG_STDERR") != nullptr) {
    std::fprintf(stderr, "debugstr: %s\n", text.c_str());
  }
}

}  // namespace kestrivon::platform
