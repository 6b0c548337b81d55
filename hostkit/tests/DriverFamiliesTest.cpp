#include <gtest/gtest.h>

#include <fstream>

#include "TestSupport.h"
#include "core/DriverFamilies.h"
#include "platform/portable/FileSystem.h"
#include "platform/portable/Registry.h"
#include "revise/ReviseSetup.h"

namespace kestrivon::hostkit::test {
namespace {

namespace portable = platform::portable;
using F = DriverFamily;

// Each family set up right or with one setting wrong: where its driver
// writes, or which setting makes it refuse.
TEST(DriverFamilies, EachDriverWritesWhereItsConventionSaysOrRefuses) {
  TempDir dir;
  const std::string out = portable::WindowsPath(dir.Path().string());
  const struct {
    F family;
    const char* wrong;
    const char* writes;  // file in out, or empty
    const char* refusal;
  } cases[] = {
      {F::kAdobePdf, "", "A-100.pdf", ""},
      {F::kAdobePdf, "ViewPrintOutput", "A-100.pdf", ""},
      {F::kAdobePdf, "PromptForFileName", "", "PromptForFileName"},
      {F::kAdobePdf, "Port", "", "Port: no folder"},
      {F::kDistiller, "printKeepPrintedJobs", "A-100.pdf", ""},
      {F::kPdfWriter, "", "P.pdf", ""},
      {F::kPdfWriter, "PDFFileName", "", "PDFFileName"},
      {F::kPdfFactory1, "", "P.pdf", ""},
      {F::kPdfFactory1, "ShowDlg", "", "ShowDlg"},
      {F::kPdfFactory3, "PdfAction", "", "PdfAction"},
      {F::kPdfFactory4, "OutputFile", "", "OutputFile"},
  };
  for (const auto& c : cases) {
    portable::ClearRegistry();
    const std::set<std::string> wrong =
        *c.wrong ? std::set<std::string>{c.wrong} : std::set<std::string>{};
    EXPECT_TRUE(SetUpDriver(SystemDriverSettings(), c.family, "P", out, wrong).empty());
    const DriverTarget target = FindDriverTarget(c.family, "P", "A-100", "C:\\Vemra\\Vemra.exe");
    const std::string label = DriverFamilyName(c.family) + " " + c.wrong;
    EXPECT_EQ(target.file, *c.writes ? out + "\\" + c.writes : "") << label;
    EXPECT_EQ(target.refusal.rfind(c.refusal, 0), 0u) << label << ": " << target.refusal;
  }
}

TEST(DriverFamilies, AdobeKeysAsTheChecksReadThemAndTheJobControlValueWins) {
  TempDir dir;
  const std::string out = portable::WindowsPath(dir.Path().string());
  const std::string printers = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers\\";
  portable::ClearRegistry();
  EXPECT_EQ(SetUpDriver(SystemDriverSettings(), F::kDistiller, "D", out, {"Distiller5", "Fax"}),
            std::vector<std::string>{"Fax"});
  const auto port =
      portable::RegistryValueOf(portable::RegistryView::k64, platform::kHKeyLocalMachine,
                                printers + "D\\PrinterDriverData", "Port");
  ASSERT_TRUE(port);
  EXPECT_EQ(port->bytes, out + "\\*.pdf" + std::string(1, '\0'));
  // The check reads a text value with its NUL, so only the spooler's own
  // one-byte binary reads as "0".
  const auto keep =
      portable::RegistryValueOf(portable::RegistryView::k32, platform::kHKeyLocalMachine,
                                printers + "D\\DsSpooler", "printKeepPrintedJobs");
  ASSERT_TRUE(keep);
  EXPECT_EQ(keep->type, platform::kRegBinary);
  EXPECT_EQ(keep->bytes, std::string(1, '\0'));
  EXPECT_FALSE(portable::RegistryKeyExists(portable::RegistryView::k32, platform::kHKeyLocalMachine,
                                           "SOFTWARE\\Adobe\\Acrobat Distiller\\5.0"));
  portable::SetRegistryString(portable::RegistryView::k32, platform::kHKeyCurrentUser,
                              "Software\\Adobe\\Acrobat Distiller\\PrinterJobControl",
                              "C:\\Vemra\\Vemra.exe", "C:\\Temp\\job.pdf");
  EXPECT_EQ(FindDriverTarget(F::kDistiller, "D", "A-100", "C:\\Vemra\\Vemra.exe").file,
            "C:\\Temp\\job.pdf");
  std::ofstream(dir / "A-100.pdf") << "earlier";
  portable::SetRegistryDword(portable::RegistryView::k32, platform::kHKeyLocalMachine,
                             printers + "D\\PrinterDriverData", "AskToReplacePDF", 1);
  EXPECT_EQ(FindDriverTarget(F::kDistiller, "D", "A-100", "other.exe")
                .refusal.rfind("AskToReplacePDF", 0),
            0u);
}

TEST(DriverFamilies, SetupReplacesThePrintersSectionOnly) {
  EXPECT_EQ(
      revise::WithPrinterSection("[World]\nUser = u\n[printer  P ]\nOutput = old\n[Document D]\n",
                                 "P", {"Family = pdfwriter"}),
      "[World]\nUser = u\n[Document D]\n[Printer P]\nFamily = pdfwriter\n");
}

}  // namespace
}  // namespace kestrivon::hostkit::test
