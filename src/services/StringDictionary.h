#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kestrivon {

// String keys to string values in insertion order. Keys are compared
// exactly; adding a key that is there already is a run-time error (457),
// as with the host's dictionary class.
class StringDictionary {
 public:
  void Add(const std::string& key, const std::string& value);
  void RemoveAll() { entries_.clear(); }
  [[nodiscard]] bool Exists(const std::string& key) const;
  // The value of a key; raises 5 when the key is missing.
  [[nodiscard]] const std::string& Item(const std::string& key) const;
  [[nodiscard]] size_t Count() const { return entries_.size(); }
  [[nodiscard]] const std::vector<std::pair<std::string, std::string>>& Entries() const {
    return entries_;
  }

 private:
  std::vector<std::pair<std::string, std::string>> entries_;
};

}  // namespace kestrivon
