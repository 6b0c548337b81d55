// A group file of the TIFF driver queried for a key (the input's first
// line), and the whole input taken as a driver message for its error code.

#include "FuzzSupport.h"
#include "RecordingHost.h"
#include "printers/tiff/Dummy.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kestrivon;
  static const std::string groupFile = fuzz::ScratchFile("PAGE0001.GRP");
  const std::string_view text = fuzz::AsText(data, size);
  const auto [key, content] = fuzz::FirstLineAndRest(text);
  fuzz::WriteScratchFile(groupFile, content);
  const test::RecordingHost host;
  Dummy form;
  const std::string value = form.GetValueFromGroupFile(groupFile, key);
  if (!value.empty() && (value.front() == ' ' || value.back() == ' ')) {
    fuzz::Fail("the value keeps blanks around it");
  }
  form.StripErrorCode(std::string(text));
  return 0;
}
