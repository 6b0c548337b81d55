#include "host/portable/Workset.h"

#include "platform/FileSystem.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host::portable {

std::string GlobalsObject::ConfigDirectory() {
  const auto it = values.find("ConfigDirectory");
  if (it == values.end()) Raise(vb_error::kInvalidProcedureCall);
  return it->second;
}

void GlobalsObject::Record(const std::string& member, const std::string& value) {
  values[member] = value;
  writes.push_back(member + "=" + value);
  if (onWrite) onWrite(member, value);
}

bool FileSystemObjectImpl::FileExists(const std::string& path) {
  return platform::FileExists(path);
}

std::string FileSystemObjectImpl::GetFileVersion(const std::string& path) {
  versionQueries.push_back(path);
  const auto it = versions.find(path);
  return it == versions.end() ? std::string() : it->second;
}

}  // namespace kestrivon::host::portable
