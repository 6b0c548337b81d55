#include "revise/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <numeric>

#include "KestrivonVersion.h"
#include "printers/PrinterCatalogue.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit::revise {
namespace {

constexpr int kExitSuccess = 0;
constexpr int kExitUsage = 2;

// Edits (insertions, deletions, substitutions) from one name to the other,
// without regard to case.
size_t Distance(std::string_view a, std::string_view b) {
  const std::string x = LowerAscii(std::string(a));
  const std::string y = LowerAscii(std::string(b));
  std::vector<size_t> row(y.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 1; i <= x.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i;
    for (size_t j = 1; j <= y.size(); ++j) {
      const size_t above = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (x[i - 1] == y[j - 1] ? 0 : 1)});
      diagonal = above;
    }
  }
  return row[y.size()];
}

}  // namespace

std::string VersionText() { return std::string("vemra-revise ") + KESTRIVON_VERSION_TEXT; }

void Prepare(CLI::App& app, std::string_view command) {
  app.name(std::string(command));
  // An option given twice takes its last value, as scripts that append
  // their own options to a default line expect.
  app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.set_help_flag("-h,--help", "this text");
  app.set_version_flag("--version", VersionText(), "the version of vemra-revise and the DLLs");
}

std::optional<int> Parse(CLI::App& app, const std::vector<std::string>& args, std::ostream& out,
                         std::ostream& err) {
  // Windows' own way of asking for help.
  if (std::find(args.begin(), args.end(), "/?") != args.end()) {
    out << app.help();
    return kExitSuccess;
  }
  // CLI11 takes the arguments last first.
  std::vector<std::string> reversed(args.rbegin(), args.rend());
  try {
    app.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    out << app.help();
    return kExitSuccess;
  } catch (const CLI::CallForVersion& version) {
    out << version.what() << '\n';
    return kExitSuccess;
  } catch (const CLI::ParseError& error) {
    err << app.get_name() << ": " << error.what() << "\n\n" << app.help();
    return kExitUsage;
  }
  return std::nullopt;
}

std::string UnknownClassText(std::string_view name) {
  std::string bare(name);
  const std::string library = std::string(kLibraryName) + ".";
  if (bare.size() > library.size() && EqualNoCase(bare.substr(0, library.size()), library)) {
    bare.erase(0, library.size());
  }
  std::string text = "'" + std::string(name) + "' is no revision printer class; the classes are";
  std::string_view closest;
  size_t best = bare.size();
  for (const PrinterClass& c : PrinterClasses()) {
    text += (&c == PrinterClasses().data() ? " " : ", ") + std::string(c.name);
    const size_t distance = Distance(bare, c.name);
    // Near: at most a third of the name wrong.
    if (distance < best && distance * 3 <= c.name.size()) {
      best = distance;
      closest = c.name;
    }
  }
  if (!closest.empty()) text += "; did you mean " + std::string(closest) + "?";
  return text;
}

}  // namespace kestrivon::hostkit::revise
