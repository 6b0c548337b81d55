#include "revise/ReviseSetup.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <variant>

#include "core/DriverFamilies.h"
#include "core/Environment.h"
#include "revise/CommandLine.h"
#include "runtime/ErrorHandler.h"
#include "runtime/RunTimeError.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit::revise {
namespace {

constexpr int kExitSuccess = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

struct SetupRequest {
  DriverFamily family = DriverFamily::kNone;
  std::string printer;
  std::string output;
  std::set<std::string> wrong;
  std::string world;
  std::string log;
};

// The families and their settings, for the help.
std::string FamiliesText() {
  std::string text = "Families and their settings:\n";
  for (const char* name : {"adobe-pdf", "distiller", "pdfwriter", "pdffactory1", "pdffactory2",
                           "pdffactory3", "pdffactory4"}) {
    text += "  ";
    text += name;
    text += ":";
    for (const auto& setting : DriverFamilySettings(*ParseDriverFamily(name)))
      text += " " + setting;
    text += "\n";
  }
  return text;
}

void AddSetupOptions(CLI::App& app, std::string& family, SetupRequest& request,
                     std::vector<std::string>& wrong) {
  app.description(
      "Sets a printer up as its driver family's installer would for unattended revisions into "
      "<folder>, or with each --wrong setting as an unattended run cannot use it.");
  app.add_option("family", family, "the driver family")->required();
  app.add_option("--name", request.printer, "the printer's name")->required();
  app.add_option("--output", request.output, "the folder the driver writes into")->required();
  app.add_option("--wrong", wrong, "a setting to set wrong on purpose (repeatable)")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  app.add_option("--print-world", request.world,
                 "natively: the print world file whose printer section gets the settings");
  // Taken as a revision takes it; a setup writes no trace.
  app.add_option("--log", request.log, "accepted, not used: a setup writes no trace");
  app.footer(FamiliesText() +
             "On Windows and under Wine the settings go into the registry and files; natively "
             "into the printer's section of the print world file (--print-world, required "
             "there), which applies them when it is loaded.");
}

// The request complete, or the reason it is not.
std::optional<std::string> Check(const std::string& family, const std::vector<std::string>& wrong,
                                 SetupRequest& request) {
  const auto parsed = ParseDriverFamily(family);
  if (!parsed) return "unknown family '" + family + "'";
  request.family = *parsed;
#ifndef _WIN32
  if (request.world.empty()) return std::string("natively setup needs --print-world <file>");
#endif
  const auto known = DriverFamilySettings(request.family);
  for (const auto& name : wrong) {
    bool found = false;
    for (const auto& setting : known) found = found || EqualNoCase(setting, name);
    if (!found) return DriverFamilyName(request.family) + " has no setting '" + name + "'";
    request.wrong.insert(name);
  }
  return std::nullopt;
}

std::string Joined(const std::set<std::string>& names) {
  std::string text;
  for (const auto& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

}  // namespace

std::string WithPrinterSection(const std::string& text, const std::string& name,
                               const std::vector<std::string>& lines) {
  std::istringstream in(text);
  std::string kept;
  bool skipping = false;
  for (std::string line; std::getline(in, line);) {
    const std::string trimmed(Trim(line));
    if (!trimmed.empty() && trimmed.front() == '[') {
      const std::string inner(Trim(trimmed.substr(1, trimmed.find(']') - 1)));
      skipping = inner.size() > 8 && EqualNoCase(inner.substr(0, 8), "Printer ") &&
                 EqualNoCase(std::string(Trim(inner.substr(8))), name);
    }
    if (!skipping) kept += line + "\n";
  }
  kept += "[Printer " + name + "]\n";
  for (const auto& line : lines) kept += line + "\n";
  return kept;
}

int SetupMain(std::string_view program, const std::vector<std::string>& args, std::ostream& out,
              std::ostream& err) {
  CLI::App app;
  Prepare(app, std::string(program) + " setup");
  SetupRequest request;
  std::string familyName;
  std::vector<std::string> wrongNames;
  AddSetupOptions(app, familyName, request, wrongNames);
  // args[0] is the word "setup".
  if (const auto status =
          Parse(app, std::vector<std::string>(args.begin() + 1, args.end()), out, err)) {
    return *status;
  }
  if (const auto problem = Check(familyName, wrongNames, request)) {
    err << program << " setup: " << *problem << "\n\n" << app.help();
    return kExitUsage;
  }
  const std::string family = DriverFamilyName(request.family);
  const auto failure = Attempt([&] {
#ifdef _WIN32
    SetUpDriver(SystemDriverSettings(), request.family, request.printer, request.output,
                request.wrong);
    out << "Set up " << family << " printer \"" << request.printer << "\" writing into "
        << request.output << " in the registry\n";
    if (AddSpoolerPrinter(request.printer)) {
      out << "Added \"" << request.printer << "\" to the spooler's printers (port FILE:)\n";
    }
#else
    const auto path = PathFromUtf8(request.world);
    std::string text;
    {
      std::ifstream in(path, std::ios::binary);
      text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    std::vector<std::string> lines{"Family = " + family, "Output = " + request.output};
    if (!request.wrong.empty()) lines.push_back("Wrong = " + Joined(request.wrong));
    std::ofstream outFile(path, std::ios::binary | std::ios::trunc);
    outFile << WithPrinterSection(text, request.printer, lines);
    if (!outFile.flush()) throw RunTimeError(75, "cannot write " + request.world);
    out << "Set up " << family << " printer \"" << request.printer << "\" writing into "
        << request.output << " in " << request.world << "\n";
#endif
  });
  if (failure) {
    err << "vemra-revise: setup failed: " << failure->description << "\n";
    return kExitFailure;
  }
  if (!request.wrong.empty()) out << "Wrong on purpose: " << Joined(request.wrong) << "\n";
  return kExitSuccess;
}

}  // namespace kestrivon::hostkit::revise
