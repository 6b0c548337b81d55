#include <gtest/gtest.h>

#include "revise/ReviseOptions.h"

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
            "option --document needs a value");
}

TEST(ReviseOptions, RefusesIncompleteOrUnknownArguments) {
  EXPECT_EQ(ErrorOf({}), "no revision printer class given");
  EXPECT_EQ(ErrorOf({"NoFile", "--name", "n"}), "no revision folder given (--folder)");
  EXPECT_EQ(ErrorOf({"NoFile", "--folder", "f"}), "no file name given (--name)");
  EXPECT_EQ(ErrorOf({"NoFile", "--folder"}), "option --folder needs a value");
  EXPECT_EQ(ErrorOf({"NoFile", "AdobePDF", "--folder", "f", "--name", "n"}),
            "unexpected argument AdobePDF");
  EXPECT_EQ(ErrorOf({"NoFile", "--folder", "f", "--name", "n", "--fast"}), "unknown option --fast");
  EXPECT_EQ(ErrorOf({"NoFile", "--folder", "f", "--name", "n", "--level", "high"}),
            "--level needs a number, not 'high'");
  EXPECT_EQ(ErrorOf({"NoFile", "--folder", "f", "--name", "n", "--append-to", "x"}),
            "--append-to needs --append");
  EXPECT_TRUE(std::holds_alternative<HelpRequest>(ParseArguments({"NoFile", "--help"})));
}

TEST(ReviseOptions, TheArchiveIsFolderBackslashNameExtension) {
  ReviseOptions options;
  options.revisionFolder = "C:\\Rev";
  options.fileName = "A-100";
  EXPECT_EQ(ArchiveName(options, ".PDF"), "C:\\Rev\\A-100.PDF");
  options.revisionFolder = "C:\\Rev\\";
  EXPECT_EQ(ArchiveName(options, "NoFile"), "C:\\Rev\\A-100NoFile");
}

}  // namespace
}  // namespace kestrivon::hostkit::revise
