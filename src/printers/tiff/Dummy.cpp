#include "printers/tiff/Dummy.h"

#include <vector>

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "platform/AnsiText.h"
#include "platform/FileSystem.h"
#include "runtime/Text.h"
#include "runtime/Variant.h"
#include "runtime/VbStrings.h"
#include "services/OutputFileWaiting.h"

namespace kestrivon {
namespace {
const std::string kLabel = labels::kDummy;
}  // namespace

// Form_Load: nothing to do beyond its handler.
Dummy::Dummy() = default;

bool Dummy::Finished() { return finished_; }

void Dummy::SetFinished(bool finished) { finished_ = finished; }

bool Dummy::Aborted() { return aborted_; }

void Dummy::SetAborted(bool aborted) { aborted_ = aborted; }

std::string Dummy::ImageFileName() { return imageFileName_; }

std::string Dummy::GetOutputFileByGrpFileName(const std::string& groupFile) try {
  const std::string prefix = kLabel + ".GetOutputFileByGrpFileName(): ";
  // The length comes from the argument, the characters from the field.
  std::string tiff =
      vb::Left(outputBaseName_, static_cast<long long>(groupFile.size()) - 3) + "TIF";
  if (!platform::FileExists(tiff)) {
    WriteTrace(prefix + tiff + " not found");
    return std::string();
  }
  if (!FileCreationDateCheck(platform::FileDateCreated(groupFile), tiff)) {
    WriteTrace(prefix + "tif file is too old");
    return std::string();
  }
  return tiff;
} catch (...) {
  return Procedure(kClassLabel, "GetOutputFileByGrpFileName").Report(std::string());
}

std::string Dummy::GetValueFromGroupFile(const std::string& groupFile, const std::string& key) try {
  const std::string prefix = kLabel + "::GetValueFromGroupFile(): ";
  WriteTrace(prefix + "querying '" + key + "' from '" + groupFile + "'...");
  if (!platform::FileExists(groupFile)) {
    WriteTrace(prefix + "group file cannot be found");
    return std::string();
  }
  std::vector<std::string> lines;
  if (Attempt([&] { lines = platform::ReadAnsiTextLines(groupFile, platform::kAllLines); })) {
    WriteTrace(prefix + "unable to open group file");
    return std::string();
  }
  // Without regard to case, as the code page has it: Ä matches ä.
  const std::string wanted = platform::LowerAnsiLetters(key);
  std::string value;
  for (const std::string& line : lines) {
    const size_t at = platform::LowerAnsiLetters(line).find(wanted);
    if (at == std::string::npos) continue;
    value = std::string(Trim(line.substr(at + key.size()), " "));
    WriteTrace(prefix + key + " '" + value + "'");
    break;
  }
  return value;
} catch (...) {
  return Procedure(kClassLabel, "Function GetValueFromGroupFile()").Report(std::string());
}

int32_t Dummy::StripErrorCode(const std::string& text) try {
  const size_t dot = vb::InStrRev(text, ".");
  // The rightmost p - 1 characters, not the part after the dot.
  std::string working = dot > 0 ? vb::Right(text, static_cast<long long>(dot) - 1) : "";
  const size_t blank = vb::InStrRev(working, " ");
  if (blank > 0) working = working.substr(blank);
  int32_t code = 0;
  if (!working.empty() && IsNumeric(Variant(working))) {
    IgnoreErrors([&] { code = VariantToLong(Variant(working)); });
  }
  return code;
} catch (...) {
  return Procedure(kClassLabel, "Function StripErrorCode()").Report(int32_t{0});
}

}  // namespace kestrivon
