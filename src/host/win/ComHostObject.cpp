#include "host/win/ComHostObject.h"

#include <atomic>

namespace kestrivon::host::win {
namespace {
std::atomic<bool> unloading{false};
}  // namespace

void MarkUnloading() noexcept { unloading = true; }
bool Unloading() noexcept { return unloading; }

HostObjectRef WrapHostObject(IDispatch* dispatch) {
  if (dispatch == nullptr) return nullptr;
  return std::make_shared<ComHostObject>(dispatch);
}

}  // namespace kestrivon::host::win
