#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrivon::hostkit {

// A message identifier text: "~" + five lower-case hexadecimal digits + one
// blank + the default text ("~05d86 Printer is not installed").
struct MessageIdText {
  std::string id;  // "05d86"
  std::string defaultText;
};
std::optional<MessageIdText> ParseMessageIdText(std::string_view text);

// The lines of a UTF-8 text file (byte-order mark and CR of CRLF removed);
// nullopt when it cannot be read.
std::optional<std::vector<std::string>> ReadTextLines(const std::filesystem::path& file);

// Translations of message identifiers. The file holds one message identifier
// text per line, with the translation in place of the default text
// ("~05d86 Drucker ist nicht installiert"); the digits may be in either case.
// Blank lines and lines beginning with '#' are skipped.
class Translations {
 public:
  Translations() = default;
  // Lines that are not message identifier texts are reported in problems.
  static Translations Load(const std::filesystem::path& file, std::vector<std::string>& problems);

  [[nodiscard]] const std::string* Find(const std::string& id) const;
  [[nodiscard]] size_t Size() const noexcept { return texts_.size(); }

 private:
  std::map<std::string, std::string> texts_;
};

// A message box answer written as a number ("6") or by its button name
// ("Yes", "no", "OK", "Cancel", "Abort", "Retry", "Ignore").
std::optional<int32_t> ParseAnswer(std::string_view text);

// The OK button's answer: what a box gives when no script says otherwise.
inline constexpr int32_t kAnswerOK = 1;

// Scripted answers, one per line, consumed in order. Blank lines and lines
// beginning with '#' are skipped; anything else is one answer, even when it
// cannot be understood, so that each line belongs to one box.
class ScriptedAnswers {
 public:
  ScriptedAnswers() = default;
  explicit ScriptedAnswers(std::vector<std::string> lines);
  // nullopt when the file cannot be read.
  static std::optional<ScriptedAnswers> Load(const std::filesystem::path& file);

  // The next line as written, or nullopt when all have been used.
  std::optional<std::string> Next();

 private:
  std::deque<std::string> lines_;
};

}  // namespace kestrivon::hostkit
