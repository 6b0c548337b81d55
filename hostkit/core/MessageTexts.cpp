#include "core/MessageTexts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <system_error>
#include <utility>

#include "runtime/Text.h"

namespace kestrivon::hostkit {
namespace {

constexpr size_t kIdDigits = 5;

bool IsLowerHex(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

bool Skipped(std::string_view trimmed) { return trimmed.empty() || trimmed.front() == '#'; }

}  // namespace

std::optional<MessageIdText> ParseMessageIdText(std::string_view text) {
  if (text.size() < 1 + kIdDigits + 1 || text[0] != '~' || text[1 + kIdDigits] != ' ') {
    return std::nullopt;
  }
  const std::string_view id = text.substr(1, kIdDigits);
  if (!std::all_of(id.begin(), id.end(), IsLowerHex)) return std::nullopt;
  return MessageIdText{std::string(id), std::string(text.substr(1 + kIdDigits + 1))};
}

std::optional<std::vector<std::string>> ReadTextLines(const std::filesystem::path& file) {
  std::error_code ec;
  if (std::filesystem::is_directory(file, ec)) return std::nullopt;
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::vector<std::string> lines;
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(std::move(line));
  }
  if (in.bad()) return std::nullopt;
  if (!lines.empty() && lines.front().starts_with("\xEF\xBB\xBF")) lines.front().erase(0, 3);
  return lines;
}

Translations Translations::Load(const std::filesystem::path& file,
                                std::vector<std::string>& problems) {
  Translations translations;
  const auto lines = ReadTextLines(file);
  if (!lines) {
    problems.push_back("cannot read the file; default texts are used");
    return translations;
  }
  for (size_t i = 0; i < lines->size(); ++i) {
    const std::string& line = (*lines)[i];
    if (Skipped(Trim(line))) continue;
    std::string normalised = line;
    if (normalised.size() > 1 + kIdDigits) {
      normalised.replace(1, kIdDigits,
                         LowerAscii(std::string_view(normalised).substr(1, kIdDigits)));
    }
    auto parsed = ParseMessageIdText(normalised);
    if (!parsed) {
      problems.push_back("line " + std::to_string(i + 1) +
                         " is not a message identifier text and is ignored: " + line);
      continue;
    }
    translations.texts_[parsed->id] = std::move(parsed->defaultText);
  }
  return translations;
}

const std::string* Translations::Find(const std::string& id) const {
  const auto it = texts_.find(id);
  return it == texts_.end() ? nullptr : &it->second;
}

std::optional<int32_t> ParseAnswer(std::string_view text) {
  text = Trim(text);
  static constexpr std::array<std::pair<std::string_view, int32_t>, 7> kNames{{
      {"OK", 1},
      {"Cancel", 2},
      {"Abort", 3},
      {"Retry", 4},
      {"Ignore", 5},
      {"Yes", 6},
      {"No", 7},
  }};
  for (const auto& [name, value] : kNames) {
    if (EqualNoCase(name, text)) return value;
  }
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  int32_t value = 0;
  const char* end = text.data() + text.size();
  const auto [ptr, ec] = std::from_chars(text.data(), end, value);
  if (text.empty() || ec != std::errc() || ptr != end) return std::nullopt;
  return value;
}

ScriptedAnswers::ScriptedAnswers(std::vector<std::string> lines) {
  for (auto& line : lines) {
    const std::string_view trimmed = Trim(line);
    if (!Skipped(trimmed)) lines_.emplace_back(trimmed);
  }
}

std::optional<ScriptedAnswers> ScriptedAnswers::Load(const std::filesystem::path& file) {
  auto lines = ReadTextLines(file);
  if (!lines) return std::nullopt;
  return ScriptedAnswers(std::move(*lines));
}

std::optional<std::string> ScriptedAnswers::Next() {
  if (lines_.empty()) return std::nullopt;
  std::string line = std::move(lines_.front());
  lines_.pop_front();
  return line;
}

}  // namespace kestrivon::hostkit
