// HARP.ini loaded by the HARP printer's configuration, and the conversion
// command line built from it for a page. The input's first line is the
// page, "<width> <height>" and "landscape" for a landscape page; the rest
// is the file. Nothing runs and no folder is made outside this process's
// scratch folder: process starts and other folders are refused below.

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <memory>

#include "FuzzSupport.h"
#include "RecordingHost.h"
#include "host/portable/Workset.h"
#include "platform/portable/FileSystem.h"
#include "printers/harp/HARPConfiguration.h"

namespace {

using namespace kestrivon;

int g_starts = 0;

// Drive C: is the scratch folder, where the folders of realistic settings
// are made (TEMP is C:\Temp); any other folder (Z: is the host's root) is
// refused.
const std::string& ScratchRoot() {
  static const std::string root = [] {
    const std::string host = platform::portable::HostPath(fuzz::ScratchFolder());
    platform::portable::MapDrive('C', host);
    ::setenv("TEMP", "C:\\Temp", 1);
    return host + "/";
  }();
  return root;
}

bool MayMake(const std::string& path) {
  return path.compare(0, ScratchRoot().size(), ScratchRoot()) == 0 &&
         path.find("/..") == std::string::npos;
}

class DiscardingTrace : public host::TraceFacility, public host::TraceSource {
 public:
  std::shared_ptr<host::TraceSource> TraceSource(const std::string&) override {
    return std::shared_ptr<host::TraceSource>(std::shared_ptr<void>(), this);
  }
  void Write(int32_t, int32_t, const std::string&) override {}
};

}  // namespace

extern "C" int posix_spawn(pid_t*, const char*, const posix_spawn_file_actions_t*,
                           const posix_spawnattr_t*, char* const[], char* const[]) {
  ++g_starts;
  return ENOENT;
}

extern "C" int mkdir(const char* path, mode_t mode) {
  if (!MayMake(path)) return errno = EACCES, -1;
  return ::mkdirat(AT_FDCWD, path, mode);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string ini = (ScratchRoot(), "C:\\HARP.ini");
  static DiscardingTrace trace;
  const auto [pageLine, content] = fuzz::FirstLineAndRest(fuzz::AsText(data, size));
  PageDescription page;
  const char* end = pageLine.data() + pageLine.size();
  const auto width = std::from_chars(pageLine.data(), end, page.width);
  if (width.ptr != end) std::from_chars(width.ptr + 1, end, page.height);
  page.portrait = pageLine.find("landscape") == std::string::npos;

  fuzz::ClearScratchFolder();  // the folders the last input made
  fuzz::WriteScratchFile(ini, content);
  test::RecordingHost host;
  auto workset = std::make_shared<host::portable::WorksetObject>();
  auto application = std::make_shared<host::portable::RunningApplicationObject>();
  application->workset = workset;
  host.application = application;
  workset->globals->values["ConfigDirectory"] = "C:\\";
  host.InstallHostClasses({.traceFacility = [] {
    return std::shared_ptr<host::TraceFacility>(std::shared_ptr<void>(), &trace);
  }});

  g_starts = 0;
  {
    HARPConfiguration configuration;
    configuration.PrinterSettingsErrorSummary();
    configuration.PrinterRedirection();
    configuration.RevisionExtension();
    configuration.ConvertCommandOutputFullFileName();
    configuration.SetTimeStamp("20261122-231500");
    configuration.SetVemraSystemUID("VEMRA-01");
    if (configuration.ExecuteConvertCommand(page, "C:\\ps\\A-100.ps", "C:\\rev\\A-100.pdf")) {
      fuzz::Fail("a conversion that cannot start ran");
    }
  }
  if (g_starts > 1) fuzz::Fail("more than one conversion was started");
  return 0;
}
