// vemra-revise run as the administrator runs it: a separate process, its
// exit status, what it prints and what lands in the trace log.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <map>

#include "KestrivonVersion.h"
#include "TestSupport.h"
#include "core/Settings.h"
#include "core/TiffMerge.h"

namespace kestrivon::hostkit::test {
namespace {

using Fields = std::vector<std::string>;

constexpr const char* kDoPrintLine =
    "VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> nothing to do";

std::string ShellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

struct Outcome {
  int exitCode = -1;
  std::string out;
  std::string err;
};

class VemraRevise : public ::testing::Test {
 protected:
  // Runs with the host kit's variables cleared, except those given.
  Outcome Revise(const std::vector<std::string>& args,
                 const std::map<std::string, std::string>& variables = {}) {
    std::string command = "env";
    for (const char* name :
         {kTraceLogVariable, kDiagLevelVariable, kAnswersVariable, kTranslationsVariable,
          kDocumentNameVariable, kShowRevisionMessagesVariable, kConfigDirectoryVariable}) {
      command += std::string(" -u ") + name;
    }
    for (const auto& [name, value] : variables) command += " " + name + "=" + ShellQuoted(value);
    command += " " + ShellQuoted(VEMRA_REVISE_EXE);
    for (const auto& arg : args) command += " " + ShellQuoted(arg);
    command +=
        " >" + ShellQuoted((dir / "out").string()) + " 2>" + ShellQuoted((dir / "err").string());
    const int status = std::system(command.c_str());
    Outcome run;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.out = ReadFile(dir / "out");
    run.err = ReadFile(dir / "err");
    return run;
  }

  std::vector<std::string> Args(const std::string& printerClass,
                                std::vector<std::string> more = {}) {
    std::vector<std::string> args{
        printerClass, "--folder", (dir / "rev").string(), "--name", "A-100", "--log", log.string()};
    args.insert(args.end(), more.begin(), more.end());
    return args;
  }

  std::vector<std::string> Traces() {
    std::vector<std::string> lines;
    for (const auto& entry : EntriesOf(log, "TRACE")) lines.push_back(entry.at(0));
    return lines;
  }

  TempDir dir;
  std::filesystem::path log = dir / "trace.log";
};

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST_F(VemraRevise, RunsANoFileRevisionInTheHostsOrder) {
  std::filesystem::create_directories(dir / "rev");
  const Outcome run = Revise(Args("vemrakestrivon.NOFILE"));  // a ProgID in any case
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_EQ(run.out, "Trace log: " + log.string() +
                         "\n"
                         "Created VemraKestrivon.NoFile\n"
                         "Extension -> \"NoFile\"\n"
                         "Version -> 1\n"
                         "InitPrnSettings -> True\n"
                         "CheckPrnSettings -> \"\"\n"
                         "IsPrinterAvailable -> True\n"
                         "SetPrnDefaults -> True\n"
                         "DoPrint -> True\n"
                         "Released\n"
                         "Counter Kestrivan.InstanceCount -> 0\n"
                         "Revision done\n");
  EXPECT_EQ(Traces(), Fields{kDoPrintLine});
  EXPECT_TRUE(std::filesystem::is_empty(dir / "rev"));
  // The component let its object go: the registered counter is back at 0.
  EXPECT_EQ(EntriesOf(log, "COUNTER").back(), (Fields{"Kestrivan.InstanceCount", "0"}));
  EXPECT_EQ(EntriesOf(log, "LEVEL"), std::vector<Fields>{{"2"}});
  EXPECT_FALSE(Contains(run.err, "### ")) << run.err;
}

TEST_F(VemraRevise, DebugLevelShowsTheDebugOnlyLines) {
  // --debug, or the level from the environment.
  struct Case {
    std::vector<std::string> more;
    std::map<std::string, std::string> variables;
    std::string level;
  };
  for (const Case& c : {Case{{"--debug"}, {}, "3"}, Case{{}, {{kDiagLevelVariable, "4"}}, "4"}}) {
    std::filesystem::remove(log);
    const Outcome run = Revise(Args("NoFile", c.more), c.variables);
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_TRUE(
        Contains(run.err, "### VemraKestrivon::NoFile::Class_Initialize(): Instance count: 1\n"))
        << run.err;
    EXPECT_TRUE(Contains(
        run.err, "### VemraKestrivon::NoFile::Class_Terminate(): Instance count is now: 0\n"))
        << run.err;
    EXPECT_EQ(EntriesOf(log, "LEVEL"), std::vector<Fields>{{c.level}});
    // Debug-only lines go to the debugger, not to the host's trace.
    EXPECT_EQ(Traces(), Fields{kDoPrintLine});
  }
}

TEST_F(VemraRevise, APrinterWhoseDoPrintFailsFailsTheRun) {
  const Outcome quiet = Revise(Args("AdobePDF"));
  EXPECT_EQ(quiet.exitCode, 1) << quiet.out << quiet.err;
  EXPECT_TRUE(Contains(quiet.out, "DoPrint -> False\n")) << quiet.out;
  EXPECT_TRUE(Contains(quiet.out, "Revision failed: DoPrint did not answer True\n")) << quiet.out;
  // Without a document the request is refused; the trace says why.
  EXPECT_EQ(
      Traces().back(),
      "VemraKestrivon::AdobePDF.IRevisionPrinter_DoPrint: printing revision aborted because parameters are faulty");
  const size_t quietLines = Traces().size();

  const Outcome debug = Revise(Args("AdobePDF", {"--debug"}));
  EXPECT_EQ(debug.exitCode, 1);
  // AdobePDF writes its creation line to the host's trace when debugging.
  EXPECT_EQ(Traces().at(quietLines),
            "### VemraKestrivon::AdobePDF::Class_Initialize(): Instance count: 1");
}

TEST_F(VemraRevise, AppendsToTheArchiveDoPrintNamed) {
  const Outcome run = Revise(Args("NoFile", {"--append", "C:\\Scans\\extra.pdf"}));
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_TRUE(Contains(run.out, "AppendFile \"C:\\Scans\\extra.pdf\" to \"" +
                                    (dir / "rev").string() +
                                    "\\A-100NoFile\"\nAppendFile -> True\n"))
      << run.out;
}

// The sample documents' world: the text printed by the Adobe PDF driver,
// the drawing's two sheets appended; the archive and the wait are shown.
TEST_F(VemraRevise, RevisesASampleDocumentIntoAPdfAndShowsTheArchive) {
  const std::string samples = (dir / "samples").string();
  ASSERT_EQ(
      std::system((ShellQuoted(SAMPLES_DIR "/make-samples") + " " + ShellQuoted(samples)).c_str()),
      0);
  std::filesystem::create_directories(dir / "rev");
  const Outcome run =
      Revise(Args("AdobePDF", {"--document", "T-100", "--print-world", samples + "/printworld.ini",
                               "--append", samples + "/D-200.pdf"}));
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  const std::string archive = "Archive \"" + (dir / "rev").string() + "\\A-100.PDF\": ";
  EXPECT_TRUE(Contains(run.out, "DoPrint -> True\n" + archive));
  EXPECT_TRUE(Contains(run.out, " bytes, 1 pages\nAppendFile ")) << run.out;
  EXPECT_TRUE(Contains(run.out, " bytes, 3 pages\nReleased\n")) << run.out;
  EXPECT_TRUE(Contains(run.err, "waiting for Vemra Adobe PDF to write ")) << run.err;
  // The waits the component must make are named as they happen.
  EXPECT_TRUE(Contains(run.err, "revision sleeper: 2000 ms between looks at the printer"))
      << run.err;
  EXPECT_TRUE(Contains(run.err, "one more 500 ms pause before the copy")) << run.err;
}

TEST_F(VemraRevise, RefusesBadArgumentsBeforeCreatingAnything) {
  WriteFile(dir / "file", "x");
  const struct {
    std::vector<std::string> args;
    std::string said;
  } cases[] = {
      {Args("Bogus"), "'Bogus' is no revision printer class; the classes are "},
      {Args("AdobePFD"), "did you mean AdobePDF?"},
      {{}, "class is required"},
      {Args("NoFile", {"--log", (dir / "file" / "trace.log").string()}), "cannot be written"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.said);
    const Outcome run = Revise(c.args);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(Contains(run.err, c.said)) << run.err;
    EXPECT_FALSE(Contains(run.out, "Created")) << run.out;
  }
  // A wrong class is told in a line, not in the whole usage.
  EXPECT_FALSE(Contains(Revise(Args("Bogus")).err, "Usage:"));
  EXPECT_TRUE(Contains(Revise({}).err, "Usage: vemra-revise"));
  EXPECT_FALSE(std::filesystem::exists(log));
}

// A False answer is followed by the component's trace line that says why.
TEST_F(VemraRevise, AFalseAnswerIsFollowedByTheComponentsReason) {
  const Outcome run = Revise(Args("AdobePDF", {"--append", (dir / "missing.pdf").string()}));
  EXPECT_EQ(run.exitCode, 1);
  for (const std::string said :
       {"InitPrnSettings -> False\n  error reported: 429 ActiveX component can't create object "
        "(VemmraKestrivon.PrnDevice, PrinterManager [PropertyGet])\n",
        "IsPrinterAvailable -> False\n  why: VemmraKestrivon.PrnDevice.IsPrinterAvailable(): not "
        "ready (= not found)\n",
        "DoPrint -> False\n  why: VemraKestrivon::AdobePDF.IRevisionPrinter_DoPrint: printing "
        "revision aborted because parameters are faulty\n",
        "AppendFile -> False\n  why: VemraKestrivon::Globals.MergePDFFiles(fileMain "
        "(String)fileToAppend (String)): fileToAppend does not exist -> aborting...\n"}) {
    EXPECT_TRUE(Contains(run.out, said)) << run.out;
  }
}

// Each command explains itself and tells its version; a lock folder that
// is not there is an error, not a folder without locks.
TEST_F(VemraRevise, EachCommandExplainsItself) {
  const std::string version = std::string("vemra-revise ") + KESTRIVON_VERSION_TEXT + "\n";
  const struct {
    std::vector<std::string> args;
    int exit;
    std::string said;
  } cases[] = {
      {{"--help"}, 0, "vemra-revise doctor ..."},
      {{"/?"}, 0, "--append-to"},
      {{"--version"}, 0, version},
      {{"doctor", "--help"}, 0, "Usage: vemra-revise doctor"},
      {{"doctor", "--version"}, 0, version},
      {{"locks", "--help"}, 0, "--remove-stale"},
      {{"setup", "--help"}, 0, "pdffactory4:"},
      {{"doctor", "--class", "adobepfd"}, 2, "did you mean AdobePDF?"},
      {{"locks", (dir / "nowhere").string()}, 2, "does not exist"},
      {{"locks"}, 2, "folder is required"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.args.empty() ? "" : c.args.front() + " " + c.args.back());
    const Outcome run = Revise(c.args);
    EXPECT_EQ(run.exitCode, c.exit);
    EXPECT_TRUE(Contains(c.exit == 0 ? run.out : run.err, c.said)) << run.out << run.err;
  }
}

TEST_F(VemraRevise, HelpIsNoError) {
  const Outcome run = Revise({"--help"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_TRUE(Contains(run.out, "Usage: vemra-revise")) << run.out;
  EXPECT_TRUE(run.err.empty()) << run.err;
}

// HARP.ini in the configuration directory; a TIFF appended for real.
TEST_F(VemraRevise, RunsTheHarpPrinterWithItsConfigurationAndAppendsATiff) {
  std::filesystem::create_directories(dir / "rev");
  WriteFile(dir / "HARP.ini",
            "[Default]\nPrinterName=HARP PS\nRevisionExtension=.TIF\nConvertCommand=gs\n"
            "[ConvertCommand Parameters]\nDevice=tiffg4\n");
  for (const auto& [name, pages] : {std::pair{"A-100.TIF", 1}, std::pair{"scan.tif", 2}}) {
    WriteFile(dir / "page.ps", "%!PS\n1 1 " + std::to_string(pages) + " { pop showpage } for\n");
    const std::string gs = "gs -q -dSAFER -dNOPAUSE -dBATCH -r20 -sDEVICE=tiffg4 -sOutputFile=" +
                           ShellQuoted((dir / "rev" / name).string()) + " " +
                           ShellQuoted((dir / "page.ps").string());
    ASSERT_EQ(std::system(gs.c_str()), 0);
  }
  const Outcome run =
      Revise(Args("VemraHARP", {"--append", (dir / "rev" / "scan.tif").string(), "--append-to",
                                (dir / "rev" / "A-100.TIF").string()}),
             {{kConfigDirectoryVariable, dir.Path().string()}});
  EXPECT_EQ(run.exitCode, 1);  // DoPrint refuses
  EXPECT_TRUE(Contains(run.out, "Extension -> \".TIF\"\n")) << run.out;
  EXPECT_TRUE(Contains(run.out, "AppendFile -> True\n")) << run.out;
  EXPECT_EQ(TiffPageCount((dir / "rev" / "A-100.TIF").string()), 3);
  const auto sources = EntriesOf(log, "SOURCE");
  ASSERT_FALSE(sources.empty());
  EXPECT_EQ(
      sources.front(),
      (Fields{
          "Printer", "8", "42",
          "VemraKestrivon::HARPConfiguration::LoadSettingsFromIniFile(): Reading ini-file..."}));
  EXPECT_EQ(
      sources.back(),
      (Fields{
          "Printer", "2", "42",
          "VemraKestrivon::VemraHARP.IRevisionPrinter_DoPrint(): Harp Printer is not supported"}));
}

}  // namespace
}  // namespace kestrivon::hostkit::test
