#include "revise/ReviseOptions.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>

#include "core/Settings.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit::revise {
namespace {

constexpr int32_t kDebugLevel = 3;

// CON, PRN, AUX, NUL, COM1 to COM9 and LPT1 to LPT9, with or without an
// extension: Windows opens the device, not a file.
bool IsDeviceName(const std::string& part) {
  const std::string base = LowerAscii(part.substr(0, part.find('.')));
  if (base == "con" || base == "prn" || base == "aux" || base == "nul") return true;
  return base.size() == 4 && (base.rfind("com", 0) == 0 || base.rfind("lpt", 0) == 0) &&
         base[3] >= '1' && base[3] <= '9';
}

// Why one part of a name (between separators) is none a host hands over.
std::optional<std::string> WhyNotAPart(const std::string& part) {
  if (part == "." || part == "..") return "'" + part + "' would lead out of the folder";
  for (const char c : part) {
    if (static_cast<unsigned char>(c) < 32 ||
        std::string_view("<>:\"|?*").find(c) != std::string_view::npos) {
      return "'" + part + "' holds a character Windows forbids in names";
    }
  }
  if (IsDeviceName(part)) return "'" + part + "' names a device, not a file";
  if (!part.empty() && (part.back() == ' ' || part.back() == '.')) {
    return "'" + part + "' ends in a blank or a dot, which Windows drops";
  }
  return std::nullopt;
}

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

// A folder as a host gives it: a drive (C:), a UNC share or a plain path,
// each part a name of its own.
std::optional<std::string> WhyNotAFolder(const std::string& folder) {
  size_t start = 0;
  if (folder.size() >= 2 && folder[1] == ':' &&
      std::isalpha(static_cast<unsigned char>(folder[0]))) {
    start = 2;
  }
  for (size_t end = start; start <= folder.size(); start = end + 1) {
    end = start;
    while (end < folder.size() && !IsSeparator(folder[end])) ++end;
    const std::string part = folder.substr(start, end - start);
    if (!part.empty()) {
      if (auto why = WhyNotAPart(part)) return why;
    }
  }
  return std::nullopt;
}

// A file name: one part, no folder in it.
std::optional<std::string> WhyNotAName(const std::string& name) {
  if (std::any_of(name.begin(), name.end(), IsSeparator)) {
    return "'" + name + "' is a path, not a file name";
  }
  return name.empty() ? std::nullopt : WhyNotAPart(name);
}

}  // namespace

ParseResult ParseArguments(const std::vector<std::string>& args) {
  ReviseOptions options;
  bool haveFolder = false;
  bool haveName = false;
  std::vector<std::string> positional;

  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    auto value = [&](std::string& into) -> std::optional<UsageError> {
      if (i + 1 >= args.size()) return UsageError{"option " + arg + " needs a value"};
      into = args[++i];
      return std::nullopt;
    };
    auto optionalValue = [&](std::optional<std::string>& into) -> std::optional<UsageError> {
      std::string text;
      if (auto error = value(text)) return error;
      into = std::move(text);
      return std::nullopt;
    };
    std::optional<UsageError> error;
    if (arg == "--help" || arg == "-h" || arg == "/?") {
      return HelpRequest{};
    } else if (arg == "--folder") {
      error = value(options.revisionFolder);
      haveFolder = true;
    } else if (arg == "--name") {
      error = value(options.fileName);
      haveName = true;
    } else if (arg == "--append") {
      error = optionalValue(options.appendFile);
    } else if (arg == "--append-to") {
      error = optionalValue(options.appendTo);
    } else if (arg == "--log") {
      error = optionalValue(options.log);
    } else if (arg == "--answers") {
      error = optionalValue(options.answers);
    } else if (arg == "--translations") {
      error = optionalValue(options.translations);
    } else if (arg == "--document") {
      error = optionalValue(options.document);
    } else if (arg == "--show-revision-messages") {
      error = optionalValue(options.showRevisionMessages);
    } else if (arg == "--print-world") {
      error = optionalValue(options.printWorld);
    } else if (arg == "--faults") {
      error = optionalValue(options.faults);
    } else if (arg == "--debug") {
      options.level = kDebugLevel;
    } else if (arg == "--level") {
      std::string text;
      error = value(text);
      if (!error) {
        options.level = ParseLevel(text);
        if (!options.level) error = UsageError{"--level needs a number, not '" + text + "'"};
      }
    } else if (arg.size() > 1 && arg[0] == '-') {
      return UsageError{"unknown option " + arg};
    } else {
      positional.push_back(arg);
    }
    if (error) return *error;
  }

  if (positional.empty()) return UsageError{"no revision printer class given"};
  if (positional.size() > 1) return UsageError{"unexpected argument " + positional[1]};
  options.printerClass = positional[0];
  if (!haveFolder) return UsageError{"no revision folder given (--folder)"};
  if (!haveName) return UsageError{"no file name given (--name)"};
  if (options.appendTo && !options.appendFile) {
    return UsageError{"--append-to needs --append"};
  }
  // Names a host never hands over would be written elsewhere than the
  // revision folder, or not as files at all.
  if (auto why = WhyNotAFolder(options.revisionFolder)) {
    return UsageError{"--folder " + options.revisionFolder + ": " + *why};
  }
  if (auto why = WhyNotAName(options.fileName)) {
    return UsageError{"--name " + options.fileName + ": " + *why};
  }
  if (options.appendTo) {
    if (auto why = WhyNotAFolder(*options.appendTo)) {
      return UsageError{"--append-to " + *options.appendTo + ": " + *why};
    }
  }
  return options;
}

std::string UsageText(std::string_view program) {
  std::string text = "Usage: ";
  text += program;
  text += R"( <class> --folder <revision folder> --name <file name> [options]
       vemra-revise setup <family> --name <printer> --output <folder> [--wrong <setting>]...

Runs one revision the way the host does: creates the revision printer <class>
(a ProgID such as VemraKestrivon.NoFile, or the bare class name NoFile), calls
InitPrnSettings, CheckPrnSettings, IsPrinterAvailable, SetPrnDefaults and
DoPrint, optionally AppendFile, and releases it. Every answer is printed.

Options:
  --folder <path>        revision folder handed to DoPrint (may be empty: "")
  --name <name>          archive file name without extension
  --append <file>        afterwards, AppendFile(<file>, <archive>)
  --append-to <archive>  the archive for --append (default: folder + name +
                         the class's Extension)
  --log <file>           trace log of the host kit (VEMRA_TRACE_LOG)
  --debug                diagnostic level 3: the debug-only lines are written
  --level <n>            diagnostic level n (VEMRA_DIAG_LEVEL, default 2)
  --answers <file>       scripted message box answers (VEMRA_MSGBOX_ANSWERS)
  --translations <file>  message text translations (VEMRA_TRANSLATIONS)
  --document <name>      hand DoPrint a host document of that name with its
                         owner (VEMRA_DOCUMENT_NAME; default: no document)
  --show-revision-messages <value>
                         the owner's option ShowRevisionMessages: True, False,
                         a number or text (VEMRA_SHOW_REVISION_MESSAGES;
                         default: not defined, messages are shown as boxes)
  --print-world <file>   the printers, drivers and documents of printworld.ini
                         (VEMRA_PRINT_WORLD; native vemra-revise only);
                         --document picks one of its documents
  --faults <plan>        host calls failed on purpose, call:use:error|null,...
                         (VEMRA_FAULTS)
  --help                 this text

Message boxes, message-pack entries, planned faults (struck or not) and errors
reported in the run are listed after it.

Exit status: 0 when DoPrint (and AppendFile) answered True, 1 when one of
them answered False or failed, 2 for bad arguments or an unknown class,
3 when the class could not be created, 4 when objects outlived the release
(the component's DLL cannot unload, host kit objects are still alive).
)";
  return text;
}

std::vector<std::pair<std::string, std::string>> HostKitEnvironment(const ReviseOptions& options) {
  std::vector<std::pair<std::string, std::string>> variables;
  if (options.log) variables.emplace_back(kTraceLogVariable, *options.log);
  if (options.level) variables.emplace_back(kDiagLevelVariable, std::to_string(*options.level));
  if (options.answers) variables.emplace_back(kAnswersVariable, *options.answers);
  if (options.translations) variables.emplace_back(kTranslationsVariable, *options.translations);
  if (options.document) variables.emplace_back(kDocumentNameVariable, *options.document);
  if (options.showRevisionMessages) {
    variables.emplace_back(kShowRevisionMessagesVariable, *options.showRevisionMessages);
  }
  if (options.printWorld) variables.emplace_back(kPrintWorldVariable, *options.printWorld);
  if (options.faults) variables.emplace_back(kFaultsVariable, *options.faults);
  return variables;
}

std::string ArchiveName(const ReviseOptions& options, const std::string& extension) {
  std::string name = options.revisionFolder;
  if (name.empty() || name.back() != '\\') name += '\\';
  return name + options.fileName + extension;
}

}  // namespace kestrivon::hostkit::revise
