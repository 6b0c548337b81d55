#include "core/Settings.h"

#include <charconv>
#include <system_error>

#include "core/Environment.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit {
namespace {

// Fixed against the current folder of the moment the host kit starts, so
// that a later change of folder does not move its files.
std::filesystem::path Absolute(const std::string& text) {
  const std::filesystem::path path = PathFromUtf8(text);
  std::error_code ec;
  std::filesystem::path absolute = std::filesystem::absolute(path, ec);
  return ec ? path : absolute;
}

std::optional<std::filesystem::path> OptionalPath(const char* variable) {
  const auto value = GetEnvironment(variable);
  if (!value || value->empty()) return std::nullopt;
  return Absolute(*value);
}

}  // namespace

std::filesystem::path DefaultTraceLog() {
  std::error_code ec;
  std::filesystem::path folder = std::filesystem::temp_directory_path(ec);
  if (ec) folder = std::filesystem::current_path(ec);
  return folder / kDefaultLogName;
}

std::optional<int32_t> ParseLevel(const std::string& text) {
  std::string trimmed(Trim(text));
  // One optional sign, then digits only: from_chars would take "+-3" as -3
  // once the '+' is gone.
  const size_t digits = !trimmed.empty() && (trimmed[0] == '+' || trimmed[0] == '-') ? 1 : 0;
  if (trimmed.size() == digits ||
      trimmed.find_first_not_of("0123456789", digits) != std::string::npos) {
    return std::nullopt;
  }
  if (trimmed[0] == '+') trimmed.erase(0, 1);
  int32_t level = 0;
  const char* end = trimmed.data() + trimmed.size();
  const auto [ptr, ec] = std::from_chars(trimmed.data(), end, level);
  if (ec != std::errc() || ptr != end) return std::nullopt;
  return level;
}

Variant OptionValue(const std::string& text) {
  const std::string lower = LowerAscii(Trim(text));
  if (lower == "true") return Variant{true};
  if (lower == "false") return Variant{false};
  if (const auto number = ParseLevel(text)) return Variant{*number};
  return Variant{text};
}

std::optional<Variant> ShowRevisionMessagesOption() {
  const auto text = GetEnvironment(kShowRevisionMessagesVariable);
  if (!text) return std::nullopt;
  return OptionValue(*text);
}

Settings Settings::FromEnvironment() {
  Settings settings;
  const auto log = GetEnvironment(kTraceLogVariable);
  settings.traceLog = log && !log->empty() ? Absolute(*log) : DefaultTraceLog();
  if (const auto cap = GetEnvironment(kLogMaxBytesVariable); cap && !cap->empty()) {
    const auto parsed = ParseLevel(*cap);
    if (parsed && *parsed >= 0) {
      settings.traceLogMaxBytes = static_cast<uint64_t>(*parsed);
    } else {
      settings.problems.push_back(std::string(kLogMaxBytesVariable) + " '" + *cap +
                                  "' is not a number of bytes; the cap stays at " +
                                  std::to_string(kDefaultLogMaxBytes));
    }
  }

  if (const auto level = GetEnvironment(kDiagLevelVariable); level && !level->empty()) {
    if (const auto parsed = ParseLevel(*level)) {
      settings.level = *parsed;
    } else {
      settings.problems.push_back(std::string(kDiagLevelVariable) + " '" + *level +
                                  "' is not a number; level " + std::to_string(kDefaultLevel) +
                                  " is used");
    }
  }
  settings.answersFile = OptionalPath(kAnswersVariable);
  settings.translationsFile = OptionalPath(kTranslationsVariable);
  if (const auto folder = GetEnvironment(kConfigDirectoryVariable); folder && !folder->empty()) {
    settings.configDirectory = *folder;
  }
  if (const auto faults = GetEnvironment(kFaultsVariable); faults && !faults->empty()) {
    std::string problem;
    if (auto plan = host::portable::FaultPlan::Parse(*faults, &problem)) {
      settings.faults = std::make_shared<host::portable::FaultPlan>(std::move(*plan));
    } else {
      settings.problems.push_back(std::string(kFaultsVariable) + ": " + problem +
                                  "; no fault is planned");
    }
  }
  return settings;
}

}  // namespace kestrivon::hostkit
