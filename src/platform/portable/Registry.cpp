#include "platform/portable/Registry.h"

#include <cstring>
#include <map>
#include <vector>

#include "platform/portable/Internal.h"

namespace kestrivon::platform {
namespace portable {
namespace {

constexpr int32_t kErrorBadPathname = 161;

struct NoCaseLess {
  bool operator()(const std::string& a, const std::string& b) const {
    return LowerAscii(a) < LowerAscii(b);
  }
};

struct Node {
  std::map<std::string, Node, NoCaseLess> subkeys;
  std::map<std::string, RegistryValue, NoCaseLess> values;
};

struct OpenKey {
  HKey hive;
  std::vector<std::string> path;
  uint32_t access;
  RegistryView view;
};

struct Registry {
  std::map<HKey, Node> hives;
  std::map<HKey, OpenKey> handles;
  HKey nextHandle = 0x1000;
  RegistryView processView = RegistryView::k32;
};

Registry& State() {
  static Registry registry;
  return registry;
}

bool IsPredefined(HKey key) {
  return key == kHKeyClassesRoot || key == kHKeyCurrentUser || key == kHKeyLocalMachine ||
         key == kHKeyUsers;
}

// HKEY_LOCAL_MACHINE\Software of the 32-bit view is Software\Wow6432Node.
std::vector<std::string> Redirect(HKey hive, std::vector<std::string> path, RegistryView view) {
  if (view != RegistryView::k32 || hive != kHKeyLocalMachine || path.empty() ||
      !EqualNoCase(path[0], "Software")) {
    return path;
  }
  if (path.size() >= 2 && EqualNoCase(path[1], "Wow6432Node")) return path;
  path.insert(path.begin() + 1, "Wow6432Node");
  return path;
}

Node* Find(HKey hive, const std::vector<std::string>& path) {
  auto root = State().hives.find(hive);
  if (root == State().hives.end()) return nullptr;
  Node* node = &root->second;
  for (const auto& part : path) {
    auto it = node->subkeys.find(part);
    if (it == node->subkeys.end()) return nullptr;
    node = &it->second;
  }
  return node;
}

Node& Make(HKey hive, const std::vector<std::string>& path) {
  Node* node = &State().hives[hive];
  for (const auto& part : path) node = &node->subkeys[part];
  return *node;
}

std::vector<std::string> PathIn(RegistryView view, HKey hive, const std::string& path) {
  return Redirect(hive, SplitPath(path, '\\'), view);
}

}  // namespace

void SetProcessRegistryView(RegistryView view) { State().processView = view; }
RegistryView ProcessRegistryView() { return State().processView; }

void ClearRegistry() {
  const RegistryView view = State().processView;
  State() = Registry{};
  State().processView = view;
}

void CreateRegistryKey(RegistryView view, HKey hive, const std::string& path) {
  Make(hive, PathIn(view, hive, path));
}

void SetRegistryValue(RegistryView view, HKey hive, const std::string& path,
                      const std::string& name, uint32_t type, const std::string& bytes) {
  Make(hive, PathIn(view, hive, path)).values[name] = RegistryValue{type, bytes};
}

void SetRegistryString(RegistryView view, HKey hive, const std::string& path,
                       const std::string& name, const std::string& text) {
  SetRegistryValue(view, hive, path, name, kRegSz, text + '\0');
}

void SetRegistryDword(RegistryView view, HKey hive, const std::string& path,
                      const std::string& name, uint32_t value) {
  std::string bytes(4, '\0');
  std::memcpy(bytes.data(), &value, 4);
  SetRegistryValue(view, hive, path, name, kRegDword, bytes);
}

void DeleteRegistryKey(RegistryView view, HKey hive, const std::string& path) {
  std::vector<std::string> parts = PathIn(view, hive, path);
  if (parts.empty()) return;
  const std::string last = parts.back();
  parts.pop_back();
  if (Node* parent = Find(hive, parts)) parent->subkeys.erase(last);
}

bool RegistryKeyExists(RegistryView view, HKey hive, const std::string& path) {
  return Find(hive, PathIn(view, hive, path)) != nullptr;
}

std::optional<RegistryValue> RegistryValueOf(RegistryView view, HKey hive, const std::string& path,
                                             const std::string& name) {
  Node* node = Find(hive, PathIn(view, hive, path));
  if (node == nullptr) return std::nullopt;
  auto it = node->values.find(name);
  if (it == node->values.end()) return std::nullopt;
  return it->second;
}

size_t OpenRegistryHandles() { return State().handles.size(); }

}  // namespace portable

using portable::OpenKey;
using portable::RegistryView;

namespace {

OpenKey* Handle(HKey key) {
  auto it = portable::State().handles.find(key);
  return it == portable::State().handles.end() ? nullptr : &it->second;
}

portable::Node* NodeOf(const OpenKey& key) { return portable::Find(key.hive, key.path); }

}  // namespace

int32_t RegOpenKeyExA(HKey key, const std::string& subKey, uint32_t /*options*/,
                      uint32_t samDesired, HKey* result) {
  if (result != nullptr) *result = 0;
  if (result == nullptr) return kErrorInvalidParameter;
  OpenKey opened{};
  if (portable::IsPredefined(key)) {
    opened.hive = key;
    opened.view = portable::State().processView;
  } else if (OpenKey* parent = Handle(key)) {
    opened = *parent;
  } else {
    return kErrorInvalidHandle;
  }
  if (!subKey.empty() && subKey.front() == '\\') return portable::kErrorBadPathname;
  if ((samDesired & kKeyWow64_64Key) != 0) opened.view = RegistryView::k64;
  if ((samDesired & kKeyWow64_32Key) != 0) opened.view = RegistryView::k32;
  for (auto& part : portable::SplitPath(subKey, '\\')) opened.path.push_back(part);
  opened.path = portable::Redirect(opened.hive, opened.path, opened.view);
  opened.access = samDesired;
  if (portable::Find(opened.hive, opened.path) == nullptr) return kErrorFileNotFound;
  const HKey handle = portable::State().nextHandle;
  portable::State().nextHandle += 4;
  portable::State().handles[handle] = opened;
  *result = handle;
  return kErrorSuccess;
}

namespace {

// The key behind an open handle or a predefined hive, checked for the right
// the call needs, with the error Windows gives otherwise.
int32_t NodeFor(HKey key, uint32_t right, portable::Node*& node) {
  OpenKey* open = Handle(key);
  if (open != nullptr) {
    if ((open->access & right) == 0) return kErrorAccessDenied;
    node = NodeOf(*open);
  } else if (portable::IsPredefined(key)) {
    node = &portable::State().hives[key];
  } else {
    return kErrorInvalidHandle;
  }
  return node == nullptr ? kErrorFileNotFound : kErrorSuccess;
}

}  // namespace

int32_t RegQueryValueExA(HKey key, const std::string& valueName, uint32_t* type, void* data,
                         uint32_t* dataSize) {
  portable::Node* node = nullptr;
  if (const int32_t status = NodeFor(key, kKeyQueryValue, node); status != kErrorSuccess) {
    return status;
  }
  if (data != nullptr && dataSize == nullptr) return kErrorInvalidParameter;
  auto it = node->values.find(valueName);
  if (it == node->values.end()) return kErrorFileNotFound;
  const portable::RegistryValue& value = it->second;
  if (type != nullptr) *type = value.type;
  if (dataSize == nullptr) return kErrorSuccess;
  const auto size = static_cast<uint32_t>(value.bytes.size());
  if (data == nullptr) {
    *dataSize = size;
    return kErrorSuccess;
  }
  if (*dataSize < size) {
    *dataSize = size;
    return kErrorMoreData;
  }
  std::memcpy(data, value.bytes.data(), size);
  *dataSize = size;
  return kErrorSuccess;
}

int32_t RegSetValueExA(HKey key, const std::string& valueName, uint32_t type, const void* data,
                       uint32_t dataSize) {
  portable::Node* node = nullptr;
  if (const int32_t status = NodeFor(key, kKeySetValue, node); status != kErrorSuccess) {
    return status;
  }
  std::string bytes;
  if (data != nullptr) bytes.assign(static_cast<const char*>(data), dataSize);
  node->values[valueName] = portable::RegistryValue{type, bytes};
  return kErrorSuccess;
}

int32_t RegCloseKey(HKey key) {
  if (portable::IsPredefined(key)) return kErrorSuccess;
  return portable::State().handles.erase(key) == 1 ? kErrorSuccess : kErrorInvalidHandle;
}

}  // namespace kestrivon::platform
