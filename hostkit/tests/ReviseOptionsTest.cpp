#include <gtest/gtest.h>

#include <sstream>

#include "revise/ReviseOptions.h"
#include "revise/ReviseRun.h"

namespace kestrivon::hostkit::revise {
namespace {

using Args = std::vector<std::string>;
using Variables = std::vector<std::pair<std::string, std::string>>;

ReviseOptions Parsed(const Args& args) {
  const ParseResult result = ParseArguments(args);
  if (const auto* error = std::get_if<UsageError>(&result)) {
    ADD_FAILURE() << error->message;
    return {};
  }
  return std::get<ReviseOptions>(result);
}

std::string ErrorOf(const Args& args) {
  const ParseResult result = ParseArguments(args);
  const auto* error = std::get_if<UsageError>(&result);
  return error ? error->message : "(accepted)";
}

TEST(ReviseOptions, TakesTheClassAndEveryOption) {
  const auto options = Parsed({"--folder", "C:\\Rev", "AdobePDF", "--name", "A-100", "--append",
                               "C:\\b.pdf", "--append-to", "C:\\Rev\\A.PDF", "--log", "C:\\t.log",
                               "--answers", "a.txt", "--translations", "de.txt", "--level", "5"});
  EXPECT_EQ(options.printerClass, "AdobePDF");
  EXPECT_EQ(options.revisionFolder, "C:\\Rev");
  EXPECT_EQ(options.fileName, "A-100");
  EXPECT_EQ(options.appendFile, "C:\\b.pdf");
  EXPECT_EQ(options.appendTo, "C:\\Rev\\A.PDF");
  EXPECT_EQ(HostKitEnvironment(options), (Variables{{"VEMRA_TRACE_LOG", "C:\\t.log"},
                                                    {"VEMRA_DIAG_LEVEL", "5"},
                                                    {"VEMRA_MSGBOX_ANSWERS", "a.txt"},
                                                    {"VEMRA_TRANSLATIONS", "de.txt"}}));
}

TEST(ReviseOptions, DebugMeansLevelThreeAndNothingElseIsSet) {
  EXPECT_EQ(HostKitEnvironment(Parsed({"NoFile", "--folder", "", "--name", "", "--debug"})),
            (Variables{{"VEMRA_DIAG_LEVEL", "3"}}));
  EXPECT_EQ(HostKitEnvironment(Parsed({"NoFile", "--folder", "", "--name", "", "--lenient"})),
            (Variables{{"VEMRA_HOSTKIT_STRICT", "0"}}));
  EXPECT_TRUE(HostKitEnvironment(Parsed({"NoFile", "--folder", "f", "--name", "n"})).empty());
}

TEST(ReviseOptions, ADocumentAndItsOwnersOptionGoToTheHostKit) {
  const auto options = Parsed({"NoFile", "--folder", "f", "--name", "n", "--document", "A-100",
                               "--show-revision-messages", "False"});
  EXPECT_EQ(options.document, "A-100");
  EXPECT_EQ(options.showRevisionMessages, "False");
  EXPECT_EQ(HostKitEnvironment(options), (Variables{{"VEMRA_DOCUMENT_NAME", "A-100"},
                                                    {"VEMRA_SHOW_REVISION_MESSAGES", "False"}}));
  EXPECT_EQ(ErrorOf({"NoFile", "--folder", "f", "--name", "n", "--document"}),
            "--document: 1 required TEXT missing");
}

TEST(ReviseOptions, RefusesIncompleteOrUnknownArguments) {
  const std::pair<Args, std::string> cases[] = {
      {{}, "class is required"},
      {{"NoFile", "--name", "n"}, "--folder is required"},
      {{"NoFile", "--folder", "f"}, "--name is required"},
      {{"NoFile", "--folder"}, "--folder: 1 required TEXT missing"},
      {{"NoFile", "AdobePDF", "--folder", "f", "--name", "n"},
       "The following argument was not expected: AdobePDF"},
      {{"NoFile", "--folder", "f", "--name", "n", "--fast"},
       "The following argument was not expected: --fast"},
      {{"NoFile", "--folder", "f", "--name", "n", "--level", "high"},
       "--level needs a number, not 'high'"},
      {{"NoFile", "--folder", "f", "--name", "n", "--append-to", "x"},
       "--append-to requires --append"},
  };
  for (const auto& [args, said] : cases) EXPECT_EQ(ErrorOf(args), said);
  EXPECT_TRUE(std::holds_alternative<HelpRequest>(ParseArguments({"NoFile", "--help"})));
  // An empty revision folder and name are handed over as they are.
  const auto options = Parsed({"NoFile", "--folder", "", "--name", ""});
  EXPECT_TRUE(options.revisionFolder.empty() && options.fileName.empty());
}

// Names no host hands over: out of the folder, not a file, or forbidden.
TEST(ReviseOptions, RefusesNamesAndFoldersNoHostHandsOver) {
  const struct {
    const char* folder;
    const char* name;
    const char* error;  // nullptr: accepted
  } cases[] = {
      {"C:\\Revisions", "A-100", nullptr},
      {"\\\\server\\share\\rev", "A 100.v2", nullptr},
      {"/srv/rev", "A-100", nullptr},
      {"", "", nullptr},
      {"C:\\Revisions", "..\\..\\x", "--name ..\\..\\x: '..\\..\\x' is a path, not a file name"},
      {"C:\\Revisions", "..", "--name ..: '..' would lead out of the folder"},
      {"C:\\Rev\\..\\..\\Windows", "A",
       "--folder C:\\Rev\\..\\..\\Windows: '..' would lead out of the folder"},
      {"C:\\Revisions", "A?1", "--name A?1: 'A?1' holds a character Windows forbids in names"},
      {"C:\\Rev:x", "A", "--folder C:\\Rev:x: 'Rev:x' holds a character Windows forbids in names"},
      {"C:\\Revisions", "con", "--name con: 'con' names a device, not a file"},
      {"C:\\Revisions", "NUL.pdf", "--name NUL.pdf: 'NUL.pdf' names a device, not a file"},
      {"C:\\Revisions", "com1", "--name com1: 'com1' names a device, not a file"},
      {"C:\\LPT9\\x", "A", "--folder C:\\LPT9\\x: 'LPT9' names a device, not a file"},
      {"C:\\Revisions", "COM10", nullptr},
      {"C:\\Revisions", "A.", "--name A.: 'A.' ends in a blank or a dot, which Windows drops"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.folder) + " | " + c.name);
    EXPECT_EQ(ErrorOf({"NoFile", "--folder", c.folder, "--name", c.name}),
              c.error ? c.error : "(accepted)");
  }
}

TEST(ReviseOptions, TheArchiveIsFolderBackslashNameExtension) {
  ReviseOptions options;
  options.revisionFolder = "C:\\Rev";
  options.fileName = "A-100";
  EXPECT_EQ(ArchiveName(options, ".PDF"), "C:\\Rev\\A-100.PDF");
  options.revisionFolder = "C:\\Rev\\";
  EXPECT_EQ(ArchiveName(options, "NoFile"), "C:\\Rev\\A-100NoFile");
}

// A printer that answers every call True; its release leaves alive what
// the backend is told. The trace log is the default one: no variable is set.
class Answering final : public PrinterSession {
 public:
  std::string Extension() override { return ".PDF"; }
  int32_t Version() override { return 1; }
  bool InitPrnSettings() override { return true; }
  std::string CheckPrnSettings() override { return {}; }
  bool IsPrinterAvailable() override { return true; }
  bool SetPrnDefaults() override { return true; }
  bool DoPrint(const std::string&, const std::string&) override { return true; }
  bool AppendFile(const std::string&, const std::string&) override { return true; }
};
class Leaving final : public ReviseBackend {
 public:
  explicit Leaving(ReleaseCheck check) : check_(std::move(check)) {}
  void SetVariable(const std::string&, const std::string&) override {}
  Created Create(const std::string&) override {
    return {std::make_unique<Answering>(), CreateFailure::kNone, "Test.Printer", {}};
  }
  ReleaseCheck Released() override { return check_; }

 private:
  ReleaseCheck check_;
};

TEST(ReviseRun, ObjectsOutlivingTheReleaseFailTheRevision) {
  struct Case {
    ReviseBackend::ReleaseCheck check;
    int exit;
    std::string end, err;
  };
  for (const Case& c :
       {Case{{{"Host kit objects alive -> 0"}, {}, {}}, kExitSuccess, "Revision done\n", ""},
        Case{{{"Host kit objects alive -> 2"}, {"2 host kit objects still alive"}, {}},
             kExitLeaked,
             "Revision failed: objects outlived the release\n",
             "vemra-revise: leaked: 2 host kit objects still alive\n"},
        Case{{{"Host kit objects alive -> 0"}, {}, {"wrong kind: X"}},
             kExitLeaked,
             "Revision failed: the strict host kit found broken duties\n",
             "vemra-revise: strict host: wrong kind: X\n"}}) {
    Leaving backend(c.check);
    std::ostringstream out, err;
    EXPECT_EQ(ReviseMain("vemra-revise", {"X", "--folder", "F", "--name", "N"}, backend, out, err),
              c.exit);
    EXPECT_TRUE(out.str().ends_with("Released\n" + c.check.shown[0] + "\n" + c.end)) << out.str();
    EXPECT_EQ(err.str(), c.err);
  }
}

}  // namespace
}  // namespace kestrivon::hostkit::revise
