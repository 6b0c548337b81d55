#pragma once

#include <cstdint>
#include <string>

namespace kestrivon::platform::portable {

// The printers that tests and the host kit define, with the state of their
// queues; there are none until defined. Names match without regard to case.
// Open handles read the queue as it is at each call.
struct PrinterQueue {
  uint32_t status = 0;  // PRINTER_STATUS_ bits
  uint32_t jobs = 0;
};

// Adds the printer or replaces its queue.
void DefinePrinter(const std::string& name, const PrinterQueue& queue);
void RemovePrinter(const std::string& name);
// Removes every printer and closes every open handle.
void ClearPrinters();

}  // namespace kestrivon::platform::portable
