#pragma once

#include <string>
#include <utility>
#include <vector>

#include "WineComTest.h"

// What the tests of the COM server know, written down from the host contract
// on its own, so that a slip in the component's tables shows up here.
namespace kestrivon::wine_test {

// VemraKestrivon.dll as given on the command line (--dll=<path>).
const std::wstring& ComponentDll();

struct ContractClass {
  const wchar_t* name;
  const wchar_t* progId;
  const wchar_t* clsid;
  const wchar_t* defaultIid;
  const wchar_t* defaultInterface;
  const wchar_t* secondIid;  // nullptr when the class has none
  const wchar_t* extension;
};

const std::vector<ContractClass>& ContractClasses();

inline constexpr const wchar_t* kLibId = L"{7AF80810-77BA-11D6-B6B7-0050DA1A43CE}";
inline constexpr const wchar_t* kLibDescription = L"Vemra Default Revision Printers";
inline constexpr const wchar_t* kSecondInterface = L"_VemraHARPSettings";
inline constexpr const wchar_t* kRevisionPrinterIid = L"{2EE91196-77A1-11D6-B6B7-0050DA1A43CE}";
inline constexpr const wchar_t* kVBInterfaceLibId = L"{6CEF39EE-E2B3-44D9-8B04-F1069A62DD9E}";

}  // namespace kestrivon::wine_test
