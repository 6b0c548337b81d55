#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "RecordingHost.h"
#include "core/PdfMerge.h"
#include "core/TiffMerge.h"
#include "host/portable/Printing.h"
#include "host/portable/Workset.h"
#include "support/Fixture.h"

namespace kestrivon::test {

// The host's trace facility: one source that records what is written.
class RecordingFacility : public host::TraceFacility,
                          public host::TraceSource,
                          public std::enable_shared_from_this<RecordingFacility> {
 public:
  std::shared_ptr<host::TraceSource> TraceSource(const std::string& name) override {
    names.push_back(name);
    return shared_from_this();
  }
  void Write(int32_t level, int32_t id, const std::string& text) override {
    writes.emplace_back(level, text);
    ids.push_back(id);
  }
  std::vector<std::string> names;
  std::vector<std::pair<int32_t, std::string>> writes;
  std::vector<int32_t> ids;
};

// A host with a running application whose workset has the configuration
// directory of this test, the trace facility, the print library, and the
// host kit's TIFF and PDF merges. The host resolves a message text by
// dropping its "~xxxxx " key.
class HarpTest : public ::testing::Test {
 protected:
  class Host : public RecordingHost {
   public:
    std::string ResolveText(const std::string& text) override {
      return text.size() > 7 && text[0] == '~' ? text.substr(7) : text;
    }
  };

  HarpTest() {
    application->workset = workset;
    host.application = application;
    workset->globals->values["ConfigDirectory"] = folder.Path() + "\\";
    host.InstallHostClasses({
        .printerManager = [this] { return printers; },
        .pdfMerge = [] { return std::make_shared<hostkit::PdfMerge>(); },
        .traceFacility = [this] { return facility; },
        .tiffMerge = [] { return std::make_shared<hostkit::TiffMerge>(); },
    });
  }

  // HARP.ini: the "Default" section of a complete file with these values
  // changed (an empty value removes the key), and the parameters unless
  // they are none.
  void WriteIni(const std::map<std::string, std::string>& changes = {},
                const std::optional<std::string>& parameters = "Out=-o") {
    std::map<std::string, std::string> values{{"PrinterName", "HARP PS"},
                                              {"PrinterRedirection", folder / "ps\\job.ps"},
                                              {"RevisionExtension", ".PDF"},
                                              {"ConvertCommand", "conv %Out%"}};
    for (const auto& [key, value] : changes) values[key] = value;
    std::string text = "[Default]\r\n";
    for (const auto& [key, value] : values) {
      if (!value.empty()) text += key + "=" + value + "\r\n";
    }
    if (parameters) text += "[ConvertCommand Parameters]\r\n" + *parameters + "\r\n";
    WriteWholeFile(folder / "HARP.ini", text);
  }

  // The texts written to the trace source at the level.
  [[nodiscard]] Lines Written(int32_t level) const {
    Lines texts;
    for (const auto& [l, text] : facility->writes) {
      if (l == level) texts.push_back(text);
    }
    return texts;
  }

  void AddPrinter(const std::string& name, int32_t status = 0) {
    auto printer = std::make_shared<host::portable::PrinterObject>(name);
    printer->status = status;
    printers->printers.push_back(printer);
  }

  Host host;
  ScratchFolder folder;
  std::shared_ptr<RecordingFacility> facility = std::make_shared<RecordingFacility>();
  std::shared_ptr<host::portable::WorksetObject> workset =
      std::make_shared<host::portable::WorksetObject>();
  std::shared_ptr<host::portable::RunningApplicationObject> application =
      std::make_shared<host::portable::RunningApplicationObject>();
  std::shared_ptr<host::portable::PrinterManagerObject> printers =
      std::make_shared<host::portable::PrinterManagerObject>();
};

}  // namespace kestrivon::test
