#include <gtest/gtest.h>

#include "TestSupport.h"
#include "core/HostKit.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::hostkit::test {
namespace {

using Fields = std::vector<std::string>;

// The host kit's variables as a test sets them; the rest of the environment
// is left alone.
struct Variables {
  Variables(std::optional<std::string> log, std::optional<std::string> level,
            std::optional<std::string> answers = {}, std::optional<std::string> translations = {})
      : log_(kTraceLogVariable, log),
        level_(kDiagLevelVariable, level),
        answers_(kAnswersVariable, answers),
        translations_(kTranslationsVariable, translations) {}
  ScopedVariable log_, level_, answers_, translations_;
};

TEST(Settings, DefaultsWithoutVariables) {
  Variables vars(std::nullopt, std::nullopt);
  const Settings settings = Settings::FromEnvironment();
  EXPECT_EQ(settings.traceLog, std::filesystem::temp_directory_path() / "vemra-trace.log");
  EXPECT_FALSE(settings.answersFile);
  EXPECT_FALSE(settings.translationsFile);
  EXPECT_TRUE(settings.problems.empty());
}

TEST(Settings, ReadsEveryVariableRelativeNamesFromTheCurrentFolder) {
  TempDir dir;
  Variables vars("logs/trace.log", " 3 ", "answers.txt", (dir / "t.txt").string());
  const Settings settings = Settings::FromEnvironment();
  EXPECT_EQ(settings.traceLog, std::filesystem::current_path() / "logs" / "trace.log");
  EXPECT_EQ(settings.level, 3);
  EXPECT_EQ(settings.answersFile, std::filesystem::current_path() / "answers.txt");
  EXPECT_EQ(settings.translationsFile, dir / "t.txt");
}

TEST(Settings, ABadLevelFallsBackToTwoAndSaysSo) {
  for (const std::string bad :
       {"debug", "3x", "99999999999", "-", "+-3", "-+3", "++3", "+", "3 4"}) {
    Variables vars(std::nullopt, bad);
    const Settings settings = Settings::FromEnvironment();
    EXPECT_EQ(settings.level, 2) << bad;
    ASSERT_EQ(settings.problems.size(), 1u) << bad;
    EXPECT_NE(settings.problems[0].find("'" + bad + "'"), std::string::npos);
  }
  EXPECT_EQ(ParseLevel("-1"), -1);
  EXPECT_EQ(ParseLevel("+4"), 4);
}

TEST(HostKit, TheMonitorAnswersTheLevelFromTheEnvironment) {
  TempDir dir;
  for (const auto& [variable, level] :
       {std::pair<std::optional<std::string>, int32_t>{std::nullopt, 2}, {"3", 3}, {"0", 0}}) {
    Variables vars((dir / "trace.log").string(), variable);
    HostKit kit = HostKit::FromEnvironment();
    EXPECT_EQ(kit.instanceMonitor->GetLevel(), level);
    EXPECT_EQ(EntriesOf(dir / "trace.log", "LEVEL").back(), Fields{std::to_string(level)});
  }
}

TEST(HostKit, SaysHowItWasStartedAndWhatWasWrong) {
  TempDir dir;
  Variables vars((dir / "trace.log").string(), "loud", (dir / "answers.txt").string());
  HostKit kit = HostKit::FromEnvironment();
  const auto notes = EntriesOf(dir / "trace.log", "HOSTKIT");
  ASSERT_EQ(notes.size(), 2u);
  EXPECT_NE(notes[0][0].find("level 2"), std::string::npos) << notes[0][0];
  EXPECT_NE(notes[0][0].find("answers.txt"), std::string::npos) << notes[0][0];
  EXPECT_NE(notes[1][0].find("'loud'"), std::string::npos) << notes[1][0];
}

TEST(SimInstanceMonitor, RefusesAMissingCounterAndReadsRegisteredOnesLive) {
  TempDir dir;
  SimInstanceMonitor monitor(std::make_shared<TraceLog>(dir / "trace.log"), 2);
  // A missing counter is refused and leaves nothing registered.
  EXPECT_THROW(monitor.RegisterCounter("Kestrivan.InstanceCount", nullptr), RunTimeError);
  EXPECT_FALSE(monitor.Counter("Kestrivan.InstanceCount"));
  int32_t count = 0;
  monitor.RegisterCounter("Kestrivan.InstanceCount", &count);
  EXPECT_FALSE(monitor.Counter("Other"));
  count = 3;
  EXPECT_EQ(monitor.Counter("Kestrivan.InstanceCount"), 3);
  monitor.LogCounters();
  count = 0;
  monitor.LogCounters();
  EXPECT_EQ(EntriesOf(dir / "trace.log", "COUNTER"),
            (std::vector<Fields>{{"Kestrivan.InstanceCount", "0", "registered"},
                                 {"Kestrivan.InstanceCount", "3"},
                                 {"Kestrivan.InstanceCount", "0"}}));
}

}  // namespace
}  // namespace kestrivon::hostkit::test
