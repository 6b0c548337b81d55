#include "SeamFixture.h"
#include "platform/portable/Shell.h"
#include "platform/portable/Spooler.h"

namespace kestrivon::test {

namespace pp = platform::portable;

TestPrinter::TestPrinter(std::string name, uint32_t jobs) : name_(std::move(name)), queued_(jobs) {
  pp::DefinePrinter(name_, {jobs > 0 ? 1u : 0u, jobs});  // paused to hold its jobs
}

TestPrinter::~TestPrinter() { pp::RemovePrinter(name_); }

TestFileType::TestFileType(std::string extension, const std::string& program)
    : extension_(std::move(extension)) {
  pp::SetFileAssociation(extension_, program);
}

TestFileType::~TestFileType() { pp::SetFileAssociation(extension_, ""); }

}  // namespace kestrivon::test
