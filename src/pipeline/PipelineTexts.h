#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "runtime/RunTimeError.h"

// Small helpers the pipeline's procedures share.
namespace kestrivon::pipeline {

// A run-time date as the run time turns it into text: the locale's short
// date and time.
std::string DateText(double date);

// DateDiff in seconds and in minutes (minute boundaries passed) between two
// run-time dates of whole seconds.
int64_t SecondsBetween(double from, double to);
int64_t MinutesBetween(double from, double to);

}  // namespace kestrivon::pipeline
