#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace kestrivon {

// The run time's error numbers that the component raises itself.
namespace vb_error {
inline constexpr int32_t kInvalidProcedureCall = 5;
inline constexpr int32_t kOverflow = 6;
inline constexpr int32_t kOutOfMemory = 7;
inline constexpr int32_t kTypeMismatch = 13;
inline constexpr int32_t kOutOfStackSpace = 28;
inline constexpr int32_t kInternalError = 51;
inline constexpr int32_t kFileNotFound = 53;
inline constexpr int32_t kObjectVariableNotSet = 91;
inline constexpr int32_t kCantCreateObject = 429;
}  // namespace vb_error

inline constexpr const char* kErrorSource = "VemraKestrivon";

// The run time's error object as LogError receives it.
struct ErrorInfo {
  int32_t number = 0;
  std::string description;
  std::string source;
};

// A run-time error: what a procedure's error handler receives and hands to
// LogError. Host calls that fail raise it with their HRESULT as the number.
class RunTimeError : public std::runtime_error {
 public:
  RunTimeError(int32_t number, const std::string& description, std::string source = kErrorSource)
      : std::runtime_error(description), number_(number), source_(std::move(source)) {}

  [[nodiscard]] int32_t Number() const noexcept { return number_; }
  [[nodiscard]] std::string Description() const { return what(); }
  [[nodiscard]] const std::string& Source() const noexcept { return source_; }

 private:
  int32_t number_;
  std::string source_;
};

// The run time's own description of its error numbers.
std::string DescriptionOf(int32_t number);

// Raises the run time's error with its standard description.
[[noreturn]] void Raise(int32_t number);

// The object, or error 91 where the host answered Nothing and the
// procedure goes on to use it.
template <class T>
T& Required(const std::shared_ptr<T>& object) {
  if (!object) Raise(vb_error::kObjectVariableNotSet);
  return *object;
}

// The same, for an object used beyond the statement: a host's view of an
// object (a COM interface wrapper) is often made for the one call, so the
// caller keeps it alive rather than a reference into it.
template <class T>
std::shared_ptr<T> RequiredObject(std::shared_ptr<T> object) {
  if (!object) Raise(vb_error::kObjectVariableNotSet);
  return object;
}

}  // namespace kestrivon
