#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/Printing.h"

namespace kestrivon::host::portable {

// The host's print world without a COM runtime, for tests and the host kit:
// plain objects that answer what they are set to and record what the
// component did to them.

class PrinterObject : public HostObject, public Printer {
 public:
  explicit PrinterObject(std::string name) : name(std::move(name)) {}
  std::string Name() override { return name; }
  void ReleasePrinter() override { ++releases; }
  bool PrepareDevMode(bool notHostDocument, int32_t reserved, const HostObjectRef& documentSettings,
                      const std::string& text) override;
  int32_t EndJob() override { return ++endJobs; }
  int32_t CurrentStatus() override;

  std::string name;
  // The status bits; a function of the reading count when set, so that a
  // printer can "print" for a while.
  int32_t status = 0;
  std::function<int32_t(int reading)> statusSequence;
  bool jobStarted = false;

  struct DevModeCall {
    bool notHostDocument;
    int32_t reserved;
    HostObjectRef documentSettings;
    std::string text;
  };
  std::vector<DevModeCall> devModeCalls;
  int releases = 0;
  int endJobs = 0;
  int statusReadings = 0;
};

class PrinterManagerObject : public HostObject, public PrinterManager {
 public:
  HostObjectRef GetPrinter(const std::string& name) override;
  void Shutdown() override { ++shutdowns; }
  // Printers by name; the look-up ignores case, as the print library's does.
  std::vector<std::shared_ptr<PrinterObject>> printers;
  std::vector<std::string> lookups;
  int shutdowns = 0;
};

class DocFctDistObject : public HostObject, public DocFctDist {
 public:
  void SetDocument(const HostObjectRef& document) override { this->document = document; }
  void ReleaseDocument() override {
    document.reset();
    ++releases;
  }
  bool Printdirect(const HostObjectRef& printer) override;
  // What printing does (a driver writing its file); answers the print's success.
  std::function<bool(const HostObjectRef& document, const HostObjectRef& printer)> print;
  HostObjectRef document;
  std::vector<HostObjectRef> printedTo;
  int releases = 0;
};

class DocumentFileHelperObject : public HostObject, public DocumentFileHelper {
 public:
  std::string FileName(const HostObjectRef& document) override;
  std::string TempOutputName(const std::string& extension) override;
  bool MustFetch(const std::string& fileName) override { return mustFetch.count(fileName) != 0; }
  std::string FetchFile(const HostObjectRef& document, const std::string& purpose) override;
  // The file behind each document, the files kept in the vault (fetched to
  // a local path), and the purposes that fetching was asked for.
  std::map<const HostObject*, std::string> files;
  std::set<std::string> mustFetch;
  std::map<const HostObject*, std::string> fetched;
  std::vector<std::string> purposes;
  std::string tempFolder = "C:\\Temp";
  int tempNames = 0;
};

class UIPolicyObject : public HostObject, public UIPolicy {
 public:
  bool IsSilent(const HostObjectRef& context) override {
    asked.push_back(context);
    return silent;
  }
  bool silent = false;
  std::vector<HostObjectRef> asked;
};

}  // namespace kestrivon::host::portable
