#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/Documents.h"
#include "host/HostObject.h"

// The host's database context (the workset) and the process-wide objects
// that the HARP printer reaches: the trace facility with its named trace
// sources and the TIFF merge component. All are late-bound on the host's
// side. A failing member raises RunTimeError with the host's error; an
// object the host cannot create raises 429.
namespace kestrivon::host {

// Workset.Globals: named values of the host session.
class WorksetGlobals {
 public:
  virtual ~WorksetGlobals() = default;
  virtual bool Exist(const std::string& name) = 0;
  virtual std::string ConfigDirectory() = 0;
  // Written for the host's own use after a conversion command is built.
  virtual void SetHARPGhostScriptPath(const std::string& path) = 0;
  virtual void SetHARPGhostScriptVersion(const std::string& version) = 0;
  virtual void SetHARPGhostScriptConvertCommand(const std::string& command) = 0;
};

// Workset.FileSystem: the members of the scripting file-system object used.
class FileSystemObject {
 public:
  virtual ~FileSystemObject() = default;
  virtual bool FileExists(const std::string& path) = 0;
  // Empty when the file carries no version.
  virtual std::string GetFileVersion(const std::string& path) = 0;
};

class Workset {
 public:
  virtual ~Workset() = default;
  virtual std::shared_ptr<WorksetGlobals> Globals() = 0;
  virtual std::shared_ptr<HostApplication> Application() = 0;
  virtual std::shared_ptr<SettingsCollection> Settings() = 0;
  virtual std::shared_ptr<FileSystemObject> FileSystem() = 0;
};

// The running host application (TraceService.Application).
class RunningApplication {
 public:
  virtual ~RunningApplication() = default;
  // Null when the application has no workset open.
  virtual HostObjectRef Workset() = 0;
};

// One named trace source of the host's trace facility.
class TraceSource {
 public:
  virtual ~TraceSource() = default;
  virtual void Write(int32_t level, int32_t id, const std::string& text) = 0;
};

// Vemra.TraceFacility, late-bound.
class TraceFacility {
 public:
  virtual ~TraceFacility() = default;
  // Null when the facility has no source of that name.
  virtual std::shared_ptr<host::TraceSource> TraceSource(const std::string& name) = 0;
};

// Vemra.TiffMerge, late-bound: the pages of the files, in list order, into
// one multi-page TIFF.
class TiffMerge {
 public:
  virtual ~TiffMerge() = default;
  virtual bool Merge(const std::vector<std::string>& files, const std::string& target) = 0;
};

// A host object seen as the application or a workset: null for null;
// raises 13 when it is neither.
std::shared_ptr<RunningApplication> AsRunningApplication(const HostObjectRef& object);
std::shared_ptr<Workset> AsWorkset(const HostObjectRef& object);

// GetObject("", "Vemra"): a new object of the host's class Vemra, taken as
// a workset.
std::shared_ptr<Workset> NewVemraObject();
std::shared_ptr<TraceFacility> CreateTraceFacility();
std::shared_ptr<TiffMerge> CreateTiffMerge();

}  // namespace kestrivon::host
