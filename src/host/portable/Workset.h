#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/Workset.h"
#include "host/portable/Documents.h"

namespace kestrivon::host::portable {

// The host's workset without a COM runtime, for tests and the host kit:
// plain objects that answer what they are set to and record what the
// component wrote to them.

class GlobalsObject : public HostObject, public WorksetGlobals {
 public:
  // Exist answers for the names of values, ConfigDirectory among them;
  // names compare exactly. Reading a missing ConfigDirectory raises 5.
  std::map<std::string, std::string> values;
  bool Exist(const std::string& name) override { return values.count(name) != 0; }
  std::string ConfigDirectory() override;
  void SetHARPGhostScriptPath(const std::string& path) override {
    Record("HARPGhostScriptPath", path);
  }
  void SetHARPGhostScriptVersion(const std::string& version) override {
    Record("HARPGhostScriptVersion", version);
  }
  void SetHARPGhostScriptConvertCommand(const std::string& command) override {
    Record("HARPGhostScriptConvertCommand", command);
  }
  // Each write, "member=value", and who else wants to know.
  std::vector<std::string> writes;
  std::function<void(const std::string& member, const std::string& value)> onWrite;

 private:
  void Record(const std::string& member, const std::string& value);
};

// FileExists through the platform seam; the portable file system carries no
// version resources, so a version is what the test or host kit sets.
class FileSystemObjectImpl : public HostObject, public FileSystemObject {
 public:
  std::map<std::string, std::string> versions;
  std::vector<std::string> versionQueries;
  bool FileExists(const std::string& path) override;
  std::string GetFileVersion(const std::string& path) override;
};

class WorksetObject : public HostObject, public Workset {
 public:
  std::shared_ptr<GlobalsObject> globals = std::make_shared<GlobalsObject>();
  std::shared_ptr<ApplicationObject> application = std::make_shared<ApplicationObject>();
  std::shared_ptr<SettingsObject> settings = std::make_shared<SettingsObject>();
  std::shared_ptr<FileSystemObjectImpl> fileSystem = std::make_shared<FileSystemObjectImpl>();
  std::shared_ptr<WorksetGlobals> Globals() override { return globals; }
  std::shared_ptr<HostApplication> Application() override { return application; }
  std::shared_ptr<SettingsCollection> Settings() override { return settings; }
  std::shared_ptr<FileSystemObject> FileSystem() override { return fileSystem; }
};

class RunningApplicationObject : public HostObject, public RunningApplication {
 public:
  HostObjectRef workset;
  HostObjectRef Workset() override { return workset; }
};

}  // namespace kestrivon::host::portable
