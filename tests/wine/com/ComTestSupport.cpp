#include "ComTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kestrivon::wine_test {
namespace {
std::wstring componentDll;
}  // namespace

const std::wstring& ComponentDll() { return componentDll; }

const std::vector<ContractClass>& ContractClasses() {
  static const std::vector<ContractClass> classes{
      {L"VemraTiff", L"VemraKestrivon.VemraTiff", L"{7AF80812-77BA-11D6-B6B7-0050DA1A43CE}",
       L"{2F7803DE-7A1C-11D6-B6BB-0050DA1A43CE}", L"_VemraTiff", nullptr, L".TIF"},
      {L"AcrobatDistiller", L"VemraKestrivon.AcrobatDistiller",
       L"{7AF80814-77BA-11D6-B6B7-0050DA1A43CE}", L"{2F7803DF-7A1C-11D6-B6BB-0050DA1A43CE}",
       L"_AcrobatDistiller", nullptr, L".PDF"},
      {L"AcrobatWriter", L"VemraKestrivon.AcrobatWriter", L"{7AF80816-77BA-11D6-B6B7-0050DA1A43CE}",
       L"{2F7803E0-7A1C-11D6-B6BB-0050DA1A43CE}", L"_AcrobatWriter", nullptr, L".PDF"},
      {L"PDFFactory", L"VemraKestrivon.PDFFactory", L"{7AF80818-77BA-11D6-B6B7-0050DA1A43CE}",
       L"{2F7803E1-7A1C-11D6-B6BB-0050DA1A43CE}", L"_PDFFactory", nullptr, L".PDF"},
      {L"NoFile", L"VemraKestrivon.NoFile", L"{EE6D0AEE-6E7F-49CA-A5D1-D3C01FA9FFD8}",
       L"{339A7263-4B09-43D6-9B71-692394913884}", L"_NoFile", nullptr, L"NoFile"},
      {L"AdobePDF", L"VemraKestrivon.AdobePDF", L"{9FCF7C44-2107-4BF1-87FF-7E98E6C91B36}",
       L"{8A345BE3-289D-4ACF-A551-62000F92DA13}", L"_AdobePDF", nullptr, L".PDF"},
      {L"VemraHARP", L"VemraKestrivon.VemraHARP", L"{1A76DBE8-31D4-41D5-9CFC-52B6C349F3A7}",
       L"{9E4A211D-4158-4EAB-A80E-F64ECACDC623}", L"_VemraHARP",
       // Without a workset there is no HARP.ini: the extension setting is
       // empty and answers as a bare dot.
       L"{0F318467-4A71-4559-BB5B-1430D408735E}", L"."},
  };
  return classes;
}

}  // namespace kestrivon::wine_test

// Each test program runs in a single-threaded apartment, as the host does.
// --dll=<path> names the component; a Unix path is made a Wine path.
int wmain(int argc, wchar_t** argv) {
  testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i < argc; ++i) {
    const std::wstring arg = argv[i];
    if (arg.rfind(L"--dll=", 0) == 0) {
      std::wstring path = arg.substr(6);
      if (!path.empty() && path[0] == L'/') path = L"Z:" + path;
      std::replace(path.begin(), path.end(), L'/', L'\\');
      kestrivon::wine_test::componentDll = path;
    }
  }
  if (kestrivon::wine_test::componentDll.empty()) {
    fprintf(stderr, "usage: %ls --dll=<VemraKestrivon.dll> [GoogleTest options]\n", argv[0]);
    return 2;
  }
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 3;
  const int result = RUN_ALL_TESTS();
  CoUninitialize();
  return result;
}
