// A profile file and the name of one of its sections (the input's first
// line) read into a dictionary, as the HARP settings are.

#include "FuzzSupport.h"
#include "RecordingHost.h"
#include "services/IniFiles.h"
#include "services/StringDictionary.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kestrivon;
  static const std::string file = fuzz::ScratchFile("settings.ini");
  const auto [section, content] = fuzz::FirstLineAndRest(fuzz::AsText(data, size));
  fuzz::WriteScratchFile(file, content);
  const test::RecordingHost host;
  StringDictionary dictionary;
  dictionary.Add("left", "from before");
  const bool read = FillDictionaryFromIniFileSection(&dictionary, file, section);
  // Only a duplicate key, which is reported, may leave a refused section
  // half stored.
  if (!read && host.errors.empty() && (dictionary.Count() != 1 || !dictionary.Exists("left"))) {
    fuzz::Fail("a refused section changed the dictionary");
  }
  return 0;
}
