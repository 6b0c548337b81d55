#pragma once

#include <cstdint>
#include <string>

#include "frame/trace/ClassLabels.h"

namespace kestrivon {

// The state and helpers of a print through the TIFF driver: two completion
// flags, the image file produced, the TIFF file that belongs to a driver
// group file, one value of a group file, and the error code of a driver
// message. An internal object without the driver's control (the form's
// "BiPrnDrv1"); no operation of the component uses it today.
class Dummy {
 public:
  static constexpr const char* kClassLabel = labels::kDummy;

  Dummy();

  bool Finished();
  void SetFinished(bool finished);
  bool Aborted();
  void SetAborted(bool aborted);
  std::string ImageFileName();
  // The name the TIFF file's name is formed from; set by whoever drives the
  // print (nothing in the component does).
  void SetOutputBaseName(const std::string& name) { outputBaseName_ = name; }

  // The TIFF file of the group file: the output base name's first
  // (length of the group file's name - 3) characters + "TIF", when it
  // exists and was not created before the group file; else empty.
  std::string GetOutputFileByGrpFileName(const std::string& groupFile);
  // The rest of the first line that holds the key (anywhere, case ignored),
  // trimmed; empty when no line does.
  std::string GetValueFromGroupFile(const std::string& groupFile, const std::string& key);
  // The number before the end of a driver message; 0 when there is none.
  int32_t StripErrorCode(const std::string& text);

 private:
  bool finished_ = false;
  bool aborted_ = false;
  std::string outputBaseName_;
  std::string imageFileName_;
};

}  // namespace kestrivon
