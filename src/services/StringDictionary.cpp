#include "services/StringDictionary.h"

#include <algorithm>

#include "runtime/RunTimeError.h"

namespace kestrivon {
namespace {
constexpr int32_t kKeyAlreadyAssociated = 457;
}  // namespace

void StringDictionary::Add(const std::string& key, const std::string& value) {
  if (Exists(key)) {
    throw RunTimeError(kKeyAlreadyAssociated,
                       "This key is already associated with an element of this collection");
  }
  entries_.emplace_back(key, value);
}

bool StringDictionary::Exists(const std::string& key) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&key](const auto& entry) { return entry.first == key; });
}

const std::string& StringDictionary::Item(const std::string& key) const {
  for (const auto& entry : entries_) {
    if (entry.first == key) return entry.second;
  }
  Raise(vb_error::kInvalidProcedureCall);
}

}  // namespace kestrivon
