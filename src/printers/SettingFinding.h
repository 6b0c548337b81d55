#pragma once

#include <string>

namespace kestrivon {

// One driver setting that keeps a revision from running unattended: where
// it lives, what it holds and what it must hold. Made by the same tables
// the printers' settings checks use, for tools that name the fix.
struct SettingFinding {
  std::string key;    // registry key with its hive, or INI file and section
  std::string name;   // the value's or INI key's name
  std::string found;  // "(missing)" when there is none
  std::string needed;
};

inline constexpr const char* kMissingSetting = "(missing)";

}  // namespace kestrivon
