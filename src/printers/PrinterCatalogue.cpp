#include "printers/PrinterCatalogue.h"

#include "runtime/Text.h"

namespace kestrivon {

const PrinterClass* FindPrinterClass(std::string_view progIdOrName) {
  std::string_view name = progIdOrName;
  if (name.size() > kLibraryName.size() && name[kLibraryName.size()] == '.' &&
      EqualNoCase(name.substr(0, kLibraryName.size()), kLibraryName)) {
    name.remove_prefix(kLibraryName.size() + 1);
  }
  for (const auto& c : kPrinterClasses) {
    if (EqualNoCase(c.name, name)) return &c;
  }
  return nullptr;
}

}  // namespace kestrivon
