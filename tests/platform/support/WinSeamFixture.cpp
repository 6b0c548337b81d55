#include <windows.h>
#include <winspool.h>

#include "SeamFixture.h"

namespace kestrivon::test {
namespace {

// Wine's PostScript driver, which a new prefix has not installed yet.
void InstallDriver() {
  DRIVER_INFO_3A driver = {};
  driver.cVersion = 3;
  driver.pName = const_cast<char*>("Wine PostScript Driver");
  driver.pDriverPath = const_cast<char*>("wineps.drv");
  driver.pDataFile = const_cast<char*>("generic.ppd");
  driver.pConfigFile = const_cast<char*>("wineps.drv");
  AddPrinterDriverA(nullptr, 3, reinterpret_cast<BYTE*>(&driver));
}

HANDLE OpenForAdministration(const std::string& name) {
  PRINTER_DEFAULTSA defaults = {nullptr, nullptr, PRINTER_ALL_ACCESS};
  HANDLE printer = nullptr;
  return OpenPrinterA(const_cast<char*>(name.c_str()), &printer, &defaults) ? printer : nullptr;
}

std::string ProgramId(const std::string& extension) {
  return "Kestrivon" + extension.substr(1) + "File";
}

void SetDefaultValue(const std::string& key, const std::string& value) {
  HKEY opened = nullptr;
  if (RegCreateKeyExA(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                      &opened, nullptr) == ERROR_SUCCESS) {
    RegSetValueExA(opened, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                   static_cast<DWORD>(value.size() + 1));
    RegCloseKey(opened);
  }
}

}  // namespace

TestPrinter::TestPrinter(std::string name, uint32_t jobs) : name_(std::move(name)) {
  InstallDriver();
  PRINTER_INFO_2A info = {};
  info.pPrinterName = name_.data();
  info.pPortName = const_cast<char*>("FILE:");
  info.pDriverName = const_cast<char*>("Wine PostScript Driver");
  info.pPrintProcessor = const_cast<char*>("WinPrint");
  info.pDatatype = const_cast<char*>("RAW");
  if (HANDLE added = AddPrinterA(nullptr, 2, reinterpret_cast<BYTE*>(&info))) ClosePrinter(added);
  HANDLE printer = OpenForAdministration(name_);
  installed_ = printer != nullptr;
  if (printer == nullptr) return;
  if (jobs > 0 && SetPrinterA(printer, 0, nullptr, PRINTER_CONTROL_PAUSE)) {
    DOC_INFO_1A document = {const_cast<char*>("Kestrivon test job"), nullptr,
                            const_cast<char*>("RAW")};
    for (; queued_ < jobs && StartDocPrinterA(printer, 1, reinterpret_cast<BYTE*>(&document));
         ++queued_) {
      EndDocPrinter(printer);
    }
  }
  ClosePrinter(printer);
}

TestPrinter::~TestPrinter() {
  if (HANDLE printer = OpenForAdministration(name_)) {
    SetPrinterA(printer, 0, nullptr, PRINTER_CONTROL_PURGE);
    DeletePrinter(printer);
    ClosePrinter(printer);
  }
}

TestFileType::TestFileType(std::string extension, const std::string& program)
    : extension_(std::move(extension)) {
  SetDefaultValue(extension_, ProgramId(extension_));
  SetDefaultValue(ProgramId(extension_) + "\\shell\\open\\command", "\"" + program + "\" \"%1\"");
}

TestFileType::~TestFileType() {
  RegDeleteTreeA(HKEY_CLASSES_ROOT, ProgramId(extension_).c_str());
  RegDeleteKeyA(HKEY_CLASSES_ROOT, ProgramId(extension_).c_str());
  RegDeleteKeyA(HKEY_CLASSES_ROOT, extension_.c_str());
}

}  // namespace kestrivon::test
