#include "revise/ReviseSetup.h"

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <variant>

#include "core/DriverFamilies.h"
#include "core/Environment.h"
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
};

std::string SetupUsage(std::string_view program) {
  std::string text = "Usage: ";
  text += program;
  text += R"( setup <family> --name <printer> --output <folder> [--wrong <setting>]...
       [--print-world <file>]

Sets a printer up as its driver family's installer would for unattended
revisions into <folder>, or with each --wrong setting as an unattended run
cannot use it. Families and their settings:
)";
  for (const char* name : {"adobe-pdf", "distiller", "pdfwriter", "pdffactory1", "pdffactory2",
                           "pdffactory3", "pdffactory4"}) {
    text += "  ";
    text += name;
    text += ":";
    for (const auto& setting : DriverFamilySettings(*ParseDriverFamily(name)))
      text += " " + setting;
    text += "\n";
  }
  text += R"(On Windows and under Wine the settings go into the registry and files;
natively into the printer's section of the print world file (--print-world,
required there), which applies them when it is loaded.
)";
  return text;
}

// The request, or the reason it is none.
std::variant<SetupRequest, std::string> Parse(const std::vector<std::string>& args) {
  SetupRequest request;
  if (args.size() < 2) return std::string("setup needs a family");
  const auto family = ParseDriverFamily(args[1]);
  if (!family) return "unknown family '" + args[1] + "'";
  request.family = *family;
  for (size_t i = 2; i < args.size(); ++i) {
    if (i + 1 >= args.size()) return args[i] + " needs a value";
    const std::string& option = args[i];
    const std::string& value = args[++i];
    if (option == "--name") {
      request.printer = value;
    } else if (option == "--output") {
      request.output = value;
    } else if (option == "--wrong") {
      request.wrong.insert(value);
    } else if (option == "--print-world") {
      request.world = value;
    } else if (option == "--log") {
      // Taken as a revision takes it; a setup writes no trace.
    } else {
      return "unknown option '" + option + "'";
    }
  }
  if (request.printer.empty() || request.output.empty()) {
    return std::string("setup needs --name and --output");
  }
#ifndef _WIN32
  if (request.world.empty()) return std::string("natively setup needs --print-world <file>");
#endif
  const auto known = DriverFamilySettings(request.family);
  for (const auto& name : request.wrong) {
    bool found = false;
    for (const auto& setting : known) found = found || EqualNoCase(setting, name);
    if (!found) return DriverFamilyName(request.family) + " has no setting '" + name + "'";
  }
  return request;
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
  const auto parsed = Parse(args);
  if (const auto* problem = std::get_if<std::string>(&parsed)) {
    err << "vemra-revise: " << *problem << "\n\n" << SetupUsage(program);
    return kExitUsage;
  }
  const SetupRequest& request = std::get<SetupRequest>(parsed);
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
