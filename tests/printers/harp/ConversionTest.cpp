#include <algorithm>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <tuple>

#include "HarpFixture.h"
#include "core/TiffMerge.h"
#include "printers/harp/HARPConfiguration.h"
#include "services/IniFiles.h"

// The conversion command: templates to command lines, the endless
// placeholder, the time-out, and real conversions through Ghostscript.

namespace kestrivon::test {
namespace {

const std::string kSwitches = " -q -dSAFER -dNOPAUSE -dBATCH";
constexpr const char* kLabel = "VemraKestrivon::HARPConfiguration|";

// The command line published on Workset.Globals, or "" when none was.
std::string Published(const host::portable::GlobalsObject& globals) {
  const auto it = globals.values.find("HARPGhostScriptConvertCommand");
  return it == globals.values.end() ? std::string() : it->second;
}

TEST_F(HarpTest, TemplatesBecomeCommandLines) {
  struct Row {
    std::string parameters;
    std::string command;
    PageDescription page;
    std::string postScript;
    std::string conversion;
    std::string expected;  // empty: no command line could be made
  };
  const std::string gs = "C:\\gs\\bin\\gswin32c.exe";
  workset->fileSystem->versions[gs] = "10.0.0";
  const Row rows[] = {
      {"Out=-o", "nosuch -a b", {595, 842, true}, "C:\\in.ps", "C:\\out.pdf", "nosuch -a b"},
      {"Files=%ConversionFullFileName% %PostScriptFullFileName%\r\nOutDir=C:\\x",
       "nosuch %OutDir% %Files%",
       {595, 842, true},
       "C:\\in.ps",
       "C:\\out.pdf",
       "nosuch C:\\x \"C:\\out.pdf\" \"C:\\in.ps\""},
      {"Out=-o",
       "nosuch %PostScriptFullFileName% %ConversionFullFileName%",
       {1, 1, true},
       "\"C:\\a b.ps\"",
       "C:\\o b.tif",
       "nosuch \"C:\\a b.ps\" \"C:\\o b.tif\""},
      {"Out=-o",
       "nosuch -w%PaperSizeX% -h%PaperSizeY% %LayoutOrientation%",
       {842, 595, false},
       "a",
       "b",
       "nosuch -w842 -h595 ConvertCommandPortrait"},
      {"Out=-o", "nosuch %LayoutOrientation%", {0, 0, true}, "a", "b", "nosuch -dPortrait"},
      {"Out=-o",
       "nosuch %WindowsUser%_%TimeStamp%_%VemraSystemUID%",
       {0, 0, true},
       "a",
       "b",
       "nosuch " + WinUserName() + "_20261122_UID7"},
      {"Out=-o", "nosuch -w%PaperSizeX%", {0, 842, true}, "a", "b", ""},
      {"A=%B%%B%%B%%B%\r\nB=%C%%C%%C%%C%\r\nC=" + std::string(3000, 'x'),
       "nosuch %A%",
       {1, 1, true},
       "a",
       "b",
       "nosuch " + std::string(48000, 'x')},
      {"GsCall=\"" + gs + "\"" + kSwitches,
       "%GsCall% -sDEVICE=pdfwrite",
       {1, 1, true},
       "a",
       "b",
       "\"" + gs + "\"" + kSwitches + " -sDEVICE=pdfwrite"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.command);
    WriteIni({{"ConvertCommand", row.command}, {"ConvertCommandPortrait", "-dPortrait"}},
             row.parameters);
    workset->globals->values.erase("HARPGhostScriptConvertCommand");
    facility->writes.clear();
    HARPConfiguration configuration;
    configuration.SetTimeStamp("20261122");
    configuration.SetVemraSystemUID("UID7");
    EXPECT_FALSE(configuration.ExecuteConvertCommand(row.page, row.postScript, row.conversion));
    EXPECT_EQ(Published(*workset->globals), row.expected);
    if (row.expected.empty()) {
      EXPECT_EQ(
          Written(2).back(),
          "VemraKestrivon::HARPConfiguration.ExecuteConvertCommand(): Generating conversion command failed");
    }
  }
  EXPECT_EQ(workset->globals->values["HARPGhostScriptPath"], gs);
  EXPECT_EQ(workset->globals->values["HARPGhostScriptVersion"], "10.0.0");
  EXPECT_EQ(workset->fileSystem->versionQueries, Lines(2, gs));
  EXPECT_TRUE(host.errors.empty());

  // An empty PostScript name is enclosed into one quote, a setting ending in
  // a quote is enclosed once more; the two replacements are traced with
  // their small r and capital R.
  WriteIni({{"ConvertCommand", "nosuch %PostScriptFullFileName% %ConversionFullFileName%"},
            {"PrinterRedirection", folder / "ps\\job.ps\""}},
           "Out=-o");
  facility->writes.clear();
  EXPECT_FALSE(
      HARPConfiguration().ExecuteConvertCommand({1, 1, true}, "", "%PostScriptFullFileName%"));
  EXPECT_EQ(Published(*workset->globals), "nosuch \" \"\"" + folder / "ps\\job.ps" + "\"\"\"");
  const std::string x = "xxx xxx xxx VemraKestrivon::HARPConfiguration::ExecuteConvertCommand(): ";
  const Lines written = Written(8);
  const Lines replaced = {
      x + "'PrinterRedirection' replacement: 'nosuch \" %ConversionFullFileName%'",
      x + "'ConvertCommandOutputFullFileName' Replacement: 'nosuch \" "
          "\"%PostScriptFullFileName%\"'"};
  for (const std::string& line : replaced) {
    EXPECT_EQ(std::count(written.begin(), written.end(), line), 1) << line;
  }

  // Run-time errors: a Ghostscript call shorter than its switches, and
  // parameters that insert one another twice over (out of memory, not 2^40).
  std::string chain;
  for (int i = 0; i < 40; ++i) {
    const std::string next = "%P" + std::to_string(i + 1) + "%";
    chain += "P" + std::to_string(i) + "=" + next + next + "\r\n";
  }
  for (const auto& [command, parameters, number] :
       {std::tuple{"%GsCall%", std::string("GsCall=gs"), 5}, std::tuple{"%P0%", chain, 7}}) {
    SCOPED_TRACE(command);
    host.reports.clear();
    host.errors.clear();
    WriteIni({{"ConvertCommand", command}}, parameters);
    HARPConfiguration configuration;
    EXPECT_FALSE(configuration.ExecuteConvertCommand({1, 1, true}, "a", "b"));
    EXPECT_EQ(host.reports, Lines{std::string(kLabel) + "Public Function ExecuteConvertCommand"});
    EXPECT_EQ(host.Numbers(), std::vector<int32_t>{number});
  }
}

// However long the redirection, and whichever setting brings its
// placeholder back.
TEST_F(HarpTest, AnEndlessPlaceholderEndsInOutOfStackSpaceAndAnEmptyText) {
  const std::string ps = "%PostScriptFullFileName%";
  const struct {
    std::string redirection, output, timeStamp;
  } rows[] = {
      {"C:\\" + ps + ".ps", "", ""},
      {ps + "%WindowsUser%", "", ""},
      {ps + ps, "", ""},
      {std::string(1 << 22, 'x') + ps, "", ""},
      {"%ConversionFullFileName%", "C:\\" + ps, ""},
      {"C:\\%TimeStamp%.ps", "", ps},
  };
  WriteIni();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.redirection.substr(0, 40));
    host.reports.clear();
    host.errors.clear();
    HARPConfiguration configuration;
    configuration.SetPrinterRedirection(row.redirection);
    configuration.SetConvertCommandOutputFullFileName(row.output);
    configuration.SetTimeStamp(row.timeStamp);
    EXPECT_EQ(configuration.PrinterRedirection(), "");
    EXPECT_EQ(host.Numbers(), std::vector<int32_t>{28});
    EXPECT_EQ(host.reports,
              Lines{std::string(kLabel) + "Private Function 'PlaceHolderSubstitution'"});
  }
  // A placeholder that another value brings back once ends a pass later.
  host.reports.clear();
  HARPConfiguration configuration;
  configuration.SetPrinterRedirection("%TimeStamp%");
  configuration.SetTimeStamp("%WindowsUser%");
  EXPECT_EQ(configuration.PlaceHolderSubstitution(ps), "\"" + WinUserName() + "\"");
  EXPECT_TRUE(host.reports.empty());
}

TEST_F(HarpTest, TheTimeOutIsGivenInMillisecondsAndZeroWaitsWithoutLimit) {
  struct Row {
    const char* timeOut;
    const char* command;
    bool ran;
  };
  for (const Row& row : {Row{"30", "nosuch", false}, Row{"0", "sh -c \"sleep 0.3\"", true},
                         Row{"1", "sh -c \"sleep 3\"", false}}) {
    SCOPED_TRACE(row.timeOut);
    WriteIni(
        {{"ConvertCommand", row.command}, {"ConvertCommandExecuteSynchronTimeOut", row.timeOut}});
    facility->writes.clear();
    HARPConfiguration configuration;
    EXPECT_EQ(configuration.ExecuteConvertCommand({1, 1, true}, "a", "b"), row.ran);
    if (row.ran) continue;
    const std::string ms = std::to_string(std::stoi(row.timeOut) * 1000);
    EXPECT_EQ(
        Written(8).back(),
        "VemraKestrivon::HARPConfiguration::ExecuteConvertCommand():\r\n\t- 'Globals.SyncShell()' failed.\r\n\t- sCommandLine= '" +
            std::string(row.command) + "'\r\n\t- lngMilliSecondsTimeOut= '" + ms +
            "'\r\n\t- blnWaitForInputIdle= False\r\n\t- blnHidden=True\r\n");
  }
}

TEST_F(HarpTest, GhostscriptTurnsPostScriptIntoAPdfAndAMultiPageTiff) {
  const std::string ps = NativePath(folder / "job.ps");
  WriteWholeFile(folder / "job.ps",
                 "%!PS\n/Helvetica findfont 24 scalefont setfont\n"
                 "1 1 3 { 100 100 moveto (Page ) show 3 string cvs show showpage } for\n");
  const std::string command =
      "%GsCall% -sDEVICE=%Device% -dDEVICEWIDTHPOINTS=%PaperSizeX% "
      "-dDEVICEHEIGHTPOINTS=%PaperSizeY% -dFIXEDMEDIA %LayoutOrientation% "
      "-sOutputFile=%ConversionFullFileName% %PostScriptFullFileName%";
  const std::map<std::string, std::string> settings{
      {"ConvertCommand", command},
      {"ConvertCommandPortrait", "-r72"},
      {"ConvertCommandLandscape", "-dAutoRotatePages=/None"}};

  WriteIni(settings, "GsCall=gs" + kSwitches + "\r\nDevice=pdfwrite");
  const std::string pdf = NativePath(folder / "job.pdf");
  HARPConfiguration toPdf;
  ASSERT_TRUE(toPdf.ExecuteConvertCommand({842, 595, false}, ps, pdf));
  QPDF document;
  document.processFile(pdf.c_str());
  auto pages = QPDFPageDocumentHelper(document).getAllPages();
  ASSERT_EQ(pages.size(), 3u);
  const auto box = pages[0].getMediaBox().getArrayAsRectangle();
  EXPECT_EQ(box.urx - box.llx, 842);
  EXPECT_EQ(box.ury - box.lly, 595);
  EXPECT_EQ(workset->globals->values["HARPGhostScriptPath"], "gs");

  WriteIni(settings, "GsCall=gs" + kSwitches + "\r\nDevice=tiffg4");
  HARPConfiguration toTiff;
  ASSERT_TRUE(toTiff.ExecuteConvertCommand({595, 842, true}, ps, NativePath(folder / "job.tif")));
  EXPECT_EQ(hostkit::TiffPageCount(folder / "job.tif"), 3);
  EXPECT_TRUE(host.errors.empty());
}

}  // namespace
}  // namespace kestrivon::test
