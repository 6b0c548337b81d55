#include "services/RegistrySettings.h"

#include "frame/ModuleState.h"
#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "platform/AnsiText.h"
#include "platform/ProfileFiles.h"
#include "platform/Registry.h"

namespace kestrivon {
namespace {

constexpr uint32_t kRead = 0x19;
constexpr uint32_t kRead64 = 0x119;
constexpr uint32_t kWrite = 0x3F;
constexpr const char* kSleeperKey = "Software\\HALDRIM\\VEMRA";
constexpr const char* kSleeperValue = "RevisionSleeper";

int32_t& SleeperCache() { return Module().revisionSleeper; }

// Where the cached value came from, for tools that explain it.
std::string& SleeperOrigin() { return Module().revisionSleeperOrigin; }

platform::HKey Hive(int32_t hive) { return platform::HiveHandle(hive); }

bool Open(int32_t hive, const std::string& keyPath, uint32_t access, platform::OwnedKey& key) {
  return platform::RegOpenKeyExA(Hive(hive), keyPath, 0, access, key.Put()) ==
         platform::kErrorSuccess;
}

}  // namespace

bool ExistKey(int32_t hive, const std::string& keyPath) try {
  platform::OwnedKey key;
  if (!Open(hive, keyPath, kRead, key)) {
    WriteTrace(std::string("VemraKestrivon::Globals") + ".ExistKey: '" + keyPath +
               "' not found trying other registry branch...");
    if (!Open(hive, keyPath, kRead64, key)) return false;
  }
  return true;
} catch (...) {
  return Procedure(kGlobalsLabel, "ExistKey").Report(false);
}

bool GetValue(int32_t hive, const std::string& keyPath, const std::string& valueName,
              Variant& value) {
  // Errors are read and dropped: the answer is what result held by then.
  bool result = false;
  platform::OwnedKey key;
  IgnoreErrors([&] {
    if (Open(hive, keyPath, kRead, key)) {
      uint32_t type = 0;
      uint32_t size = 0;
      if (platform::RegQueryValueExA(key.Get(), valueName, &type, nullptr, &size) ==
          platform::kErrorSuccess) {
        switch (type) {
          case platform::kRegSz: {
            // One more than asked for: the caller gets the NUL and the spare blank.
            std::string buffer(size + 1, ' ');
            if (platform::RegQueryValueExA(key.Get(), valueName, nullptr, buffer.data(), &size) ==
                platform::kErrorSuccess) {
              value = platform::FromAnsiCodePage(buffer);
              result = true;
            }
            break;
          }
          case platform::kRegBinary: {
            int32_t number = 0;
            uint32_t one = 1;
            if (platform::RegQueryValueExA(key.Get(), valueName, nullptr, &number, &one) ==
                platform::kErrorSuccess) {
              value = number;
            }
            result = true;
            break;
          }
          case platform::kRegDword: {
            int32_t number = 0;
            uint32_t four = 4;
            if (platform::RegQueryValueExA(key.Get(), valueName, nullptr, &number, &four) ==
                platform::kErrorSuccess) {
              value = number;
              result = true;
            }
            break;
          }
          default:
            result = true;
            break;
        }
      }
    }
  });
  return result;
}

bool SetValue(int32_t hive, const std::string& keyPath, const std::string& valueName,
              const Variant& value) try {
  platform::OwnedKey key;
  if (!Open(hive, keyPath, kWrite, key)) return false;
  int32_t status = platform::kErrorSuccess;
  if (std::holds_alternative<int16_t>(value) || std::holds_alternative<int32_t>(value)) {
    const int32_t number = std::holds_alternative<int16_t>(value) ? std::get<int16_t>(value)
                                                                  : std::get<int32_t>(value);
    status = platform::RegSetValueExA(key.Get(), valueName, platform::kRegDword, &number, 4);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    const std::string ansi = platform::ToAnsiCodePage(*text);
    status = platform::RegSetValueExA(key.Get(), valueName, platform::kRegSz, ansi.c_str(),
                                      static_cast<uint32_t>(ansi.size() + 1));
  }
  key.Reset();
  return status == platform::kErrorSuccess;
} catch (...) {
  return Procedure(kGlobalsLabel, "SetValue").Report(false);
}

int32_t GetRevisionSleeper() try {
  int32_t& cache = SleeperCache();
  if (cache < 1) {
    Variant sleeper;
    std::string& origin = SleeperOrigin();
    const std::string value = std::string(kSleeperKey) + "\\" + kSleeperValue;
    GetValue(kHKeyLocalMachine, kSleeperKey, kSleeperValue, sleeper);
    if (VariantLength(sleeper) == 0) {
      origin = "HKEY_CURRENT_USER\\" + value;
      if (!GetValue(kHKeyCurrentUser, kSleeperKey, kSleeperValue, sleeper)) {
        sleeper = int16_t{2};
        origin = "default (no " + value + " in either hive)";
      }
    } else {
      origin = "HKEY_LOCAL_MACHINE\\" + value;
      sleeper = TrimNull(VariantToString(sleeper));
    }
    if (!IsNumeric(sleeper)) {
      origin = "default (" + origin + " is not a number)";
      WriteTrace(std::string("VemraKestrivon::Globals") + "::GetRevisionSleeper(): " +
                 "RevisionSleeper is invalid -> using default value (" + "2" + ")...");
      sleeper = int16_t{2};
    }
    // Meant for the NUL and spare blank of a string, but cuts any value.
    const std::string text = VariantToString(sleeper);
    if (text.size() > 2) sleeper = text.substr(0, text.size() - 2);
    const double seconds = VariantToDouble(sleeper);
    // As written, this test holds for every number.
    if (!(seconds > 2 || seconds <= 60)) sleeper = int16_t{2};
    cache = VariantToLong(VariantToDouble(sleeper) * 1000.0);
  }
  WriteTrace(std::string("VemraKestrivon::Globals") +
             "::GetRevisionSleeper(): " + "Current RevisionSleeper: " + std::to_string(cache));
  return cache;
} catch (...) {
  return Procedure(kGlobalsLabel, "Public Function GetRevisionSleeper()").Report(0);
}

void SetIniSetting(const std::string& iniFile, const std::string& section, const std::string& key,
                   const std::string& value) try {
  platform::WritePrivateProfileStringA(section, key, value, iniFile);
} catch (...) {
  Procedure(kGlobalsLabel, "SetIniSetting").Report();
}

std::string TrimNull(const std::string& text) {
  const size_t nul = text.find('\0');
  return nul == std::string::npos ? std::string() : text.substr(0, nul);
}

std::string RevisionSleeperOrigin() { return SleeperOrigin(); }

}  // namespace kestrivon
