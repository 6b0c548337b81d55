#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Planned failures of host calls, so that administrators and tests can see
// what the component does when the host fails it: a named call fails on its
// n-th use with an HRESULT-like error, or answers Nothing where it answers
// an object. The portable host seam wraps every object it hands to the
// component while a plan is installed (FaultingObjects.cpp), so every host
// object, whoever implements it, is reached through one place.
namespace kestrivon::host::portable {

// A host call the plan can fail, named "Interface.Member" ("New.X" for the
// creation of class X); answersObject: it can also answer Nothing.
struct InjectableCall {
  std::string_view name;
  bool answersObject;
};
const std::vector<InjectableCall>& InjectableCalls();

struct Fault {
  std::string call;
  int use = 1;  // the first use is 1
  // The error raised; nullopt: the call answers Nothing.
  std::optional<int32_t> error;
};

class FaultPlan {
 public:
  explicit FaultPlan(std::vector<Fault> faults = {}) : faults_(std::move(faults)) {}

  // "Call:use:error,..." where error is a number (0x hex or decimal) or
  // "null"; an empty text is an empty plan. nullopt and the problem for a
  // text that is none, an unknown call, or "null" for a call that answers
  // no object.
  static std::optional<FaultPlan> Parse(std::string_view text, std::string* problem);

  // Counts the use of the call; the fault planned for this use, if any.
  std::optional<Fault> Use(std::string_view call);
  [[nodiscard]] const std::vector<Fault>& Faults() const { return faults_; }
  // How often each call was used, and the faults that struck.
  [[nodiscard]] std::map<std::string, int, std::less<>> Uses() const;
  [[nodiscard]] std::vector<Fault> Struck() const;
  // Told of each fault as it strikes, before the call fails.
  std::function<void(const Fault&)> onStrike;

 private:
  std::vector<Fault> faults_;
  std::map<std::string, int, std::less<>> uses_;
  std::vector<Fault> struck_;
};

// The plan the host seam follows; null removes it. Objects handed out
// while no plan is installed are not watched.
void InstallFaultPlan(std::shared_ptr<FaultPlan> plan);
std::shared_ptr<FaultPlan> InstalledFaultPlan();

// One use of a host call: raises the planned error; true when the call
// must answer Nothing instead of its object.
bool HostCall(std::string_view call);

}  // namespace kestrivon::host::portable
