#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "RecordingHost.h"
#include "frame/Procedure.h"

namespace kestrivon::test {
namespace {

constexpr Procedure kSample("VemraKestrivon::Test", " Function Sample");

// A procedure in the idiom: its answer, or after a report the failure value.
int Answer(bool fails) try {
  if (fails) Raise(vb_error::kFileNotFound);
  return 5;
} catch (...) {
  return kSample.Report(-1);
}

// The held-value form: what the result held when the error struck.
int Held() {
  int result = 0;
  try {
    result = 7;
    Raise(vb_error::kFileNotFound);
    result = 8;  // never reached: no resume
  } catch (...) {
    kSample.Report();
  }
  return result;
}

TEST(ErrorHandler, ReportAnswersTheFailureValueOrWhatTheResultHeld) {
  RecordingHost host;
  EXPECT_EQ(Answer(false), 5);
  EXPECT_EQ(Answer(true), -1);
  EXPECT_EQ(Held(), 7);
  EXPECT_EQ(host.reports, (Lines{"VemraKestrivon::Test| Function Sample",
                                 "VemraKestrivon::Test| Function Sample"}));
  EXPECT_EQ(host.Numbers(), (std::vector<int32_t>{53, 53}));
}

TEST(ErrorHandler, ReportAndGoOnReportsEachFailureAndGoesOn) {
  RecordingHost host;
  std::string ran;
  kSample.ReportAndGoOn([&] { ran += "a"; });
  kSample.ReportAndGoOn([&] { Raise(vb_error::kOverflow); });
  kSample.ReportAndGoOn([&] { ran += "c"; });
  kSample.ReportAndGoOn([&] { throw std::logic_error("broken"); });
  kSample.ReportAndGoOn([&] { ran += "e"; });
  EXPECT_EQ(ran, "ace");
  EXPECT_EQ(host.Numbers(), (std::vector<int32_t>{vb_error::kOverflow, vb_error::kInternalError}));
}

TEST(ErrorHandler, AnErrorWhileReportingIsNotCaughtAgain) {
  RecordingHost host;
  host.logErrorFails = true;
  EXPECT_ANY_THROW(Answer(true));
  EXPECT_ANY_THROW(kSample.ReportAndGoOn([] { Raise(vb_error::kOverflow); }));
  // Where nothing may escape, it is dropped.
  EXPECT_NO_THROW({
    try {
      Raise(vb_error::kOverflow);
    } catch (...) {
      kSample.ReportNoThrow();
    }
  });
  EXPECT_TRUE(host.errors.empty());
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
