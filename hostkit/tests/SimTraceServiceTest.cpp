#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "TestSupport.h"
#include "core/SimTraceService.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::hostkit::test {
namespace {

using Fields = std::vector<std::string>;

struct Service {
  explicit Service(const TempDir& dir, std::optional<std::filesystem::path> translations = {},
                   std::optional<std::filesystem::path> answers = {})
      : logPath(dir / "trace.log"),
        service(std::make_shared<TraceLog>(logPath), std::move(translations), std::move(answers)) {}
  std::filesystem::path logPath;
  SimTraceService service;
};

TEST(SimTraceService, WritesTraceLinesAndErrorReports) {
  TempDir dir;
  Service s(dir);
  s.service.WriteTrace(
      "VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> nothing to do");
  s.service.LogError({91, "Object variable or With block variable not set", "VemraKestrivon"},
                     "VemraKestrivon::NoFile", " Function IRevisionPrinter_DoPrint");
  s.service.LogError({static_cast<int32_t>(0x80004005), "Unspecified error", "Host"},
                     "Kestrivon::DocumentLock", "Public Sub WriteLock");
  EXPECT_EQ(Entries(s.logPath),
            (std::vector<Fields>{
                {"TRACE",
                 "VemraKestrivon::NoFile::IRevisionPrinter_DoPrint(): document has no file -> "
                 "nothing to do"},
                {"ERROR", "91", "Object variable or With block variable not set", "VemraKestrivon",
                 "VemraKestrivon::NoFile", " Function IRevisionPrinter_DoPrint"},
                {"ERROR", "-2147467259 (0x80004005)", "Unspecified error", "Host",
                 "Kestrivon::DocumentLock", "Public Sub WriteLock"},
            }));
}

TEST(SimTraceService, ResolvesMessageIdentifiersToTheirDefaultText) {
  TempDir dir;
  Service s(dir);
  EXPECT_EQ(s.service.ResolveText("~05d86 Printer is not installed"), "Printer is not installed");
  EXPECT_EQ(s.service.ResolveText("~003c1 Revision"), "Revision");
  EXPECT_EQ(s.service.ResolveText("~0282a Bitte ('C:\\Temp\\*.pdf')"), "Bitte ('C:\\Temp\\*.pdf')");
  EXPECT_EQ(s.service.ResolveText("~05d86 "), "");
  // Not message identifier texts: handed back as they are.
  for (const std::string text : {"~05D86 Upper-case digits", "~5d86 Four digits", "~05d86No blank",
                                 "~05d8g Not hex", "05d86 No tilde", "~05d86", "", "plain text"}) {
    EXPECT_EQ(s.service.ResolveText(text), text);
  }
  EXPECT_EQ(EntriesOf(s.logPath, "RESOLVE").front(),
            (Fields{"~05d86 Printer is not installed", "Printer is not installed"}));
}

TEST(SimTraceService, TakesTranslationsFromItsFile) {
  TempDir dir;
  WriteFile(dir / "de.txt",
            "\xEF\xBB\xBF# Deutsch\r\n"
            "~05D86 Drucker ist nicht installiert\r\n"
            "\r\n"
            "~003c1 Revision (übersetzt)\r\n"
            "not a message text\r\n");
  Service s(dir, dir / "de.txt");
  EXPECT_EQ(s.service.ResolveText("~05d86 Printer is not installed"),
            "Drucker ist nicht installiert");
  EXPECT_EQ(s.service.ResolveText("~003c1 Revision"), "Revision (übersetzt)");
  EXPECT_EQ(s.service.ResolveText("~05d87 Printer output folder does not exist"),
            "Printer output folder does not exist");
  EXPECT_EQ(s.service.ResolveText("~05D86 Printer is not installed"),
            "~05D86 Printer is not installed");
  const auto notes = EntriesOf(s.logPath, "HOSTKIT");
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_NE(notes[0][0].find("line 5"), std::string::npos) << notes[0][0];
}

TEST(SimTraceService, MessageBoxesAnswerFromTheScriptInOrderThenOK) {
  TempDir dir;
  WriteFile(dir / "answers.txt",
            "# first the lock message, then the question\nOK\n\n  yes \n7\nJawohl\nCancel\n");
  Service s(dir, std::nullopt, dir / "answers.txt");
  EXPECT_EQ(s.service.ShowMessageBox("Ein anderer Revisionsvorgang\r\nBenutzer: x", 16, "Revision"),
            1);
  EXPECT_EQ(s.service.ShowMessageBox("Trotzdem?", 36, "Revisionsdrucker"), 6);
  EXPECT_EQ(s.service.ShowMessageBox("p3", 36, "t"), 7);
  EXPECT_EQ(s.service.ShowMessageBox("p4", 36, "t"), 1);  // not understood: OK in its turn
  EXPECT_EQ(s.service.ShowMessageBox("p5", 1, "t"), 2);
  EXPECT_EQ(s.service.ShowMessageBox("p6", 80, "t"), 1);
  const auto boxes = EntriesOf(s.logPath, "MSGBOX");
  ASSERT_EQ(boxes.size(), 6u);
  EXPECT_EQ(boxes[0], (Fields{"Ein anderer Revisionsvorgang\r\nBenutzer: x", "16", "Revision", "1",
                              "scripted"}));
  EXPECT_EQ(boxes[5], (Fields{"p6", "80", "t", "1", "default"}));
  const auto notes = EntriesOf(s.logPath, "HOSTKIT");
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_NE(notes[0][0].find("'Jawohl'"), std::string::npos);
}

TEST(SimTraceService, WithoutAScriptEveryBoxAnswersOK) {
  TempDir dir;
  Service none(dir);
  EXPECT_EQ(none.service.ShowMessageBox("p", 36, "t"), 1);
  EXPECT_TRUE(EntriesOf(none.logPath, "HOSTKIT").empty());
}

TEST(SimTraceService, MissingFilesLeaveTheDefaultsAndAreSaidOnceEach) {
  TempDir dir;
  Service s(dir, dir / "missing.txt", dir / "no-such-file");
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(s.service.ResolveText("~05d86 Printer is not installed"), "Printer is not installed");
    EXPECT_EQ(s.service.ShowMessageBox("p", 36, "t"), 1);
  }
  EXPECT_EQ(EntriesOf(s.logPath, "HOSTKIT").size(), 2u);  // not per text or box
}

TEST(SimTraceService, CopiesFilesHonouringOverwrite) {
  TempDir dir;
  Service s(dir);
  const auto source = dir / "driver-output.pdf";
  const auto target = dir / "A-100.PDF";
  WriteFile(source, "new archive");

  EXPECT_TRUE(s.service.CopyFile(source.string(), target.string(), false));
  EXPECT_EQ(ReadFile(target), "new archive");

  WriteFile(target, "old archive");
  EXPECT_FALSE(s.service.CopyFile(source.string(), target.string(), false));
  EXPECT_EQ(ReadFile(target), "old archive");

  EXPECT_TRUE(s.service.CopyFile(source.string(), target.string(), true));
  EXPECT_EQ(ReadFile(target), "new archive");
  EXPECT_EQ(ReadFile(source), "new archive");

  EXPECT_FALSE(s.service.CopyFile((dir / "missing.pdf").string(), target.string(), true));
  EXPECT_FALSE(s.service.CopyFile(source.string(), (dir / "no-folder" / "x.pdf").string(), true));
  EXPECT_EQ(ReadFile(target), "new archive");

  const auto copies = EntriesOf(s.logPath, "COPY");
  ASSERT_EQ(copies.size(), 5u);
  EXPECT_EQ(copies[0], (Fields{source.string(), target.string(), "keep", "copied"}));
  EXPECT_EQ(copies[1].size(), 5u);  // with the reason
  EXPECT_EQ(copies[1][3], "failed");
  EXPECT_EQ(copies[2], (Fields{source.string(), target.string(), "overwrite", "copied"}));
}

TEST(SimTraceService, TicksCountMillisecondsForward) {
  TempDir dir;
  Service s(dir);
  const auto first = static_cast<uint32_t>(s.service.CurrentTicks());
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  const auto second = static_cast<uint32_t>(s.service.CurrentTicks());
  // Unsigned difference: correct across the 32-bit wrap too.
  EXPECT_GE(second - first, 25u);
  EXPECT_LT(second - first, 60000u);
}

TEST(SimTraceService, ACallThatCannotBeLoggedFails) {
  TempDir dir;
  WriteFile(dir / "file", "x");
  SimTraceService service(std::make_shared<TraceLog>(dir / "file" / "trace.log"), std::nullopt,
                          std::nullopt);
  EXPECT_THROW(service.WriteTrace("line"), RunTimeError);
  EXPECT_THROW(service.LogError({5, "d", "s"}, "c", "p"), RunTimeError);
}

}  // namespace
}  // namespace kestrivon::hostkit::test
