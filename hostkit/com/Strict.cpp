// The strict host's bookkeeping of the host kit's COM objects: which are
// alive, which are zombies, and by what name each is reported.
#include "hostkit/com/Strict.h"

#include <cxxabi.h>

#include <cstdlib>
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

}  // namespace

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
  return findings;
}

}  // namespace kestrivon::hostkit::com
