#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace kestrivon {

// Writes a class's creation or release line for the counter value n.
using CountLine = std::function<void(int32_t n)>;

// Class_Initialize of a counting class: PPMInit, one more instance, and the
// creation line when debugging. A failure is reported, never raised.
void CountedClassInitialize(std::string_view classLabel, const CountLine& createdLine);

// Class_Terminate of a counting class: one instance less, the class's own
// clean-up, and the release line when debugging.
void CountedClassTerminate(std::string_view classLabel, const std::function<void()>& cleanUp,
                           const CountLine& releasedLine);

}  // namespace kestrivon
