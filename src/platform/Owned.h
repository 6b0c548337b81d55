#pragma once

#include <utility>

namespace kestrivon::platform {

// Owns one handle of the platform and closes it when it goes out of scope,
// so that a procedure's handle is closed after an error report as on a
// normal return. Close is the seam's own close function.
template <class Handle, auto Close, Handle kNone>
class Owned {
 public:
  Owned() = default;
  explicit Owned(Handle handle) noexcept : handle_(handle) {}
  ~Owned() { Reset(); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  Owned(Owned&& other) noexcept : handle_(other.Release()) {}
  Owned& operator=(Owned&& other) noexcept {
    if (this != &other) {
      Reset();
      handle_ = other.Release();
    }
    return *this;
  }

  [[nodiscard]] Handle Get() const noexcept { return handle_; }
  // For the seam's out-parameters: closes what it held first.
  [[nodiscard]] Handle* Put() noexcept {
    Reset();
    return &handle_;
  }
  [[nodiscard]] bool Valid() const noexcept { return handle_ != kNone; }
  // Closes now, at the point where the procedure closes it.
  void Reset() noexcept {
    if (handle_ != kNone) static_cast<void>(Close(std::exchange(handle_, kNone)));
  }
  // Hands the handle to the caller, who closes it.
  [[nodiscard]] Handle Release() noexcept { return std::exchange(handle_, kNone); }

 private:
  Handle handle_ = kNone;
};

}  // namespace kestrivon::platform
