// The strict host's bookkeeping of the host kit's COM objects: which are
// alive, which are zombies, and by what name each is reported.
#include "hostkit/com/Strict.h"

#include <cxxabi.h>
#include <psapi.h>

#include <cstdlib>
#include <cwchar>
#include <map>
#include <mutex>
#include <set>
#include <typeinfo>
#include <vector>

namespace kestrivon::hostkit::com {
namespace {

struct Registry {
  std::recursive_mutex mutex;
  std::set<Tracked*> alive;
  std::vector<Tracked*> zombies;
};

Registry& Objects() {
  static auto* registry = new Registry;  // outlives every object
  return *registry;
}

// The call served on this thread when an object is made: its origin. The
// names are literals; a thread_local with a destructor would pin the DLL.
thread_local std::string_view currentCall;

// The class's own name, without its namespaces.
std::string ClassName(const std::type_info& type) {
  int status = 0;
  char* demangled = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
  std::string name = status == 0 && demangled != nullptr ? demangled : type.name();
  std::free(demangled);
  const size_t colons = name.rfind("::");
  return colons == std::string::npos ? name : name.substr(colons + 2);
}

// The strings handed out and not yet freed, and those freed: kept, never
// given back to the heap, so that no later string takes the address and a
// second free is told from a new string's.
struct Ledger {
  std::mutex mutex;
  std::map<BSTR, std::string> handedOut;
  std::map<BSTR, std::string> freed;
};

Ledger& Strings() {
  static auto* ledger = new Ledger;  // hooks run until the process ends
  return *ledger;
}

using FreeString = void(WINAPI*)(BSTR);
using ClearVariant = HRESULT(WINAPI*)(VARIANTARG*);

HMODULE Oleaut32() { return ::GetModuleHandleW(L"oleaut32.dll"); }

FreeString RealFree() {
  static const auto real = reinterpret_cast<FreeString>(
      reinterpret_cast<void*>(::GetProcAddress(Oleaut32(), "SysFreeString")));
  return real;
}

ClearVariant RealClear() {
  static const auto real = reinterpret_cast<ClearVariant>(
      reinterpret_cast<void*>(::GetProcAddress(Oleaut32(), "VariantClear")));
  return real;
}

// True when the string is one the host kit handed out: the free is
// entered (a second one recorded) and the string kept.
bool FreedByClient(BSTR text) {
  if (text == nullptr) return false;
  Ledger& ledger = Strings();
  std::lock_guard lock(ledger.mutex);
  if (const auto found = ledger.handedOut.find(text); found != ledger.handedOut.end()) {
    ledger.freed.insert(*found);
    ledger.handedOut.erase(found);
    return true;
  }
  const auto freed = ledger.freed.find(text);
  if (freed == ledger.freed.end()) return false;
  RecordViolation("over-release: a string handed out by " + freed->second + " freed twice");
  return true;
}

void WINAPI WatchedSysFreeString(BSTR text) {
  if (!FreedByClient(text)) RealFree()(text);
}

HRESULT WINAPI WatchedVariantClear(VARIANTARG* value) {
  if (value != nullptr && V_VT(value) == VT_BSTR && FreedByClient(V_BSTR(value))) {
    V_VT(value) = VT_EMPTY;
    return S_OK;
  }
  return RealClear()(value);
}

// Points the module's imports of the two functions at the watched ones.
void PatchImports(HMODULE module) {
  auto* base = reinterpret_cast<BYTE*>(module);
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& imports =
      nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (imports.VirtualAddress == 0) return;
  const void* realFree = reinterpret_cast<const void*>(RealFree());
  const void* realClear = reinterpret_cast<const void*>(RealClear());
  for (auto* entry = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
       entry->Name != 0; ++entry) {
    if (_stricmp(reinterpret_cast<const char*>(base + entry->Name), "oleaut32.dll") != 0) continue;
    for (auto* slot = reinterpret_cast<IMAGE_THUNK_DATA*>(base + entry->FirstThunk);
         slot->u1.Function != 0; ++slot) {
      const void* target = reinterpret_cast<const void*>(slot->u1.Function);
      void* hook = target == realFree    ? reinterpret_cast<void*>(&WatchedSysFreeString)
                   : target == realClear ? reinterpret_cast<void*>(&WatchedVariantClear)
                                         : nullptr;
      if (hook == nullptr) continue;
      DWORD protection = 0;
      if (!::VirtualProtect(&slot->u1.Function, sizeof slot->u1.Function, PAGE_READWRITE,
                            &protection)) {
        continue;
      }
      slot->u1.Function = reinterpret_cast<ULONG_PTR>(hook);
      ::VirtualProtect(&slot->u1.Function, sizeof slot->u1.Function, protection, &protection);
    }
  }
}

}  // namespace

BSTR HandedOut(BSTR text) {
  if (text == nullptr || !StrictMode()) return text;
  Ledger& ledger = Strings();
  std::lock_guard lock(ledger.mutex);
  ledger.handedOut[text] =
      currentCall.empty() ? std::string("the host kit") : std::string(currentCall);
  return text;
}

void TakenBack(BSTR text) noexcept {
  Ledger& ledger = Strings();
  std::lock_guard lock(ledger.mutex);
  ledger.handedOut.erase(text);
}

void WatchClients() noexcept {
  if (!StrictMode() || RealFree() == nullptr || RealClear() == nullptr) return;
  wchar_t system[MAX_PATH] = {};
  const UINT systemLength = ::GetSystemWindowsDirectoryW(system, MAX_PATH);
  if (systemLength == 0 || systemLength >= MAX_PATH) return;
  HMODULE modules[512];
  DWORD bytes = 0;
  if (!::EnumProcessModules(::GetCurrentProcess(), modules, sizeof modules, &bytes)) return;
  HMODULE self = nullptr;
  // Pinned: the patched imports point into this DLL until the process ends.
  ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&WatchClients), &self);
  for (DWORD i = 0; i < bytes / sizeof(HMODULE) && i < 512; ++i) {
    wchar_t path[MAX_PATH] = {};
    if (modules[i] == self || ::GetModuleFileNameW(modules[i], path, MAX_PATH) == 0) continue;
    if (_wcsnicmp(path, system, systemLength) == 0) continue;
    PatchImports(modules[i]);
  }
}

void NoteCall(std::string_view call) { currentCall = call; }

Tracked::Tracked() : madeIn_(currentCall) {
  Registry& registry = Objects();
  std::lock_guard lock(registry.mutex);
  registry.alive.insert(this);
}

Tracked::~Tracked() {
  Registry& registry = Objects();
  std::lock_guard lock(registry.mutex);
  registry.alive.erase(this);
}

std::string Tracked::Describe() const {
  std::string text = ClassName(typeid(*this));
  if (const std::string label = Label(); !label.empty()) text += " '" + label + "'";
  if (!madeIn_.empty()) text += " (made in " + madeIn_ + ")";
  return text;
}

void Tracked::Zombify() noexcept {
  Registry& registry = Objects();
  std::lock_guard lock(registry.mutex);
  registry.zombies.push_back(this);
}

void Tracked::Misused(std::string_view what) const {
  RecordViolation("over-release: " + std::string(what) + " on " + Describe() +
                  " after its last reference was released");
}

void Tracked::ReservedCalled(int slot) const {
  if (!StrictMode()) return;
  RecordViolation("reserved slot: Reserved" + std::to_string(slot) + " of " + Describe() +
                  " called");
}

void Tracked::UnlistedCalled(std::string_view member) const {
  if (!StrictMode()) return;
  RecordViolation("unlisted member: " + std::string(member) + " of " + Describe() +
                  " is no member the component may use");
}

void BuryZombies() noexcept {
  Registry& registry = Objects();
  std::lock_guard lock(registry.mutex);
  // Freeing one releases what it held, which may make new zombies.
  while (!registry.zombies.empty()) {
    std::vector<Tracked*> zombies;
    zombies.swap(registry.zombies);
    for (Tracked* zombie : zombies) zombie->Bury();
  }
}

std::vector<std::string> StrictFindings() {
  std::vector<std::string> findings = Violations();
  if (!StrictMode()) return findings;
  BuryZombies();
  Registry& registry = Objects();
  std::lock_guard lock(registry.mutex);
  for (const Tracked* object : registry.alive) {
    findings.push_back("leak: " + object->Describe() + " still referenced after the release");
  }
  Ledger& ledger = Strings();
  std::lock_guard strings(ledger.mutex);
  for (const auto& [text, call] : ledger.handedOut) {
    findings.push_back("leak: a string handed out by " + call + " never freed");
  }
  return findings;
}

}  // namespace kestrivon::hostkit::com
