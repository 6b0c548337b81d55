#include <sstream>

#include "PipelineFixture.h"
#include "frame/ModuleState.h"
#include "platform/Environment.h"
#include "platform/portable/Registry.h"
#include "platform/portable/Spooler.h"
#include "printers/PrinterCatalogue.h"
#include "revise/Doctor.h"
#include "services/RegistrySettings.h"

// vemra-revise doctor and locks on the portable print world: the classes
// linked in, driver settings in the portable registry, virtual time.

namespace kestrivon::test {
namespace {

namespace pp = platform::portable;
using namespace hostkit::revise;
const std::string kAdobeKey =
    "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers\\Adobe PDF";
const std::string kFactoryKey =
    "Software\\FinePrint Software\\pdfFactory2\\FinePrinters\\pdfFactory\\PrinterDriverData";

class Session final : public PrinterSession {
 public:
  explicit Session(std::unique_ptr<RevisionPrinter> p) : p_(std::move(p)) {}
  std::string Extension() override { return p_->Extension(); }
  int32_t Version() override { return p_->Version(); }
  bool InitPrnSettings() override { return p_->InitPrnSettings(); }
  std::string CheckPrnSettings() override { return p_->CheckPrnSettings(); }
  bool IsPrinterAvailable() override { return p_->IsPrinterAvailable(); }
  bool SetPrnDefaults() override { return p_->SetPrnDefaults(); }
  bool DoPrint(const std::string&, const std::string&) override { throw std::logic_error("print"); }
  bool AppendFile(const std::string&, const std::string&) override { return false; }

 private:
  std::unique_ptr<RevisionPrinter> p_;
};

class Linked final : public ReviseBackend {
 public:
  void SetVariable(const std::string&, const std::string&) override {}
  Created Create(const std::string& progId) override {
    return {std::make_unique<Session>(FindPrinterClass(progId)->create()), {}, progId, {}};
  }
};

class Doctor : public PipelineTest {
 protected:
  Doctor() {
    pp::ClearRegistry();
    ResetModule(ModuleReset::kUnload);
    host.InstallHostClasses({.printerManager = [this] { return manager; }});
    MakeFolder(folder / "out");
    for (const char* name : {"Adobe PDF", "pdfFactory"}) {
      manager->printers.push_back(std::make_shared<host::portable::PrinterObject>(name));
      pp::DefinePrinter(name, {});
    }
    for (const char* flag : {"ViewPrintOutput", "PromptForFileName", "AskToReplacePDF"}) {
      Dword(platform::kHKeyLocalMachine, kAdobeKey + "\\PrinterDriverData", flag, 0);
    }
    Reg(platform::kHKeyLocalMachine, kAdobeKey + "\\PrinterDriverData", "Port", platform::kRegSz,
        out + "\\*.pdf" + '\0');
    Dword(platform::kHKeyLocalMachine, kAdobeKey + "\\DsSpooler", "printKeepPrintedJobs", 0);
    Dword(platform::kHKeyCurrentUser, kFactoryKey, "ShowDlg", 2);
    Dword(platform::kHKeyCurrentUser, kFactoryKey, "PdfAction", 0);
    platform::SetEnvironmentVariableTo("TEMP", out);
  }
  ~Doctor() override {
    platform::SetEnvironmentVariableTo("TEMP", temp);
    pp::ClearPrinters();
    pp::ClearRegistry();
  }
  static void Reg(platform::HKey hive, const std::string& key, const char* name, uint32_t type,
                  const std::string& bytes) {
    pp::SetRegistryValue(pp::ProcessRegistryView(), hive, key, name, type, bytes);
  }
  static void Dword(platform::HKey hive, const std::string& key, const char* name, uint32_t v) {
    pp::SetRegistryDword(pp::ProcessRegistryView(), hive, key, name, v);
  }
  const ClassReport& Examined(const char* name) {
    report = Examine(backend, ClassRegistration::Linked, {name});
    return report.classes.at(0);
  }

  const std::string out = folder / "out";
  const std::optional<std::string> temp = platform::EnvironmentVariable("TEMP");
  std::shared_ptr<host::portable::PrinterManagerObject> manager =
      std::make_shared<host::portable::PrinterManagerObject>();
  Linked backend;
  DoctorReport report;
};

TEST_F(Doctor, NamesEachWrongSettingWithItsKeyFoundAndNeededValue) {
  const std::string data = "HKEY_LOCAL_MACHINE\\" + kAdobeKey + "\\PrinterDriverData";
  struct Case {
    const char* cls;
    std::function<void()> breakIt;
    std::vector<SettingFinding> expected;
  } cases[] = {
      {"AdobePDF", [] {}, {}},
      {"PDFFactory", [] {}, {}},
      {"AdobePDF",
       [&] {
         Dword(platform::kHKeyLocalMachine, kAdobeKey + "\\PrinterDriverData", "ViewPrintOutput",
               1);
       },
       {{data, "ViewPrintOutput", "1", "0"}}},
      {"AdobePDF",
       [&] {
         Dword(platform::kHKeyLocalMachine, kAdobeKey + "\\DsSpooler", "printKeepPrintedJobs", 1);
       },
       {{"HKEY_LOCAL_MACHINE\\" + kAdobeKey + "\\DsSpooler", "printKeepPrintedJobs", "1", "0"}}},
      {"PDFFactory",
       [&] { Dword(platform::kHKeyCurrentUser, kFactoryKey, "ShowDlg", 4); },
       {{"HKEY_CURRENT_USER\\" + kFactoryKey, "ShowDlg", "4", "2"}}},
  };
  for (const Case& c : cases) {
    c.breakIt();
    const ClassReport& r = Examined(c.cls);
    SCOPED_TRACE(c.cls + (c.expected.empty() ? std::string(" clean") : c.expected[0].name) + ": " +
                 (r.problems.empty() ? "" : r.problems[0]));
    ASSERT_EQ(r.findings.size(), c.expected.size());
    for (size_t i = 0; i < c.expected.size(); ++i) {
      EXPECT_EQ(r.findings[i].key, c.expected[i].key);
      EXPECT_EQ(r.findings[i].name, c.expected[i].name);
      EXPECT_EQ(r.findings[i].found, c.expected[i].found);
      EXPECT_EQ(r.findings[i].needed, c.expected[i].needed);
    }
    // The doctor's table and the class's own check agree.
    EXPECT_EQ(r.checkPrnSettings->empty(), c.expected.empty());
    EXPECT_EQ(r.problems.empty(), c.expected.empty());
    std::ostringstream table;
    WriteTable(table, report);
    EXPECT_EQ(table.str().find("Nothing is wrong:") != std::string::npos, c.expected.empty());
    EXPECT_EQ(r.printer, c.cls == std::string("AdobePDF") ? "Adobe PDF" : "pdfFactory");
    Dword(platform::kHKeyLocalMachine, kAdobeKey + "\\PrinterDriverData", "ViewPrintOutput", 0);
    Dword(platform::kHKeyLocalMachine, kAdobeKey + "\\DsSpooler", "printKeepPrintedJobs", 0);
    Dword(platform::kHKeyCurrentUser, kFactoryKey, "ShowDlg", 2);
  }
}

TEST_F(Doctor, JudgesLocksByTheComponentsRulesAndRemovesOnlyStaleOnes) {
  const std::string lock = out + "\\A-100.RLCK", broken = out + "\\B-7.RLCK";
  platform::WriteAnsiTextLines(lock, {"15.11.2026 09:12:40", "PC042", "jdoe"});
  platform::WriteAnsiTextLines(broken, {"15.11.2026 09:12:40", "PC042"});
  // One folder aged through the rules: the unreadable lock always stays.
  const struct {
    int64_t age;
    const char* state;
    bool removed;
  } passes[] = {{10, "live", false}, {3599999, "live", false}, {3600000, "stale", true}};
  for (const auto& pass : passes) {
    AgeTo(lock, pass.age);
    const ClassReport& r = Examined("AdobePDF");
    ASSERT_EQ(r.locks.size(), 2u);
    for (const LockReport& found : r.locks) {
      const bool whole = found.path == lock;
      EXPECT_EQ(found.state, whole ? pass.state : "unreadable") << found.path;
      if (whole) {
        EXPECT_EQ(found.user + found.computer, "jdoePC042");
      }
    }
    // Only the first lock is judged; a stale one lets the print go on.
    EXPECT_EQ(r.problems.empty(), pass.removed);
    EXPECT_TRUE(platform::FileExists(lock)) << "the doctor deletes nothing";

    std::ostringstream listing, errors;
    EXPECT_EQ(LocksMain({out, "--remove-stale"}, listing, errors), kExitSuccess);
    EXPECT_EQ(platform::FileExists(lock), !pass.removed) << listing.str();
    EXPECT_TRUE(platform::FileExists(broken));
  }
}

// What a failed run or an odd setting leaves is named, with its fix, and
// counted; the class still archives.
TEST_F(Doctor, WarnsOfLeftoverDriverFilesMissingTempAndOddSleepers) {
  const std::string sleeperKey = "Software\\HALDRIM\\VEMRA";
  const struct {
    const char* what;
    const char* cls;
    std::function<void()> setUp;
    std::string warning;  // the start of the one warning; empty: none
  } cases[] = {
      {"clean", "AdobePDF", [] {}, ""},
      {"driver file", "AdobePDF", [&] { WriteWholeFile(out + "\\A-100.pdf", "%PDF"); },
       "driver file '" + out +
           "\\A-100.pdf' was left by a run that failed: the next revision "
           "of A-100 waits"},
      {"no TEMP", "PDFFactory", [] { platform::SetEnvironmentVariableTo("TEMP", std::nullopt); },
       "TEMP is not set: the class locks the system's temporary folder"},
      {"negative sleeper", "NoFile",
       [&] { Dword(platform::kHKeyCurrentUser, sleeperKey, "RevisionSleeper", 0xFFFFFFFBu); },
       "the revision sleeper is negative"},
      {"absurd sleeper", "NoFile",
       [&] { Dword(platform::kHKeyCurrentUser, sleeperKey, "RevisionSleeper", 60000); },
       "the revision sleeper of 600000 ms is absurd"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    c.setUp();
    ResetModule(ModuleReset::kUnload);
    const ClassReport& r = Examined(c.cls);
    std::vector<std::string> warnings = r.warnings;
    warnings.insert(warnings.end(), report.sleeperWarnings.begin(), report.sleeperWarnings.end());
    EXPECT_EQ(report.ThingsToFix(), warnings.size());
    ASSERT_EQ(warnings.size(), c.warning.empty() ? 0u : 1u);
    if (!c.warning.empty()) {
      EXPECT_EQ(warnings[0].substr(0, c.warning.size()), c.warning);
    }
    EXPECT_TRUE(r.problems.empty()) << r.problems[0];
    if (platform::FileExists(out + "\\A-100.pdf")) RemoveFile(out + "\\A-100.pdf");
    platform::SetEnvironmentVariableTo("TEMP", out);
    Dword(platform::kHKeyCurrentUser, sleeperKey, "RevisionSleeper", 2);
  }
}

}  // namespace
}  // namespace kestrivon::test
