#include <gtest/gtest.h>

#include <sstream>

#include "TestSupport.h"
#include "core/Environment.h"
#include "core/Settings.h"
#include "core/TraceLog.h"
#include "revise/ReviseRun.h"

namespace kestrivon::hostkit::test {
namespace {

TEST(ListMessages, ShowsTheBoxesAndPackEntriesOfTheRunOnly) {
  TempDir dir;
  TraceLog log(dir / "trace.log");
  log.Append("MSGBOX", {"before the run", "16", "t", "1", "default"});
  const auto from = std::filesystem::file_size(log.Path());
  log.Append("TRACE", {"a line"});
  log.Append("MSGBOX",
             {"~026ef Ein anderer\nRevisionsvorgang", "16", "~003c1 Revision", "1", "default"});
  log.Append("MESSAGE", {"~05d86 Printer is not installed", "A-100"});
  std::ostringstream out;
  revise::ListMessages(out, log.Path(), from);
  EXPECT_EQ(out.str(),
            "Message box \"~026ef Ein anderer\\nRevisionsvorgang\" title \"~003c1 Revision\" "
            "buttons 16 -> 1\n"
            "Message pack entry \"~05d86 Printer is not installed\" for \"A-100\"\n");
  std::ostringstream none;
  revise::ListMessages(none, dir / "absent.log", 0);
  EXPECT_EQ(none.str(), "");
}

TEST(ShowRevisionMessagesOption, ReadsTruthValuesNumbersAndText) {
  struct Case {
    std::optional<std::string> text;
    std::optional<Variant> expected;
  };
  for (const Case& c :
       {Case{std::nullopt, std::nullopt}, Case{"True", Variant{true}},
        Case{" false ", Variant{false}}, Case{"0", Variant{int32_t{0}}},
        Case{"-1", Variant{int32_t{-1}}}, Case{"sometimes", Variant{std::string("sometimes")}}}) {
    ScopedVariable variable(kShowRevisionMessagesVariable, c.text);
    EXPECT_EQ(ShowRevisionMessagesOption(), c.expected) << c.text.value_or("(unset)");
  }
}

}  // namespace
}  // namespace kestrivon::hostkit::test
