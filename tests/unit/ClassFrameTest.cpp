#include <gtest/gtest.h>

#include <memory>
#include <set>

#include "FakeHost.h"
#include "frame/trace/Trace.h"
#include "printers/PrinterCatalogue.h"
#include "printers/harp/VemraHARP.h"
#include "printers/pdf/AcrobatWriter.h"
#include "printers/pdf/AdobePDF.h"
#include "printers/pdf/NoFile.h"
#include "printers/tiff/VemraTiff.h"

namespace kestrivon::test {
namespace {

TEST(ClassFrame, CountsUpOnCreationAndDownOnRelease) {
  FakeHost host;
  host.level = 3;
  auto a = std::make_unique<NoFile>();
  auto b = std::make_unique<NoFile>();
  auto c = std::make_unique<NoFile>();
  a.reset();
  b.reset();
  c.reset();
  EXPECT_EQ(host.debugLines,
            (std::vector<std::string>{
                "### VemraKestrivon::NoFile::Class_Initialize(): Instance count: 1",
                "### VemraKestrivon::NoFile::Class_Initialize(): Instance count: 2",
                "### VemraKestrivon::NoFile::Class_Initialize(): Instance count: 3",
                "### VemraKestrivon::NoFile::Class_Terminate(): Instance count is now: 2",
                "### VemraKestrivon::NoFile::Class_Terminate(): Instance count is now: 1",
                "### VemraKestrivon::NoFile::Class_Terminate(): Instance count is now: 0",
            }));
  EXPECT_TRUE(host.traceLines.empty());
}

TEST(ClassFrame, NoDebugLinesAtLevelTwo) {
  FakeHost host;
  for (const auto& cls : PrinterClasses()) cls.create().reset();
  EXPECT_TRUE(host.debugLines.empty());
  // Only VemraTiff writes unconditionally.
  EXPECT_EQ(host.traceLines,
            (std::vector<std::string>{"VemraKestrivon::VemraTiff::Class_Initialize()..."}));
}

TEST(ClassFrame, EveryCountingClassSharesOneCounter) {
  FakeHost host;
  std::vector<std::unique_ptr<RevisionPrinter>> live;
  for (const auto& cls : PrinterClasses()) live.push_back(cls.create());
  EXPECT_EQ(InstanceCount(), 6);  // VemraHARP does not count
  EXPECT_EQ(TiffInstanceCount(), 1);
  live.clear();
  EXPECT_EQ(InstanceCount(), 0);
  EXPECT_EQ(TiffInstanceCount(), 0);
}

TEST(ClassFrame, VemraHARPLeavesTheCountAlone) {
  FakeHost host;
  NoFile counted;
  VemraHARP harp;
  EXPECT_EQ(InstanceCount(), 1);
}

TEST(ClassFrame, AdobePDFCreationGoesToTheHostTraceAndReleaseRepeatsIt) {
  FakeHost host;
  host.level = 3;
  { AdobePDF printer; }
  EXPECT_EQ(host.traceLines,
            (std::vector<std::string>{
                "### VemraKestrivon::AdobePDF::Class_Initialize(): Instance count: 1"}));
  EXPECT_EQ(host.debugLines,
            (std::vector<std::string>{
                "### VemraKestrivon::AdobePDF::Class_Initialize(): Instance count: 0"}));
}

TEST(ClassFrame, AcrobatWriterReleaseNamesDoPrint) {
  FakeHost host;
  host.level = 3;
  { AcrobatWriter printer; }
  ASSERT_EQ(host.debugLines.size(), 2u);
  EXPECT_EQ(host.debugLines[1],
            "### VemraKestrivon::AcrobatWriter::IRevisionPrinter_DoPrint(): Instance count: 0");
}

TEST(ClassFrame, VemraTiffBlocks) {
  FakeHost host;
  host.level = 3;
  NoFile other;
  { VemraTiff tiff; }
  const std::string rule(70, '#');
  ASSERT_EQ(host.debugLines.size(), 3u);
  EXPECT_EQ(host.debugLines[1], rule +
                                    "\r\n\tVemraKestrivon::VemraTiff::Class_Initialize()..."
                                    "\r\n\tDebug-Version 11 Nov. 2006"
                                    "\r\n\tNumber of VemraTiff-instances: 1"
                                    "\r\n\tNumber of Kestrivon-instances: 2\r\n" +
                                    rule + "\r\n");
  EXPECT_EQ(host.debugLines[2], rule +
                                    "\r\n\tVemraKestrivon::VemraTiffClass_Terminate()..."
                                    "\r\n\t-> Number of Kestrivon-instances is now 1"
                                    "\r\n\t- Number of VemraTiff-Instances is now 0\r\n" +
                                    rule + "\r\n\r\n");
}

TEST(ClassFrame, AFailingTraceNeverPreventsCreationOrRelease) {
  FakeHost host;
  host.level = 3;
  host.writeTraceFails = true;
  {
    AdobePDF adobe;  // its creation line goes through WriteTrace
    VemraTiff tiff;  // and so does its first line
    EXPECT_EQ(adobe.Version(), 1);
  }
  ASSERT_EQ(host.errors.size(), 2u);
  EXPECT_EQ(host.errors[0].classLabel, "VemraKestrivon::AdobePDF");
  EXPECT_EQ(host.errors[0].procedureLabel, "Class_Initialize");
  EXPECT_EQ(host.errors[1].classLabel, "VemraKestrivon::VemraTiff");
  EXPECT_EQ(host.errors[1].procedureLabel, "Class_Initialize");
  // VemraTiff's first line failed before it counted; AdobePDF had counted.
  EXPECT_EQ(InstanceCount(), -1);
}

TEST(ClassTable, AnswersTheInformationalOperationsWithoutAPrinter) {
  FakeHost host;
  const std::map<std::string, std::string> extensions{
      {"VemraTiff", ".TIF"},  {"AcrobatDistiller", ".PDF"}, {"AcrobatWriter", ".PDF"},
      {"PDFFactory", ".PDF"}, {"NoFile", "NoFile"},         {"AdobePDF", ".PDF"},
      {"VemraHARP", ".PDF"}};
  for (const auto& cls : PrinterClasses()) {
    auto printer = cls.create();
    EXPECT_EQ(printer->Extension(), extensions.at(std::string(cls.name))) << cls.name;
    EXPECT_EQ(printer->Version(), 1) << cls.name;
    EXPECT_TRUE(printer->SetPrnDefaults()) << cls.name;
  }
  EXPECT_EQ(PrinterClasses().size(), 7u);
  EXPECT_TRUE(host.errors.empty());
}

TEST(ClassTable, FindsClassesByProgIdOrNameIgnoringCase) {
  ASSERT_NE(FindPrinterClass("vemrakestrivon.nofile"), nullptr);
  EXPECT_EQ(FindPrinterClass("VemraKestrivon.NoFile")->name, "NoFile");
  EXPECT_EQ(FindPrinterClass("adobepdf")->name, "AdobePDF");
  EXPECT_EQ(FindPrinterClass("VemraKestrivon.Nothing"), nullptr);
  EXPECT_EQ(FindPrinterClass(""), nullptr);
}

}  // namespace
}  // namespace kestrivon::test
