#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace kestrivon::hostkit::revise {

// vemra-revise's command lines, each parsed by CLI11: the revision itself,
// setup, doctor and locks. Every one answers --help (and -h, /?) with its
// own text and --version with the product's version.

// "vemra-revise <version>", the one version number of the build.
std::string VersionText();

// An app named for its command, with --help and --version.
void Prepare(CLI::App& app, std::string_view command);

// Parses the arguments (after the command's own word). Answers the exit
// status when the parse ends the run: 0 when help or the version was
// shown, 2 for bad arguments (with what was wrong and the command's help on
// err); nothing when the command goes on.
std::optional<int> Parse(CLI::App& app, const std::vector<std::string>& args, std::ostream& out,
                         std::ostream& err);

// What a name that is no revision printer class is told: the seven classes
// and, when one is near, that one. Case does not count.
std::string UnknownClassText(std::string_view name);

}  // namespace kestrivon::hostkit::revise
