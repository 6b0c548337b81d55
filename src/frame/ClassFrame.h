#pragma once

#include <functional>
#include <string_view>

namespace kestrivon {

// Where a class's creation line goes when debugging.
enum class CountLineTo { kDebugger, kTrace };

// The texts a counting class writes when one of its objects is created and
// released, each followed by the instance count. They are the released
// component's own, slips included (see the printer catalogue).
struct CountLines {
  std::string_view created;
  std::string_view released;
  CountLineTo createdTo = CountLineTo::kDebugger;
  // A class that also counts its own instances (VemraTiff) writes framed
  // blocks instead of lines: its creation text goes to the trace at once,
  // before PPMInit, and again into the block with the build and both counts.
  std::string_view build = {};
  std::string_view ownCreated = {};
  std::string_view ownReleased = {};

  [[nodiscard]] constexpr bool Framed() const { return !ownCreated.empty(); }
};

// Class_Initialize of a counting class: PPMInit, one more instance, and the
// creation line when debugging. A failure is reported, never raised.
void CountedClassInitialize(std::string_view classLabel, const CountLines& lines);

// Class_Terminate of a counting class: one instance less, the class's own
// clean-up, and the release line when debugging.
void CountedClassTerminate(std::string_view classLabel, const CountLines& lines,
                           const std::function<void()>& cleanUp = nullptr);

}  // namespace kestrivon
