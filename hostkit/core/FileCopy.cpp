#include "core/FileCopy.h"

#include "platform/FileCopy.h"

namespace kestrivon::hostkit {

bool CopyOneFile(const std::string& source, const std::string& target, bool overwrite,
                 std::string& why) {
  if (platform::CopyFileTo(source, target, overwrite)) return true;
  why = platform::SystemErrorText(platform::GetLastError());
  return false;
}

}  // namespace kestrivon::hostkit
