#include "host/win/ComHostObject.h"

namespace kestrivon::host::win {

HostObjectRef WrapHostObject(IDispatch* dispatch) {
  if (dispatch == nullptr) return nullptr;
  return std::make_shared<ComHostObject>(dispatch);
}

}  // namespace kestrivon::host::win
