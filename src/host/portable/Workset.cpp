#include "host/portable/Workset.h"

#include "platform/FileSystem.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host {
namespace {

template <class Interface>
std::shared_ptr<Interface> As(const HostObjectRef& object) {
  if (!object) return nullptr;
  auto view = std::dynamic_pointer_cast<Interface>(object);
  if (!view) Raise(vb_error::kTypeMismatch);
  return view;
}

}  // namespace

std::shared_ptr<HostApplication> AsHostApplication(const HostObjectRef& object) {
  return As<HostApplication>(object);
}

std::shared_ptr<Workset> AsWorkset(const HostObjectRef& object) { return As<Workset>(object); }

namespace portable {

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

}  // namespace portable
}  // namespace kestrivon::host
