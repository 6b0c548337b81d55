#include <gtest/gtest.h>

#include <memory>
#include <set>

#include "RecordingHost.h"
#include "frame/trace/Trace.h"
#include "printers/PrinterCatalogue.h"
#include "printers/pdf/NoFile.h"

namespace kestrivon::test {
namespace {

const std::string kRule(70, '#');

// What each class answers, and what it writes when it is created and
// released at diagnostic level 3 while one NoFile lives besides it: to the
// host's trace and to the debugger.
struct ClassCase {
  const char* name;
  const char* extension;
  Lines traced;
  Lines debug;
};

const ClassCase kClasses[] = {
    {"VemraTiff", ".TIF", Lines{"VemraKestrivon::VemraTiff::Class_Initialize()..."},
     Lines{
         kRule +
             "\r\n\tVemraKestrivon::VemraTiff::Class_Initialize()...\r\n\tDebug-Version 11 Nov. "
             "2006\r\n\tNumber of VemraTiff-instances: 1\r\n\tNumber of Kestrivon-instances: 2\r\n" +
             kRule + "\r\n",
         kRule +
             "\r\n\tVemraKestrivon::VemraTiffClass_Terminate()...\r\n\t-> Number of "
             "Kestrivon-instances is now 1\r\n\t- Number of VemraTiff-Instances is now 0\r\n" +
             kRule + "\r\n\r\n"}},
    {"AcrobatDistiller", ".PDF", Lines{},
     Lines{"### VemraKestrivon::AcrobatDistiller::Class_Initialize(): InstanceCount = 2",
           "### VemraKestrivon::AcrobatDistiller::Class_Terminate(): InstanceCount = 1"}},
    {"AcrobatWriter", ".PDF", Lines{},
     Lines{"### VemraKestrivon::AcrobatWriter::Class_Initialize(): Instance count: 2",
           "### VemraKestrivon::AcrobatWriter::IRevisionPrinter_DoPrint(): Instance count: 1"}},
    {"PDFFactory", ".PDF", Lines{},
     Lines{"### VemraKestrivon::PDFFactory::Class_Initialize(): Instance count is now 2",
           "### VemraKestrivon::PDFFactory::Class_Terminate(): Instance count is now 1"}},
    {"NoFile", "NoFile", Lines{},
     Lines{"### VemraKestrivon::NoFile::Class_Initialize(): Instance count: 2",
           "### VemraKestrivon::NoFile::Class_Terminate(): Instance count is now: 1"}},
    {"AdobePDF", ".PDF",
     Lines{"### VemraKestrivon::AdobePDF::Class_Initialize(): Instance count: 2"},
     Lines{"### VemraKestrivon::AdobePDF::Class_Initialize(): Instance count: 1"}},
};
// VemraHARP is not counted and has no frame of its own; its creation is
// tested with the HARP printer.

TEST(ClassFrame, EachClassTracesItsCreationAndReleaseWhenDebugging) {
  for (const ClassCase& c : kClasses) {
    for (const int32_t level : {2, 3}) {
      SCOPED_TRACE(std::string(c.name) + " at level " + std::to_string(level));
      RecordingHost host;
      host.level = level;
      NoFile other;
      host.debugLines.clear();
      auto printer = FindPrinterClass(c.name)->create();
      EXPECT_EQ(InstanceCount(), 2);
      EXPECT_EQ(printer->Extension(), c.extension);
      EXPECT_EQ(printer->Version(), 1);
      EXPECT_TRUE(printer->SetPrnDefaults());
      printer.reset();
      EXPECT_EQ(InstanceCount(), 1);
      // At level 2 only the lines that do not begin with "### " remain.
      Lines traced;
      for (const auto& line : c.traced) {
        if (level == 3 || line.rfind("### ", 0) != 0) traced.push_back(line);
      }
      EXPECT_EQ(host.traceLines, traced);
      EXPECT_EQ(host.debugLines, level == 3 ? c.debug : Lines{});
      EXPECT_TRUE(host.errors.empty());
    }
  }
}

TEST(ClassFrame, AFailingTraceIsReportedUnderTheClassLabelAndNeverPreventsCreationOrRelease) {
  for (const ClassCase& c : kClasses) {
    SCOPED_TRACE(c.name);
    RecordingHost host;
    host.level = 3;
    host.writeTraceFails = true;
    host.debugOutputFails = true;
    PPMInit();
    auto printer = FindPrinterClass(c.name)->create();
    EXPECT_EQ(printer->Version(), 1);
    printer.reset();
    const std::string label = std::string("VemraKestrivon::") + c.name;
    const Lines reports{label + "|Class_Initialize", label + "|Class_Terminate"};
    EXPECT_EQ(host.reports, reports);
    // VemraTiff's first line fails before it counts; the others had counted.
    EXPECT_EQ(InstanceCount(), std::string(c.name) == "VemraTiff" ? -1 : 0);
  }
}

// The counted classes' labels are checked through their reports above, the
// Globals label through ProcedureLabelsTest, the lock's and the device's
// through their own tests; these have no report yet.
TEST(ClassLabels, AreSpeltAsTheReleasedComponentWritesThem) {
  const std::pair<const char*, const char*> kLabels[] = {
      {labels::kDummy, "VemraKestrivon::Dummy"},
      {labels::kVemraHARP, "VemraKestrivon::VemraHARP"},
      {labels::kHARPConfiguration, "VemraKestrivon::HARPConfiguration"},
  };
  for (const auto& [label, text] : kLabels) EXPECT_STREQ(label, text);
}

TEST(ClassTable, FindsTheSevenClassesByProgIdOrNameIgnoringCase) {
  std::set<std::string_view> names;
  for (const auto& cls : PrinterClasses()) {
    names.insert(cls.name);
    EXPECT_EQ(FindPrinterClass("VemraKestrivon." + std::string(cls.name)), &cls);
  }
  EXPECT_EQ(names.size(), 7u);
  EXPECT_EQ(FindPrinterClass("vemrakestrivon.nofile"), FindPrinterClass("VemraKestrivon.NoFile"));
  EXPECT_EQ(FindPrinterClass("adobepdf"), FindPrinterClass("VemraKestrivon.AdobePDF"));
  EXPECT_EQ(FindPrinterClass("VemraKestrivon.Nothing"), nullptr);
  EXPECT_EQ(FindPrinterClass(""), nullptr);
}

}  // namespace
}  // namespace kestrivon::test
