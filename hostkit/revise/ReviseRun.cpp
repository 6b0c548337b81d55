#include "revise/ReviseRun.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <set>

#include "core/Environment.h"
#include "core/PdfMerge.h"
#include "core/Settings.h"
#include "core/TraceLog.h"
#include "host/portable/FaultPlan.h"
#ifndef _WIN32
#include "platform/portable/FileSystem.h"
#endif
#include "printers/PrinterCatalogue.h"
#include "revise/CommandLine.h"
#include "revise/ReviseSetup.h"
#include "runtime/ErrorHandler.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit::revise {
namespace {

// A text answer on one line: line breaks and other control characters shown
// as escapes, backslashes left alone so that paths read as they are.
std::string Quoted(const std::string& text) {
  std::string shown = "\"";
  for (const char c : text) {
    if (c == '\r') {
      shown += "\\r";
    } else if (c == '\n') {
      shown += "\\n";
    } else if (c == '\t') {
      shown += "\\t";
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      char hex[8];
      std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned char>(c));
      shown += hex;
    } else {
      shown += c;
    }
  }
  return shown + "\"";
}

std::string Boolean(bool value) { return value ? "True" : "False"; }

// Calls one operation and prints its answer on one line; nullopt when the
// call failed.
template <class T>
std::optional<T> Ask(std::ostream& out, std::string_view operation, const std::function<T()>& call,
                     const std::function<std::string(const T&)>& show) {
  std::optional<T> answer;
  if (const auto error = Attempt([&] { answer = call(); })) {
    out << operation << " -> failed: " << error->description << '\n';
    return std::nullopt;
  }
  out << operation << " -> " << show(*answer) << '\n';
  return answer;
}

// The size of the log before the run, so that the run's own entries can be
// found afterwards.
std::uintmax_t LogSize(const std::filesystem::path& path) {
  std::error_code ec;
  const std::uintmax_t size = std::filesystem::file_size(path, ec);
  return ec ? 0 : size;
}

// The log's entries written since from, each split into its fields.
std::vector<std::vector<std::string>> EntriesSince(const std::filesystem::path& path,
                                                   std::uintmax_t from) {
  std::vector<std::vector<std::string>> entries;
  std::ifstream in(path, std::ios::binary);
  if (!in) return entries;
  in.seekg(static_cast<std::streamoff>(from));
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::vector<std::string> fields = SplitEntry(line);
    if (fields.size() >= 2) entries.push_back(std::move(fields));
  }
  return entries;
}

// Whether a trace line tells of a failure rather than of progress.
bool TellsOfFailure(const std::string& line) {
  static const char* const kWords[] = {
      "abort",   "fail",      "could not",     "not found", "not exist",
      "locked",  "not ready", "not installed", "Nothing",   "not specified",
      "not set", "exceeded",  "not supported"};
  const std::string lower = LowerAscii(line);
  for (const char* word : kWords) {
    if (lower.find(LowerAscii(word)) != std::string::npos) return true;
  }
  return false;
}

// Why an operation answered False, from the log since it began: the last of
// its trace lines that tells of a failure (else its last line) and each
// error it reported.
void ShowWhy(std::ostream& out, const std::filesystem::path& path, std::uintmax_t from) {
  std::string reason, last;
  std::vector<std::string> errors;
  for (const std::vector<std::string>& fields : EntriesSince(path, from)) {
    if (fields.size() >= 3 && fields[1] == "TRACE") {
      last = fields[2];
      if (TellsOfFailure(last)) reason = last;
    } else if (fields.size() >= 7 && fields[1] == "ERROR") {
      errors.push_back(fields[2] + " " + fields[3] + " (" + fields[5] + ", " + fields[6] + ")");
    }
  }
  if (reason.empty()) reason = last;
  while (!reason.empty() && (reason.back() == '\n' || reason.back() == '\r')) reason.pop_back();
  if (!reason.empty()) out << "  why: " << reason << '\n';
  for (const auto& error : errors) out << "  error reported: " << error << '\n';
}

// The archive DoPrint made, so that a user sees what the revision left:
// its path, its size and, for a PDF, its pages.
void ShowArchive(std::ostream& out, const std::string& archive) {
#ifdef _WIN32
  const std::filesystem::path path = PathFromUtf8(archive);
#else
  // The component's name, backslashes and all, as the portable seam maps it.
  const std::filesystem::path path = PathFromUtf8(platform::portable::HostPath(archive));
#endif
  std::error_code ec;
  const std::uintmax_t size = std::filesystem::file_size(path, ec);
  if (ec) return;  // none made (NoFile), or another name
  out << "Archive " << Quoted(archive) << ": " << size << " bytes";
  const bool pdf = archive.size() >= 4 && EqualNoCase(archive.substr(archive.size() - 4), ".pdf");
  if (pdf) {
    const int pages = PdfPageCount(archive);
    out << ", " << (pages < 0 ? std::string("no readable PDF") : std::to_string(pages) + " pages");
  }
  out << '\n';
}

bool AskBoolean(std::ostream& out, std::string_view operation, const std::function<bool()>& call) {
  return Ask<bool>(out, operation, call, Boolean).value_or(false);
}

int RunRevision(const ReviseOptions& options, ReviseBackend& backend, std::ostream& out,
                std::ostream& err) {
  for (const auto& [name, value] : HostKitEnvironment(options)) backend.SetVariable(name, value);
  // The print world's drivers tell what DoPrint waits for.
  backend.SetVariable(kProgressVariable, "1");

  // The host objects read the same variables when they are created.
  const TraceLog log(Settings::FromEnvironment().traceLog);
  std::string why;
  if (!log.Writable(&why)) {
    err << "vemra-revise: the trace log " << PathToUtf8(log.Path()) << " cannot be written: " << why
        << '\n';
    return kExitUsage;
  }
  out << "Trace log: " << PathToUtf8(log.Path()) << '\n';
  const std::uintmax_t logBefore = LogSize(log.Path());

  ReviseBackend::Created created = backend.Create(options.printerClass);
  if (!created.session) {
    if (created.failure == ReviseBackend::CreateFailure::kUnknownClass) {
      // One of the seven that is not registered is told so; any other name
      // is told the seven.
      err << "vemra-revise: "
          << (FindPrinterClass(options.printerClass) != nullptr
                  ? created.reason
                  : UnknownClassText(options.printerClass))
          << '\n';
      return kExitUsage;
    }
    err << "vemra-revise: " << created.reason << '\n';
    return kExitNotCreated;
  }
  PrinterSession& printer = *created.session;
  out << "Created " << created.name << '\n';
  // A False answer is followed by the component's own reason.
  const auto askBoolean = [&](std::string_view operation, const std::function<bool()>& call) {
    const std::uintmax_t from = LogSize(log.Path());
    const bool answer = AskBoolean(out, operation, call);
    if (!answer) ShowWhy(out, log.Path(), from);
    return answer;
  };

  const auto extension = Ask<std::string>(
      out, "Extension", [&] { return printer.Extension(); }, Quoted);
  Ask<int32_t>(
      out, "Version", [&] { return printer.Version(); },
      [](const int32_t& v) { return std::to_string(v); });
  askBoolean("InitPrnSettings", [&] { return printer.InitPrnSettings(); });
  Ask<std::string>(
      out, "CheckPrnSettings", [&] { return printer.CheckPrnSettings(); }, Quoted);
  askBoolean("IsPrinterAvailable", [&] { return printer.IsPrinterAvailable(); });
  askBoolean("SetPrnDefaults", [&] { return printer.SetPrnDefaults(); });
  // With --document the printer gets the host kit's document and its owner,
  // else none, as for a document without a file.
  const bool printed = askBoolean(
      "DoPrint", [&] { return printer.DoPrint(options.revisionFolder, options.fileName); });
  const std::string archive = ArchiveName(options, extension.value_or(""));
  if (printed) ShowArchive(out, archive);
  bool appended = true;
  if (options.appendFile) {
    const std::string target = options.appendTo ? *options.appendTo : archive;
    out << "AppendFile " << Quoted(*options.appendFile) << " to " << Quoted(target) << '\n';
    appended =
        askBoolean("AppendFile", [&] { return printer.AppendFile(*options.appendFile, target); });
    if (appended) ShowArchive(out, target);
  }

  created.session.reset();
  out << "Released\n";
  const ReviseBackend::ReleaseCheck release = backend.Released();
  for (const auto& line : release.shown) out << line << '\n';
  ListMessages(out, log.Path(), logBefore);

  for (const auto& violation : release.violations) {
    err << "vemra-revise: strict host: " << violation << '\n';
  }
  if (!release.leaks.empty()) {
    for (const auto& leak : release.leaks) err << "vemra-revise: leaked: " << leak << '\n';
    out << "Revision failed: objects outlived the release\n";
    return kExitLeaked;
  }
  if (!release.violations.empty()) {
    out << "Revision failed: the strict host kit found broken duties\n";
    return kExitLeaked;
  }
  if (!printed) {
    out << "Revision failed: DoPrint did not answer True\n";
    return kExitRevisionFailed;
  }
  if (!appended) {
    out << "Revision failed: AppendFile did not answer True\n";
    return kExitRevisionFailed;
  }
  out << "Revision done\n";
  return kExitSuccess;
}

}  // namespace

void ListMessages(std::ostream& out, const std::filesystem::path& path, std::uintmax_t from) {
  std::set<std::string> struck;  // call:use
  for (const std::vector<std::string>& fields : EntriesSince(path, from)) {
    const auto field = [&fields](size_t i) {
      return i < fields.size() ? fields[i] : std::string();
    };
    if (fields[1] == "MSGBOX") {
      out << "Message box " << Quoted(field(2)) << " title " << Quoted(field(4)) << " buttons "
          << field(3) << " -> " << field(5) << '\n';
    } else if (fields[1] == "MESSAGE") {
      out << "Message pack entry " << Quoted(field(2)) << " for " << Quoted(field(3)) << '\n';
    } else if (fields[1] == "FAULT") {
      struck.insert(field(2) + ':' + field(3));
      out << "Planned fault " << field(2) << " (use " << field(3) << ") struck: " << field(4)
          << '\n';
    } else if (fields[1] == "ERROR") {
      out << "Error " << field(2) << " reported by " << field(5) << ", " << field(6) << ": "
          << field(3) << '\n';
    }
  }
  // A fault planned for a use the run never reached.
  const auto plan = GetEnvironment(kFaultsVariable);
  const auto faults = plan ? host::portable::FaultPlan::Parse(*plan, nullptr) : std::nullopt;
  if (!faults) return;
  for (const auto& fault : faults->Faults()) {
    if (struck.count(fault.call + ':' + std::to_string(fault.use)) == 0) {
      out << "Planned fault " << fault.call << " (use " << fault.use << ") did not strike\n";
    }
  }
}

int ReviseMain(std::string_view program, const std::vector<std::string>& args,
               ReviseBackend& backend, std::ostream& out, std::ostream& err) {
  if (!args.empty() && args.front() == "setup") return SetupMain(program, args, out, err);
  CLI::App app;
  Prepare(app, program);
  ReviseOptions options;
  OptionalTexts texts;
  AddReviseOptions(app, options, texts);
  if (const auto status = Parse(app, args, out, err)) return *status;
  if (const auto error = Complete(options, texts, app)) {
    err << program << ": " << error->message << "\n";
    return kExitUsage;
  }
  return RunRevision(options, backend, out, err);
}

}  // namespace kestrivon::hostkit::revise
