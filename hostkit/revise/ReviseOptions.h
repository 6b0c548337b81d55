#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace kestrivon::hostkit::revise {

// What one vemra-revise run is asked to do.
struct ReviseOptions {
  std::string printerClass;  // ProgID or bare class name
  std::string revisionFolder;
  std::string fileName;
  std::optional<std::string> appendFile;  // AppendFile(appendFile, appendTo)
  std::optional<std::string> appendTo;    // default: the archive DoPrint made
  std::optional<std::string> log;
  std::optional<std::string> answers;
  std::optional<std::string> translations;
  std::optional<int32_t> level;                     // --debug is level 3
  std::optional<std::string> document;              // a host document of that name
  std::optional<std::string> showRevisionMessages;  // its owner's option
  std::optional<std::string> printWorld;            // printworld.ini, natively
  std::optional<std::string> faults;                // host calls planned to fail
  bool lenient = false;                             // the host kit not strict
};

struct HelpRequest {};
struct UsageError {
  std::string message;
};

using ParseResult = std::variant<ReviseOptions, HelpRequest, UsageError>;

// The options as given, before they are known to be there.
struct OptionalTexts {
  std::string appendFile, appendTo, log, answers, translations, document, showRevisionMessages,
      printWorld, faults, level;
  bool debug = false;
};

// The revision's options on a CLI11 app, bound to options and texts; after
// the parse Complete carries the texts given into options.
void AddReviseOptions(CLI::App& app, ReviseOptions& options, OptionalTexts& texts);
std::optional<UsageError> Complete(ReviseOptions& options, const OptionalTexts& texts,
                                   const CLI::App& app);

// Parses the arguments after the program name.
ParseResult ParseArguments(const std::vector<std::string>& args);

std::string UsageText(std::string_view program);

// The host kit's environment variables that carry the options into the host
// objects, which read them when they are first created.
std::vector<std::pair<std::string, std::string>> HostKitEnvironment(const ReviseOptions& options);

// The archive that DoPrint makes: folder, a backslash unless it ends with
// one, the file name and the class's extension.
std::string ArchiveName(const ReviseOptions& options, const std::string& extension);

}  // namespace kestrivon::hostkit::revise
