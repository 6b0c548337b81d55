#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/portable/FaultPlan.h"
#include "runtime/Variant.h"

namespace kestrivon::hostkit {

// The environment variables that configure the host kit.
inline constexpr const char* kTraceLogVariable = "VEMRA_TRACE_LOG";
inline constexpr const char* kDiagLevelVariable = "VEMRA_DIAG_LEVEL";
inline constexpr const char* kAnswersVariable = "VEMRA_MSGBOX_ANSWERS";
inline constexpr const char* kTranslationsVariable = "VEMRA_TRANSLATIONS";
// The host kit's document: its name, and its owner's option
// "ShowRevisionMessages" (unset: the option is not defined).
inline constexpr const char* kDocumentNameVariable = "VEMRA_DOCUMENT_NAME";
inline constexpr const char* kShowRevisionMessagesVariable = "VEMRA_SHOW_REVISION_MESSAGES";
// The host's configuration directory (Workset.Globals.ConfigDirectory),
// where HARP.ini lies; unset, the workset has none.
inline constexpr const char* kConfigDirectoryVariable = "VEMRA_CONFIG_DIRECTORY";
// The print world file (printworld.ini).
inline constexpr const char* kPrintWorldVariable = "VEMRA_PRINT_WORLD";
// Set (to anything): the print world's printers and drivers tell on
// stderr what a waiting revision waits for.
inline constexpr const char* kProgressVariable = "VEMRA_PROGRESS";
// The qpdf program of the Windows host kit (a Linux path under Wine).
inline constexpr const char* kQpdfVariable = "VEMRA_QPDF";
// A file name: the host kit ends its own process abruptly right before it
// puts a new file in the place of one of that name (a copy's or a merge's
// last step), as a kill at that moment would; "*" for any name.
inline constexpr const char* kKillBeforeReplaceVariable = "VEMRA_KILL_BEFORE_REPLACE";
// Host calls to fail ("Call:use:error,...").
inline constexpr const char* kFaultsVariable = "VEMRA_FAULTS";
// The trace log's size cap in bytes; at the cap it is rotated (one older
// generation kept as <log>.1). 0 turns the cap off.
inline constexpr const char* kLogMaxBytesVariable = "VEMRA_TRACE_LOG_MAX_BYTES";
inline constexpr uint64_t kDefaultLogMaxBytes = 16u << 20;

// The host's ordinary level: traces without the debug-only lines.
inline constexpr int32_t kDefaultLevel = 2;
inline constexpr const char* kDefaultLogName = "vemra-trace.log";

// File names are made absolute when they are read.
struct Settings {
  std::filesystem::path traceLog;
  uint64_t traceLogMaxBytes = kDefaultLogMaxBytes;
  int32_t level = kDefaultLevel;
  std::optional<std::filesystem::path> answersFile;
  std::optional<std::filesystem::path> translationsFile;
  // As given: a Windows or a host folder.
  std::optional<std::string> configDirectory;
  // The host calls planned to fail; null for none.
  std::shared_ptr<host::portable::FaultPlan> faults;
  // What was wrong with the variables, for the log; the defaults stand in.
  std::vector<std::string> problems;

  // Read once, when the host kit's objects are first created.
  static Settings FromEnvironment();
};

// The value of the document owner's option "ShowRevisionMessages" as
// VEMRA_SHOW_REVISION_MESSAGES gives it: True or False (any case) a Boolean,
// a whole number a Long, other text a String; unset, the option is not
// defined.
std::optional<Variant> ShowRevisionMessagesOption();
// An option's text as the host kit reads it: True or False a Boolean, a
// whole number a Long, other text a String.
Variant OptionValue(const std::string& text);

// Where the trace log goes when VEMRA_TRACE_LOG is not set.
std::filesystem::path DefaultTraceLog();

// A diagnostic level as written in the environment: one optional sign, then
// decimal digits only, blanks around it allowed.
std::optional<int32_t> ParseLevel(const std::string& text);

}  // namespace kestrivon::hostkit
