#include "core/DriverFamilies.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

#include <algorithm>
#include <array>
#include <climits>

#include "core/HostFiles.h"
#include "platform/FileSystem.h"
#include "platform/ProfileFiles.h"
#include "platform/Registry.h"
#include "platform/Shell.h"
#include "runtime/RunTimeError.h"
#include "runtime/Text.h"
#ifdef _WIN32
#include "platform/win/Owners.h"
#include "platform/win/Text.h"
#else
#include "platform/portable/Registry.h"
#endif

namespace kestrivon::hostkit {
namespace {

constexpr const char* kPrintersKey =
    "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers\\";
constexpr const char* kDistiller5Key = "SOFTWARE\\Adobe\\Acrobat Distiller\\5.0";
constexpr const char* kJobControlKey = "Software\\Adobe\\Acrobat Distiller\\PrinterJobControl";
constexpr const char* kFactoryKey = "Software\\FinePrint Software\\pdfFactory";
constexpr const char* kWriterIni = "\\Spool\\Drivers\\W32X86\\2\\__pdf.ini";
constexpr const char* kWriterSection = "Acrobat PDFWriter";

struct FamilyName {
  DriverFamily family;
  const char* name;
};
constexpr std::array<FamilyName, 7> kFamilies{{{DriverFamily::kAdobePdf, "adobe-pdf"},
                                               {DriverFamily::kDistiller, "distiller"},
                                               {DriverFamily::kPdfWriter, "pdfwriter"},
                                               {DriverFamily::kPdfFactory1, "pdffactory1"},
                                               {DriverFamily::kPdfFactory2, "pdffactory2"},
                                               {DriverFamily::kPdfFactory3, "pdffactory3"},
                                               {DriverFamily::kPdfFactory4, "pdffactory4"}}};

bool IsAdobe(DriverFamily family) {
  return family == DriverFamily::kAdobePdf || family == DriverFamily::kDistiller;
}

// 1 for pdfFactory 1.x, ...; 0 for the other families.
int FactoryVersion(DriverFamily family) {
  const int version = static_cast<int>(family) - static_cast<int>(DriverFamily::kPdfFactory1) + 1;
  return version >= 1 && version <= 4 ? version : 0;
}

std::string FactoryKey(int version) {
  return kFactoryKey + (version > 1 ? std::to_string(version) : std::string());
}

std::string FactorySettingsKey(int version, const std::string& printer) {
  return FactoryKey(version) + "\\FinePrinters\\" + printer + "\\PrinterDriverData";
}

std::string WriterIni() {
  const auto system =
      platform::ShellFolderPath(platform::kCsidlSystem | platform::kCsidlFlagCreate, 0);
  return system ? *system + kWriterIni : std::string();
}

std::string InFolder(const std::string& folder, const std::string& name) {
  return folder + (folder.empty() || folder.back() == '\\' ? "" : "\\") + name;
}

// Creates the folder and its parents (Windows form).
void CreateFolders(const std::string& folder) {
  const auto create = [](const std::string& path) {
    if (!platform::FolderExists(path)) platform::CreateFolder(path);
  };
  for (size_t at = folder.find('\\', 3); at != std::string::npos; at = folder.find('\\', at + 1)) {
    create(folder.substr(0, at));
  }
  create(folder);
}

// A value as the drivers read it: text, or a DWORD as its number.
std::optional<std::string> ReadValue(bool machine, const std::string& key,
                                     const std::string& name) {
  platform::OwnedKey opened;
  const platform::HKey hive = machine ? platform::kHKeyLocalMachine : platform::kHKeyCurrentUser;
  if (platform::RegOpenKeyExA(hive, key, 0, platform::kKeyQueryValue, opened.Put()) !=
      platform::kErrorSuccess) {
    return std::nullopt;
  }
  uint32_t type = 0;
  uint32_t size = 0;
  if (platform::RegQueryValueExA(opened.Get(), name, &type, nullptr, &size) !=
      platform::kErrorSuccess) {
    return std::nullopt;
  }
  std::string bytes(size, '\0');
  if (platform::RegQueryValueExA(opened.Get(), name, &type, bytes.data(), &size) !=
      platform::kErrorSuccess) {
    return std::nullopt;
  }
  if (type == platform::kRegDword && size == 4) {
    uint32_t value = 0;
    for (int i = 3; i >= 0; --i) value = (value << 8) | static_cast<uint8_t>(bytes[i]);
    return std::to_string(value);
  }
  return bytes.substr(0, bytes.find('\0'));
}

bool Is(const std::set<std::string>& wrong, const char* setting) {
  return std::any_of(wrong.begin(), wrong.end(),
                     [&](const std::string& name) { return EqualNoCase(name, setting); });
}

#ifdef _WIN32

// The system's registry; a machine's software key goes into both views, as
// a 32-bit and a 64-bit reader may look for it.
class SystemStore final : public DriverSettingsStore {
 public:
  void SetString(bool machine, const std::string& key, const std::string& name,
                 const std::string& text) override {
    const std::wstring wide = platform::win::ToWide(text);
    Set(machine, key, name, REG_SZ, wide.c_str(),
        static_cast<DWORD>((wide.size() + 1) * sizeof(wchar_t)));
  }
  void SetDword(bool machine, const std::string& key, const std::string& name,
                uint32_t value) override {
    const DWORD data = value;
    Set(machine, key, name, REG_DWORD, &data, sizeof data);
  }
  void SetByte(bool machine, const std::string& key, const std::string& name,
               uint8_t value) override {
    Set(machine, key, name, REG_BINARY, &value, 1);
  }
  void CreateKey(bool machine, const std::string& key) override {
    Set(machine, key, {}, REG_NONE, nullptr, 0);
  }

 private:
  static void Set(bool machine, const std::string& key, const std::optional<std::string>& name,
                  DWORD type, const void* data, DWORD size) {
    for (const REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY}) {
      platform::win::OwnedRegKey opened;
      LONG result = ::RegCreateKeyExW(machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER,
                                      platform::win::ToWide(key).c_str(), 0, nullptr, 0,
                                      KEY_SET_VALUE | view, nullptr, opened.Put(), nullptr);
      if (result == ERROR_SUCCESS && name) {
        result = ::RegSetValueExW(opened.Get(), platform::win::ToWide(*name).c_str(), 0, type,
                                  static_cast<const BYTE*>(data), size);
      }
      opened.Reset();
      if (result != ERROR_SUCCESS) {
        throw RunTimeError(static_cast<int32_t>(0x80070000u | static_cast<uint32_t>(result)),
                           "cannot write " + key + (name ? "\\" + *name : std::string()));
      }
      if (!machine) return;  // the user's keys are shared by both views
    }
  }
};

#else

// The portable registry, in both views for the machine's keys.
class SystemStore final : public DriverSettingsStore {
 public:
  void SetString(bool machine, const std::string& key, const std::string& name,
                 const std::string& text) override {
    for (const auto view : Views(machine)) {
      platform::portable::SetRegistryString(view, Hive(machine), key, name, text);
    }
  }
  void SetDword(bool machine, const std::string& key, const std::string& name,
                uint32_t value) override {
    for (const auto view : Views(machine)) {
      platform::portable::SetRegistryDword(view, Hive(machine), key, name, value);
    }
  }
  void SetByte(bool machine, const std::string& key, const std::string& name,
               uint8_t value) override {
    for (const auto view : Views(machine)) {
      platform::portable::SetRegistryValue(view, Hive(machine), key, name, platform::kRegBinary,
                                           std::string(1, static_cast<char>(value)));
    }
  }
  void CreateKey(bool machine, const std::string& key) override {
    for (const auto view : Views(machine)) {
      platform::portable::CreateRegistryKey(view, Hive(machine), key);
    }
  }

 private:
  using View = platform::portable::RegistryView;
  static std::vector<View> Views(bool machine) {
    return machine ? std::vector<View>{View::k32, View::k64} : std::vector<View>{View::k32};
  }
  static platform::HKey Hive(bool machine) {
    return machine ? platform::kHKeyLocalMachine : platform::kHKeyCurrentUser;
  }
};

#endif

}  // namespace

DriverSettingsStore& SystemDriverSettings() {
  static SystemStore store;
  return store;
}

#ifdef _WIN32
bool AddSpoolerPrinter(const std::string& printer) {
  // The spooler's own list, which OpenPrinter looks in.
  const std::string key = "SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\" + printer;
  platform::win::OwnedRegKey opened;
  if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, platform::win::ToWide(key).c_str(), 0, KEY_READ,
                      opened.Put()) == ERROR_SUCCESS) {
    return false;
  }
  DriverSettingsStore& store = SystemDriverSettings();
  for (const auto& [name, value] : {std::pair<const char*, std::string>{"Name", printer},
                                    {"Port", "FILE:"},
                                    {"Print Processor", "WinPrint"},
                                    {"Datatype", "RAW"},
                                    {"Printer Driver", printer}}) {
    store.SetString(true, key, name, value);
  }
  return true;
}
#endif

std::string ProgramFileName() {
#ifdef _WIN32
  wchar_t name[MAX_PATH + 1] = {};
  ::GetModuleFileNameW(nullptr, name, MAX_PATH);
  return platform::win::FromWide(name);
#else
  char name[PATH_MAX + 1] = {};
  const ssize_t size = ::readlink("/proc/self/exe", name, PATH_MAX);
  return WindowsFileName(size > 0 ? std::string(name, static_cast<size_t>(size)) : std::string());
#endif
}

std::optional<DriverFamily> ParseDriverFamily(const std::string& text) {
  for (const auto& f : kFamilies) {
    if (EqualNoCase(text, f.name)) return f.family;
  }
  return std::nullopt;
}

std::string DriverFamilyName(DriverFamily family) {
  for (const auto& f : kFamilies) {
    if (f.family == family) return f.name;
  }
  return "none";
}

std::vector<std::string> DriverFamilySettings(DriverFamily family) {
  if (IsAdobe(family)) {
    std::vector<std::string> names{"ViewPrintOutput", "PromptForFileName", "AskToReplacePDF",
                                   "Port", "printKeepPrintedJobs"};
    if (family == DriverFamily::kDistiller) names.push_back("Distiller5");
    return names;
  }
  if (family == DriverFamily::kPdfWriter) return {"PDFFileName"};
  if (FactoryVersion(family) != 0) return {"ShowDlg", "PdfAction", "OutputFile"};
  return {};
}

std::vector<std::string> SetUpDriver(DriverSettingsStore& store, DriverFamily family,
                                     const std::string& printer, const std::string& outputFolder,
                                     const std::set<std::string>& wrong) {
  const auto known = DriverFamilySettings(family);
  std::vector<std::string> unknown;
  for (const auto& name : wrong) {
    if (std::none_of(known.begin(), known.end(),
                     [&](const std::string& k) { return EqualNoCase(k, name); })) {
      unknown.push_back(name);
    }
  }
  CreateFolders(outputFolder);
  if (IsAdobe(family)) {
    const std::string key = kPrintersKey + printer;
    const std::string data = key + "\\PrinterDriverData";
    for (const char* flag : {"ViewPrintOutput", "PromptForFileName", "AskToReplacePDF"}) {
      store.SetDword(true, data, flag, Is(wrong, flag) ? 1 : 0);
    }
    // A wrong port names a folder that is not there.
    const std::string folder = Is(wrong, "Port") ? InFolder(outputFolder, "missing") : outputFolder;
    store.SetString(true, data, "Port", InFolder(folder, "*.pdf"));
    store.SetByte(true, key + "\\DsSpooler", "printKeepPrintedJobs",
                  Is(wrong, "printKeepPrintedJobs") ? 1 : 0);
    if (family == DriverFamily::kDistiller && !Is(wrong, "Distiller5")) {
      store.CreateKey(true, kDistiller5Key);
    }
  } else if (family == DriverFamily::kPdfWriter) {
    const std::string ini = WriterIni();
    CreateFolders(ini.substr(0, ini.rfind('\\')));
    platform::WritePrivateProfileStringA(
        kWriterSection, "PDFFileName",
        Is(wrong, "PDFFileName") ? "" : InFolder(outputFolder, printer + ".pdf"), ini);
  } else if (const int version = FactoryVersion(family); version != 0) {
    store.CreateKey(false, FactoryKey(version));
    const std::string settings = FactorySettingsKey(version, printer);
    const uint32_t showDialog = version == 1 ? 4 : 2;
    const uint32_t action = version == 1 ? 1 : 0;
    store.SetDword(false, settings, "ShowDlg", Is(wrong, "ShowDlg") ? showDialog + 1 : showDialog);
    store.SetDword(false, settings, "PdfAction", Is(wrong, "PdfAction") ? action + 1 : action);
    store.SetString(false, FactoryKey(version), "OutputFile",
                    Is(wrong, "OutputFile") ? "" : InFolder(outputFolder, printer + ".pdf"));
  }
  return unknown;
}

DriverTarget FindDriverTarget(DriverFamily family, const std::string& printer,
                              const std::string& documentName, const std::string& program) {
  DriverTarget target;
  if (IsAdobe(family)) {
    const std::string data = kPrintersKey + printer + "\\PrinterDriverData";
    if (ReadValue(true, data, "PromptForFileName").value_or("1") != "0") {
      target.refusal = "PromptForFileName: it would ask for the file name";
      return target;
    }
    if (const auto named = ReadValue(false, kJobControlKey, program); named && !named->empty()) {
      target.file = *named;
    } else {
      const std::string port = ReadValue(true, data, "Port").value_or("");
      const std::string folder = port.size() > 5 ? port.substr(0, port.size() - 5) : std::string();
      if (folder.empty() || !platform::FolderExists(folder)) {
        target.refusal = "Port: no folder '" + folder + "'";
        return target;
      }
      target.file = InFolder(folder, documentName + ".pdf");
    }
    if (ReadValue(true, data, "AskToReplacePDF").value_or("1") != "0" &&
        platform::FileExists(target.file)) {
      target.refusal = "AskToReplacePDF: it would ask before replacing " + target.file;
      target.file.clear();
    }
  } else if (family == DriverFamily::kPdfWriter) {
    char name[1024] = {};
    platform::GetPrivateProfileStringA(kWriterSection, "PDFFileName", "", name, sizeof name,
                                       WriterIni());
    target.file = name;
    if (target.file.empty()) target.refusal = "PDFFileName: no file named in " + WriterIni();
  } else if (const int version = FactoryVersion(family); version != 0) {
    const std::string settings = FactorySettingsKey(version, printer);
    const bool dialog = ReadValue(false, settings, "ShowDlg") != (version == 1 ? "4" : "2");
    const bool action = ReadValue(false, settings, "PdfAction") != (version == 1 ? "1" : "0");
    target.file = ReadValue(false, FactoryKey(version), "OutputFile").value_or("");
    if (dialog) target.refusal = "ShowDlg: it would show its dialog";
    if (!dialog && action) target.refusal = "PdfAction: it would not save into the file";
    if (target.refusal.empty() && target.file.empty()) target.refusal = "OutputFile: no file named";
    if (!target.refusal.empty()) target.file.clear();
  }
  return target;
}

}  // namespace kestrivon::hostkit
