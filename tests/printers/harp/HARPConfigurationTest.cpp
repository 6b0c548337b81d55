#include <functional>

#include "HarpFixture.h"
#include "platform/TempFiles.h"
#include "platform/portable/TempFiles.h"
#include "printers/harp/HARPConfiguration.h"
#include "printers/harp/VemraHARP.h"
#include "services/RegistrySettings.h"

// Loading HARP.ini: every default, validation, summary line and trace.

namespace kestrivon::test {
namespace {

const std::string kLoad = "VemraKestrivon::HARPConfiguration::LoadSettingsFromIniFile(): ";
const std::string kPaper = "VemraKestrivon::HARPConfiguration::InitializePaperSizeFormatString(): ";

bool Holds(const Lines& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

TEST_F(HarpTest, HarpIniIsLoadedWithItsDefaultsAndItsProblemsSummarised) {
  enum class Ini { kWritten, kMissing, kNoFolder };
  struct Row {
    const char* what;
    std::map<std::string, std::string> changes;
    std::function<void(HARPConfiguration&)> check;
    bool parameters = true;
    Ini ini = Ini::kWritten;
  };
  const std::string sleeper = std::to_string(GetRevisionSleeper());
  const Row rows[] = {
      {"no configuration directory",
       {},
       [&](HARPConfiguration& c) {
         ASSERT_EQ(host.messageBoxes.size(), 1u);
         EXPECT_EQ(host.messageBoxes[0].prompt, "Retrieving configuration path failed.");
         EXPECT_EQ(host.messageBoxes[0].buttons, 16);
         EXPECT_EQ(host.messageBoxes[0].title, "Revisionsdrucker");
         EXPECT_FALSE(c.ConfigFileLoaded());
         EXPECT_EQ(
             Written(2),
             (Lines{
                 "VemraKestrivon::HARPConfiguration::Class_Initialize(): MsgBox: 'Retrieving configuration path failed.' (-> Workset.Globals.ConfigDirectory has not been set)",
                 "\r\nVemraKestrivon::HARPConfiguration::Class_Initialize():\r\n\t- 'Me.LoadSettingsFromIniFile()' failed.\r\n\t- sIniFullFileName= ''\r\n\t"}));
       },
       true,
       Ini::kNoFolder},
      {"no file",
       {},
       [&](HARPConfiguration& c) {
         EXPECT_EQ(c.PrinterSettingsErrorSummary(), "Ini-file cannot be found.\r\n");
         EXPECT_EQ(host.traceLines,
                   Lines{kLoad + "file does not exist: '" + folder / "HARP.ini" + "'"});
         EXPECT_FALSE(c.ConfigFileLoaded());
         EXPECT_TRUE(host.messageBoxes.empty());
       },
       true,
       Ini::kMissing},
      {"no parameters section",
       {},
       [&](HARPConfiguration& c) {
         EXPECT_FALSE(c.ConfigFileLoaded());
         EXPECT_EQ(c.PrinterName(), "HARP PS");
         EXPECT_EQ(c.PrinterRedirection(), folder / "ps\\job.ps");
         EXPECT_TRUE(PathExists(folder / "ps"));
         EXPECT_EQ(c.RevisionExtension(), ".PDF");
         EXPECT_EQ(c.PrinterSettingsErrorSummary(), "");
         EXPECT_EQ(c.ConvertCommandExecuteSynchronTimeOut(), 30);
         EXPECT_EQ(c.PaperSizeFormatString(), "#.##");
         EXPECT_EQ(c.DecimalDelimiter(), "");
         EXPECT_EQ(c.PaperSizeConversionFactor(), 1.0);
         EXPECT_EQ(c.ConvertCommandRevisionSleeper(), GetRevisionSleeper());
       },
       false},
      {"output folder that cannot be made",
       {{"PrinterRedirection", folder / "HARP.ini\\ps\\job.ps"}},
       [&](HARPConfiguration& c) {
         EXPECT_TRUE(c.ConfigFileLoaded());
         EXPECT_EQ(c.PrinterSettingsErrorSummary(), "Printer output folder does not exist");
       }},
      {"lower-case extension",
       {{"RevisionExtension", ".pdf"}},
       [&](HARPConfiguration& c) {
         EXPECT_TRUE(c.ConfigFileLoaded());
         EXPECT_EQ(
             c.PrinterSettingsErrorSummary(),
             "'*.pdf' Vemra only supports the following revision archives: *.tif and *.pdf\r\n");
         EXPECT_TRUE(
             Holds(Written(2), kLoad + "'.pdf' revision archives are not supported by Vemra."));
       }},
      {"extension without a dot",
       {{"RevisionExtension", "PDF"}},
       [&](HARPConfiguration& c) {
         EXPECT_EQ(c.RevisionExtension(), ".PDF");
         EXPECT_TRUE(c.PrinterSettingsErrorSummary().starts_with("'*PDF' "));
       }},
      {"no printer, no command, delimiter ','",
       {{"PrinterName", ""}, {"ConvertCommand", ""}, {"ConvertCommandDecimalDelimiter", ","}},
       [&](HARPConfiguration& c) {
         EXPECT_EQ(
             c.PrinterSettingsErrorSummary(),
             "No printer name defined in the ini-file.\r\nNo conversion command defined in the ini-file.\r\n");
         EXPECT_EQ(Written(2), (Lines{kLoad + "No printer name specified in ini-file.",
                                      kLoad + "No conversion command specified in ini-file."}));
         EXPECT_EQ(c.DecimalDelimiter(), ",");
       }},
      {"factor 2,54, precision 0, time-out abc",
       {{"ConvertCommandPaperSizeConversionFactor", "2,54"},
        {"ConvertCommandPrecision", "0"},
        {"ConvertCommandExecuteSynchronTimeOut", "abc"}},
       [&](HARPConfiguration& c) {
         EXPECT_DOUBLE_EQ(c.PaperSizeConversionFactor(), 2.54);
         EXPECT_EQ(c.PaperSizeFormatString(), "#");
         EXPECT_EQ(c.ConvertCommandExecuteSynchronTimeOut(), 30);
         // Only the delimiter is traced at level 2.
         EXPECT_EQ(Written(2).size(), 1u);
       }},
      {"factor abc, precision x, sleeper zz",
       {{"ConvertCommandPaperSizeConversionFactor", "abc"},
        {"ConvertCommandPrecision", "x"},
        {"ConvertCommandRevisionSleeper", "zz"}},
       [&](HARPConfiguration& c) {
         EXPECT_EQ(c.PaperSizeConversionFactor(), 1.0);
         EXPECT_EQ(c.PaperSizeFormatString(), "#.##");
         EXPECT_EQ(c.ConvertCommandRevisionSleeper(), GetRevisionSleeper());
         const Lines written = Written(2);
         EXPECT_TRUE(Holds(
             written,
             kPaper +
                 "'ConvertCommandPaperSizeConversionFactor' is not a Double! -> using default factor of '1'"));
         EXPECT_TRUE(Holds(
             written,
             kPaper + "'ConvertCommandPrecision' is not a number -> using default precision (2')"));
         EXPECT_TRUE(Holds(
             written,
             kLoad + "'ConvertCommandRevisionSleeper' is not a Long! -> using default value of '" +
                 sleeper + "'"));
       }},
      {"factor 1e400, too large for a number",
       {{"ConvertCommandPaperSizeConversionFactor", "1e400"}},
       [&](HARPConfiguration& c) {
         EXPECT_EQ(c.PaperSizeConversionFactor(), 1.0);
         EXPECT_EQ(
             host.reports,
             Lines{"VemraKestrivon::HARPConfiguration|Function ConvertIniFileStringToDouble()"});
         EXPECT_EQ(host.Numbers(), std::vector<int32_t>{6});
         EXPECT_TRUE(Holds(
             Written(2),
             kPaper +
                 "'ConvertCommandPaperSizeConversionFactor' is not a Double! -> using default factor of '1'"));
       }},
      {"factor -1, precision 99999",
       {{"ConvertCommandPaperSizeConversionFactor", "-1"}, {"ConvertCommandPrecision", "99999"}},
       [&](HARPConfiguration& c) {
         EXPECT_EQ(c.PaperSizeConversionFactor(), -1.0);
         EXPECT_EQ(c.PaperSizeFormatString(), "#.##");
         EXPECT_EQ(
             host.reports,
             Lines{"VemraKestrivon::HARPConfiguration|Sub InitializePaperSizeFormatString()"});
         EXPECT_EQ(host.Numbers(), std::vector<int32_t>{6});
         EXPECT_EQ(Written(2).back(),
                   kPaper + "After error: using default paper size format: '#.##'");
       }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    host.traceLines.clear();
    host.reports.clear();
    host.errors.clear();
    host.messageBoxes.clear();
    facility->writes.clear();
    workset->globals->values.erase("ConfigDirectory");
    if (row.ini != Ini::kNoFolder)
      workset->globals->values["ConfigDirectory"] = folder.Path() + "\\";
    RemoveFile(folder / "HARP.ini");
    if (row.ini == Ini::kWritten)
      WriteIni(row.changes, row.parameters ? "Out=-o" : std::optional<std::string>());
    HARPConfiguration configuration;
    EXPECT_EQ(facility->names, Lines(facility->names.size(), "Printer"));
    row.check(configuration);
  }
  EXPECT_EQ(facility->ids, std::vector<int32_t>(facility->ids.size(), 42));
  // A temporary PostScript name is made on every load, needed or not: a
  // missing temporary folder is reported although HARP.ini names the file.
  host.reports.clear();
  WriteIni();
  char saved[platform::kMaxPath] = {};
  platform::GetTempPathA(platform::kMaxPath, saved);
  platform::portable::SetTempPath(folder / "absent");
  EXPECT_EQ(HARPConfiguration().PrinterRedirection(), folder / "ps\\job.ps");
  platform::portable::SetTempPath(saved);
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|Public Function TempFileName"});
}

// The factor's number is read as the run time's Val reads one, after each
// "," became a ".".
TEST_F(HarpTest, TheConversionFactorIsTheTextsLeadingNumber) {
  WriteIni();
  HARPConfiguration configuration;
  const std::pair<const char*, double> rows[] = {
      {"2,54", 2.54},       {"&H2", 2},         {"&h1f", 31},       {"&O17", 15},
      {"&HFFFF", -1},       {"&HFFFF&", 65535}, {"&H10000", 65536}, {"&HFFFFFFFF", -1},
      {" 1 2\t3\n4", 1234}, {"- 1,5", -1.5},    {"1e3", 1000},      {"1d3", 1000},
      {"1E+2x", 100},       {"2e", 2},          {"1.2.3", 1.2},     {".5", 0.5},
      {"12abc", 12},        {"abc", 0},         {"1\r2", 1},        {"&X1", 0},
  };
  for (const auto& [text, number] : rows) {
    EXPECT_DOUBLE_EQ(configuration.ConvertIniFileStringToDouble(text), number) << text;
  }
  EXPECT_TRUE(host.reports.empty());
  for (const std::string overflow : {"1e400", "&H100000000", "&O40000000000"}) {
    EXPECT_EQ(configuration.ConvertIniFileStringToDouble(overflow), 0.0) << overflow;
  }
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>(3, 6));
}

// Creation goes on with the next statement after an error: without a trace
// facility the box is still shown, and the missing source is still said.
TEST_F(HarpTest, CreationGoesOnStatementByStatementWithoutATraceFacility) {
  facility = nullptr;
  workset->globals->values.erase("ConfigDirectory");
  for (const bool printer : {false, true}) {
    SCOPED_TRACE(printer ? "VemraHARP" : "HARPConfiguration");
    host.messageBoxes.clear();
    host.traceLines.clear();
    if (printer) {
      VemraHARP harp;
    } else {
      HARPConfiguration configuration;
    }
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].prompt, "Retrieving configuration path failed.");
    EXPECT_EQ(Holds(host.traceLines,
                    "VemraKestrivon::VemraHARP :: Initialize Printer TraceSource failed"),
              printer);
  }
}

}  // namespace
}  // namespace kestrivon::test
