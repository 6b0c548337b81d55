#pragma once

#include <string>

#include "services/StringDictionary.h"

namespace kestrivon {

// One value of an INI file, or the default; cut to 1023 characters.
std::string ReadIniString(const std::string& iniFile, const std::string& section,
                          const std::string& key, const std::string& defaultValue);

// Replaces the dictionary's entries by the section's Key=Value lines, taken
// as they stand (no trimming, no comments, a value cut at its first "=").
// False for a missing dictionary, a missing or empty section and a section
// that does not fit 32767 characters; a duplicate key is reported and
// leaves the entries added before it.
bool FillDictionaryFromIniFileSection(StringDictionary* dictionary, const std::string& iniFile,
                                      const std::string& section);

// A new temporary file name "R2P<hex>" in the temporary folder, with the
// extension (without its dot) instead of ".tmp" unless it is empty. The
// file itself does not exist.
std::string TempFileName(const std::string& extension);

// The temporary folder without its trailing backslash.
std::string TempFolder();

// The logged-on user's name, empty when it cannot be had.
std::string WinUserName();

// Makes sure the folder of the path exists, creating each missing level.
// A last "." after the last "\" marks a file name, whose folder is meant.
bool CheckCreateOutputFolder(const std::string& path);

}  // namespace kestrivon
