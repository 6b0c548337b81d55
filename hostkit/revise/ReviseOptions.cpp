#include "revise/ReviseOptions.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>

#include "core/Settings.h"
#include "core/Strict.h"
#include "revise/CommandLine.h"
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

void AddReviseOptions(CLI::App& app, ReviseOptions& options, OptionalTexts& texts) {
  app.description(
      "Runs one revision the way the host does: creates the revision printer <class> (a ProgID "
      "such as VemraKestrivon.NoFile, or the bare class name NoFile, in any case), calls "
      "InitPrnSettings, CheckPrnSettings, IsPrinterAvailable, SetPrnDefaults and DoPrint, "
      "optionally AppendFile, and releases it. Every answer is printed; when one is False the "
      "component's trace lines that say why follow it.");
  app.add_option("class", options.printerClass,
                 "the revision printer class: NoFile, AdobePDF, AcrobatDistiller, AcrobatWriter, "
                 "PDFFactory, VemraTiff, VemraHARP")
      ->required();
  app.add_option("--folder", options.revisionFolder,
                 "revision folder handed to DoPrint (may be empty: \"\")")
      ->required();
  app.add_option("--name", options.fileName, "archive file name without extension")->required();
  auto* append =
      app.add_option("--append", texts.appendFile, "afterwards, AppendFile(<file>, <archive>)");
  app.add_option("--append-to", texts.appendTo,
                 "the archive for --append (default: folder + name + the class's Extension)")
      ->needs(append);
  app.add_option("--log", texts.log, "trace log of the host kit (VEMRA_TRACE_LOG)");
  app.add_flag("--debug", texts.debug, "diagnostic level 3: the debug-only lines are written");
  app.add_option("--level", texts.level, "diagnostic level (VEMRA_DIAG_LEVEL, default 2)");
  app.add_option("--answers", texts.answers,
                 "scripted message box answers, one per line (VEMRA_MSGBOX_ANSWERS)");
  app.add_option("--translations", texts.translations,
                 "message text translations (VEMRA_TRANSLATIONS)");
  app.add_option("--document", texts.document,
                 "hand DoPrint a host document of that name with its owner "
                 "(VEMRA_DOCUMENT_NAME; default: no document)");
  app.add_option("--show-revision-messages", texts.showRevisionMessages,
                 "the owner's option ShowRevisionMessages: True, False, a number or text "
                 "(default: not defined, messages are shown as boxes)");
  app.add_option("--print-world", texts.printWorld,
                 "the printers, drivers and documents of a printworld.ini (VEMRA_PRINT_WORLD); "
                 "--document picks one of its documents");
  app.add_option("--faults", texts.faults,
                 "host calls failed on purpose, call:use:error|null,... (VEMRA_FAULTS)");
  app.add_flag("--lenient", options.lenient,
               "the host kit does not check the component's duties (VEMRA_HOSTKIT_STRICT=0)");
  app.footer(
      "Other commands, each with its own --help:\n"
      "  vemra-revise setup <family> ...   sets a printer up as its driver's installer would\n"
      "  vemra-revise doctor ...           examines the workstation, changing nothing\n"
      "  vemra-revise locks <folder> ...   lists lock files, removes stale ones\n\n"
      "Message boxes, message-pack entries, planned faults (struck or not) and errors reported "
      "in the run are listed after it.\n\n"
      "Exit status: 0 when DoPrint (and AppendFile) answered True, 1 when one of them answered "
      "False or failed, 2 for bad arguments or an unknown class, 3 when the class could not be "
      "created or is no revision printer, 4 when objects outlived the release or the strict "
      "host kit found broken duties.");
}

std::optional<UsageError> Complete(ReviseOptions& options, const OptionalTexts& texts,
                                   const CLI::App& app) {
  const auto take = [&app](const char* name, const std::string& text,
                           std::optional<std::string>& into) {
    if (app.count(name) > 0) into = text;
  };
  take("--append", texts.appendFile, options.appendFile);
  take("--append-to", texts.appendTo, options.appendTo);
  take("--log", texts.log, options.log);
  take("--answers", texts.answers, options.answers);
  take("--translations", texts.translations, options.translations);
  take("--document", texts.document, options.document);
  take("--show-revision-messages", texts.showRevisionMessages, options.showRevisionMessages);
  take("--print-world", texts.printWorld, options.printWorld);
  take("--faults", texts.faults, options.faults);
  if (texts.debug) options.level = kDebugLevel;
  if (app.count("--level") > 0) {
    options.level = ParseLevel(texts.level);
    if (!options.level) return UsageError{"--level needs a number, not '" + texts.level + "'"};
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
  return std::nullopt;
}

ParseResult ParseArguments(const std::vector<std::string>& args) {
  CLI::App app;
  Prepare(app, "vemra-revise");
  ReviseOptions options;
  OptionalTexts texts;
  AddReviseOptions(app, options, texts);
  std::vector<std::string> reversed(args.rbegin(), args.rend());
  try {
    app.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    return HelpRequest{};
  } catch (const CLI::CallForVersion&) {
    return HelpRequest{};
  } catch (const CLI::ParseError& error) {
    return UsageError{error.what()};
  }
  if (auto error = Complete(options, texts, app)) return *error;
  return options;
}

std::string UsageText(std::string_view program) {
  CLI::App app;
  Prepare(app, program);
  ReviseOptions options;
  OptionalTexts texts;
  AddReviseOptions(app, options, texts);
  return app.help();
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
  if (options.lenient) variables.emplace_back(kStrictVariable, "0");
  return variables;
}

std::string ArchiveName(const ReviseOptions& options, const std::string& extension) {
  std::string name = options.revisionFolder;
  if (name.empty() || name.back() != '\\') name += '\\';
  return name + options.fileName + extension;
}

}  // namespace kestrivon::hostkit::revise
