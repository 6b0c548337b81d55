#include <gtest/gtest.h>

#include "host/portable/FaultPlan.h"

namespace kestrivon::test {
namespace {

namespace hp = host::portable;

// What an administrator writes, and what the host kit makes of it.
TEST(FaultPlan, ParsesPlansAndNamesWhatIsWrong) {
  const struct {
    const char* text;
    const char* problem;  // empty: parsed
  } rows[] = {
      {"", ""},
      {"DocFctDist.Printdirect:2:0x80004005,Owner.CurrentUser:1:null", ""},
      {"IPrinter.Name:1:-5", ""},
      {"Printdirect:1:5", "fault 'Printdirect:1:5': no host call 'Printdirect'"},
      {"IPrinter.Name:1:null", "fault 'IPrinter.Name:1:null': IPrinter.Name answers no object"},
      {"IPrinter.Name:0:5",
       "fault 'IPrinter.Name:0:5': a fault is call:use:error, use from 1, "
       "error a number or null"},
      {"IPrinter.Name:1",
       "fault 'IPrinter.Name:1': a fault is call:use:error, use from 1, "
       "error a number or null"},
      {"IPrinter.Name:1:0", "fault 'IPrinter.Name:1:0': the error is a 32-bit number other than 0"},
  };
  for (const auto& row : rows) {
    std::string problem;
    EXPECT_EQ(hp::FaultPlan::Parse(row.text, &problem).has_value(), *row.problem == '\0')
        << row.text;
    EXPECT_EQ(problem, row.problem);
  }
}

}  // namespace
}  // namespace kestrivon::test
