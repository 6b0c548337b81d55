#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "RecordingHost.h"
#include "runtime/ErrorHandler.h"

namespace kestrivon::test {
namespace {

const Procedure kSample("VemraKestrivon::Test", " Function Sample");

TEST(ErrorHandler, GuardAnswersTheBodyOrTheFailureValueAfterOneReport) {
  RecordingHost host;
  EXPECT_EQ(kSample.Guard(0, [] { return 5; }), 5);
  EXPECT_EQ(kSample.Guard(-1, []() -> int { Raise(vb_error::kFileNotFound); }), -1);
  // The filling form answers what the result held when the error struck.
  EXPECT_EQ(kSample.Guard(0,
                          [](int& result) {
                            result = 7;
                            Raise(vb_error::kFileNotFound);
                            result = 8;  // never reached: no resume
                          }),
            7);
  EXPECT_EQ(host.reports, (Lines{"VemraKestrivon::Test| Function Sample",
                                 "VemraKestrivon::Test| Function Sample"}));
  EXPECT_EQ(host.Numbers(), (std::vector<int32_t>{53, 53}));
}

TEST(ErrorHandler, StepsReportEachFailureAndGoOn) {
  RecordingHost host;
  std::string ran;
  kSample.Steps([&] { ran += "a"; }, [&] { Raise(vb_error::kOverflow); }, [&] { ran += "c"; },
                [&] { throw std::logic_error("broken"); }, [&] { ran += "e"; });
  EXPECT_EQ(ran, "ace");
  EXPECT_EQ(host.Numbers(), (std::vector<int32_t>{vb_error::kOverflow, vb_error::kInternalError}));
}

TEST(ErrorHandler, GuardWithCleanupResumesAtTheCleanupAfterAnError) {
  struct Case {
    const char* name;
    Then then;
    bool fails;
    bool cleaned;
    size_t reports;
  };
  for (const Case& c : {Case{"leaves at once", Then::kReturn, false, false, 0},
                        Case{"goes through the cleanup", Then::kCleanup, false, true, 0},
                        Case{"error resumes at the cleanup", Then::kReturn, true, true, 1}}) {
    SCOPED_TRACE(c.name);
    RecordingHost host;
    bool cleaned = false;
    const bool answer = kSample.GuardWithCleanup(
        false,
        [&](bool& result) {
          result = true;
          if (c.fails) throw std::bad_alloc();
          return c.then;
        },
        [&](bool& /*result*/) { cleaned = true; });
    EXPECT_TRUE(answer);  // what the result held, error or not
    EXPECT_EQ(cleaned, c.cleaned);
    EXPECT_EQ(host.Numbers(), std::vector<int32_t>(c.reports, vb_error::kOutOfMemory));
  }
}

TEST(ErrorHandler, IgnoredErrorsSkipTheStatementSilently) {
  RecordingHost host;
  std::string ran;
  IgnoreErrors([&] { Raise(vb_error::kTypeMismatch); }, [&] { ran += "b"; }, [&] { throw 42; },
               [&] { ran += "d"; });
  EXPECT_EQ(ran, "bd");
  EXPECT_TRUE(host.errors.empty());
}

TEST(ErrorHandler, AttemptDescribesTheFailureAndItsHResult) {
  struct Case {
    const char* name;
    void (*body)();
    int32_t number;
    uint32_t hresult;
  };
  const Case cases[] = {
      {"host call", [] { throw RunTimeError(static_cast<int32_t>(0x80020009u), "x"); },
       static_cast<int32_t>(0x80020009u), 0x80020009u},
      {"bad argument", [] { Raise(vb_error::kInvalidProcedureCall); },
       vb_error::kInvalidProcedureCall, 0x80070057u},
      {"memory", [] { throw std::bad_alloc(); }, vb_error::kOutOfMemory, 0x8007000Eu},
      {"other", [] { throw 1; }, vb_error::kInternalError, 0x80004005u},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const auto error = Attempt(c.body);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->number, c.number);
    EXPECT_EQ(static_cast<uint32_t>(HResultOf(*error)), c.hresult);
  }
  EXPECT_FALSE(Attempt([] {}).has_value());
}

}  // namespace
}  // namespace kestrivon::test
