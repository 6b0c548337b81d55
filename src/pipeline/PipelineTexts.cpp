#include "pipeline/PipelineTexts.h"

#include <cmath>

#include "platform/LocaleText.h"

namespace kestrivon::pipeline {
namespace {

constexpr double kSecondsPerDay = 86400;

int64_t WholeSeconds(double date) { return std::llround(date * kSecondsPerDay); }

// Floor division, so that minutes before the epoch count like the rest.
int64_t WholeMinutes(int64_t seconds) { return seconds >= 0 ? seconds / 60 : (seconds - 59) / 60; }

}  // namespace

std::string DateText(double date) {
  // Outside the years 1601 to 9999 the locale has no text: a bad clock
  // gives an empty text rather than a failed print.
  return platform::LocaleDateTimeText(date).value_or(std::string());
}

int64_t SecondsBetween(double from, double to) { return WholeSeconds(to) - WholeSeconds(from); }

int64_t MinutesBetween(double from, double to) {
  return WholeMinutes(WholeSeconds(to)) - WholeMinutes(WholeSeconds(from));
}

}  // namespace kestrivon::pipeline
