#include "core/PrintWorld.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>

#include "core/Environment.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit {
namespace {

std::string Trim(const std::string& text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// Decimal or 0x-hexadecimal, nothing else.
std::optional<uint32_t> ParseNumber(const std::string& text) {
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  const std::string digits = hex ? text.substr(2) : text;
  if (digits.empty() || digits.size() > (hex ? 8u : 9u)) return std::nullopt;
  for (const char c : digits) {
    if (!(hex ? std::isxdigit(static_cast<unsigned char>(c)) : std::isdigit(c))) {
      return std::nullopt;
    }
  }
  const unsigned long value = std::stoul(digits, nullptr, hex ? 16 : 10);
  return static_cast<uint32_t>(value);
}

// Windows names (a drive or a share) and absolute names stay as they are.
std::string Resolve(const std::string& name, const std::filesystem::path& base) {
  const bool windows = (name.size() > 1 && name[1] == ':') || name.rfind("\\\\", 0) == 0;
  if (name.empty() || windows || std::filesystem::path(name).is_absolute()) return name;
  return PathToUtf8(base / name);
}

class Parser {
 public:
  Parser(PrintWorld& world, std::filesystem::path base) : world_(world), base_(std::move(base)) {}

  void Line(int number, const std::string& raw) {
    line_ = number;
    const std::string text = Trim(raw);
    if (text.empty() || text[0] == '#' || text[0] == ';') return;
    if (text.front() == '[') return NewSection(text);
    const auto equals = text.find('=');
    if (equals == std::string::npos) return Problem("'" + text + "' is no key = value");
    const std::string key = Trim(text.substr(0, equals));
    const std::string value = Trim(text.substr(equals + 1));
    switch (section_) {
      case Part::kNone:
        return Problem("key '" + key + "' before any section");
      case Part::kSkipped:
        return;
      case Part::kWorld:
        return WorldKey(key, value);
      case Part::kPrinter:
        return PrinterKey(world_.printers.back(), key, value);
      case Part::kDocument:
        return DocumentKey(world_.documents.back(), key, value);
    }
  }

 private:
  enum class Part { kNone, kSkipped, kWorld, kPrinter, kDocument };

  void Problem(const std::string& text) {
    world_.problems.push_back("print world line " + std::to_string(line_) + ": " + text);
  }

  void NewSection(const std::string& text) {
    section_ = Part::kSkipped;
    if (text.back() != ']') return Problem("section '" + text + "' lacks its ']'");
    const std::string inner = Trim(text.substr(1, text.size() - 2));
    const auto blank = inner.find(' ');
    const std::string kind = inner.substr(0, blank);
    const std::string name = blank == std::string::npos ? "" : Trim(inner.substr(blank));
    if (EqualNoCase(kind, "World") && name.empty()) {
      section_ = Part::kWorld;
    } else if (!EqualNoCase(kind, "Printer") && !EqualNoCase(kind, "Document")) {
      Problem("unknown section [" + inner + "], skipped");
    } else if (name.empty()) {
      Problem("[" + inner + "] needs a name, skipped");
    } else if (EqualNoCase(kind, "Printer")) {
      section_ = Part::kPrinter;
      world_.printers.emplace_back().name = name;
    } else if (world_.FindDocument(name) != nullptr) {
      Problem("document '" + name + "' is described twice, the second one skipped");
    } else {
      section_ = Part::kDocument;
      world_.documents.emplace_back().name = name;
    }
  }

  void Number(const std::string& key, const std::string& value, uint32_t& into) {
    if (const auto number = ParseNumber(value)) {
      into = *number;
    } else {
      Problem(key + " needs a number (decimal or 0x...), not '" + value + "'");
    }
  }

  void Unknown(const std::string& key) { Problem("unknown key '" + key + "', ignored"); }

  void WorldKey(const std::string& key, const std::string& value) {
    if (EqualNoCase(key, "UIPolicy")) {
      if (EqualNoCase(value, "silent") || EqualNoCase(value, "interactive")) {
        world_.silent = EqualNoCase(value, "silent");
      } else {
        Problem("UIPolicy is silent or interactive, not '" + value + "'");
      }
    } else if (EqualNoCase(key, "ShowRevisionMessages")) {
      world_.showRevisionMessages = value;
    } else if (EqualNoCase(key, "Vault")) {
      world_.vault = Resolve(value, base_);
    } else if (EqualNoCase(key, "User")) {
      world_.user = value;
    } else {
      Unknown(key);
    }
  }

  void PrinterKey(WorldPrinter& printer, const std::string& key, const std::string& value) {
    uint32_t busy = 0;
    if (EqualNoCase(key, "Status")) {
      Number(key, value, printer.status);
    } else if (EqualNoCase(key, "Jobs")) {
      Number(key, value, printer.jobs);
    } else if (EqualNoCase(key, "BusyReadings")) {
      Number(key, value, busy);
      printer.busyReadings = static_cast<int>(std::min<uint32_t>(busy, 100000));
    } else if (EqualNoCase(key, "Output")) {
      printer.outputFolder = Resolve(value, base_);
    } else if (EqualNoCase(key, "Delay")) {
      Number(key, value, printer.delayMs);
    } else if (EqualNoCase(key, "Growth")) {
      Number(key, value, printer.growthMs);
    } else if (EqualNoCase(key, "Family")) {
      const auto family = ParseDriverFamily(value);
      if (!family)
        return Problem("Family is adobe-pdf, distiller, pdfwriter or pdffactory1 to 4, not '" +
                       value + "'");
      printer.family = *family;
    } else if (EqualNoCase(key, "Wrong")) {
      std::istringstream names(value);
      for (std::string name; std::getline(names, name, ',');) {
        name = Trim(name);
        if (!name.empty()) printer.wrong.insert(name);
      }
    } else if (EqualNoCase(key, "Spooler")) {
      if (!EqualNoCase(value, "system") && !EqualNoCase(value, "virtual"))
        return Problem("Spooler is system or virtual, not '" + value + "'");
      printer.systemSpooler = EqualNoCase(value, "system");
    } else if (EqualNoCase(key, "Mode")) {
      static const std::pair<const char*, DriverMode> kModes[] = {{"pdf", DriverMode::kPdf},
                                                                  {"none", DriverMode::kNone},
                                                                  {"tmp", DriverMode::kTmp},
                                                                  {"fail", DriverMode::kFail}};
      const auto* found = std::find_if(std::begin(kModes), std::end(kModes), [&](const auto& mode) {
        return EqualNoCase(mode.first, value);
      });
      if (found == std::end(kModes))
        return Problem("Mode is pdf, none, tmp or fail, not '" + value + "'");
      printer.mode = found->second;
    } else {
      Unknown(key);
    }
  }

  void DocumentKey(WorldDocument& document, const std::string& key, const std::string& value) {
    constexpr std::string_view kSetting = "Setting.";
    uint32_t systemType = 0;
    if (EqualNoCase(key, "Type")) {
      document.typeName = value;
    } else if (EqualNoCase(key, "SystemType")) {
      Number(key, value, systemType);
      if (ParseNumber(value)) document.systemType = static_cast<int32_t>(systemType);
    } else if (EqualNoCase(key, "File")) {
      document.file = Resolve(value, base_);
    } else if (EqualNoCase(key, "Title")) {
      document.title = value;
    } else if (EqualNoCase(key, "Number")) {
      document.number = value;
    } else if (EqualNoCase(key, "DocumentName")) {
      document.documentName = value;
    } else if (key.size() > kSetting.size() &&
               EqualNoCase(key.substr(0, kSetting.size()), kSetting)) {
      document.settings[key.substr(kSetting.size())] = value;
    } else {
      Unknown(key);
    }
  }

  PrintWorld& world_;
  std::filesystem::path base_;
  Part section_ = Part::kNone;
  int line_ = 0;
};

}  // namespace

const WorldDocument* PrintWorld::FindDocument(const std::string& name) const {
  const auto found = std::find_if(documents.begin(), documents.end(), [&](const WorldDocument& d) {
    return EqualNoCase(d.name, name);
  });
  return found == documents.end() ? nullptr : &*found;
}

PrintWorld ParsePrintWorld(const std::string& text, const std::filesystem::path& base) {
  PrintWorld world;
  Parser parser(world, base);
  std::istringstream lines(text);
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) parser.Line(number, line);
  for (const auto& printer : world.printers) {
    if (printer.outputFolder.empty() && !printer.systemSpooler &&
        printer.mode != DriverMode::kFail && printer.mode != DriverMode::kNone) {
      world.problems.push_back("print world: printer '" + printer.name +
                               "' has no Output folder, its driver writes nothing");
    }
  }
  return world;
}

PrintWorld LoadPrintWorld(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    PrintWorld world;
    world.problems.push_back("print world '" + PathToUtf8(file) + "' cannot be read");
    return world;
  }
  std::ostringstream text;
  text << in.rdbuf();
  return ParsePrintWorld(text.str(), std::filesystem::absolute(file).parent_path());
}

}  // namespace kestrivon::hostkit
