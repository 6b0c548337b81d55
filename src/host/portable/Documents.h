#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/Documents.h"

namespace kestrivon::host::portable {

// Host objects that tests and the host kit build without a COM runtime.
// Each records what the component does to it.

class MessageEntryObject;

class MessagePackObject : public HostObject, public MessagePack {
 public:
  std::shared_ptr<MessageEntry> AddNew() override;
  // Called when an entry gets its description, which completes it.
  std::function<void(const MessageEntryObject&)> onEntry;
  std::vector<std::shared_ptr<MessageEntryObject>> entries;
};

class MessageEntryObject : public HostObject, public MessageEntry {
 public:
  explicit MessageEntryObject(MessagePackObject* pack) : pack_(pack) {}
  void SetVemraObject(const HostObjectRef& object) override { vemraObject_ = object; }
  void SetDescription(const std::string& text) override;
  // Held weakly: the object usually owns the pack through its owner.
  [[nodiscard]] HostObjectRef VemraObject() const { return vemraObject_.lock(); }
  std::string description;

 private:
  MessagePackObject* pack_;
  std::weak_ptr<HostObject> vemraObject_;
};

class EnvironmentObject : public HostObject, public Environment {
 public:
  // Null: the device has no current message pack (error 91 when used).
  std::shared_ptr<MessagePackObject> messagePack = std::make_shared<MessagePackObject>();
  std::shared_ptr<MessagePack> CurrentMessagePack() override;
};

class OptionSetObject : public HostObject, public OptionSet {
 public:
  // Names compare without regard to case, as the host's do.
  void Set(const std::string& name, Variant value);
  void Remove(const std::string& name);
  bool Exist(const std::string& name) override;
  // Raises 5 for an option that is not defined.
  Variant Option(const std::string& name) override;

 private:
  std::map<std::string, Variant> options_;
};

class OwnerObject : public HostObject, public Owner {
 public:
  std::shared_ptr<OptionSetObject> options = std::make_shared<OptionSetObject>();
  std::shared_ptr<EnvironmentObject> environment = std::make_shared<EnvironmentObject>();
  HostObjectRef currentUser;
  std::shared_ptr<OptionSet> Options() override;
  std::shared_ptr<host::Environment> Environment() override;
  HostObjectRef CurrentUser() override { return currentUser; }
};

// Workset.Settings: names compare exactly.
class SettingsObject : public HostObject, public SettingsCollection {
 public:
  std::map<std::string, Variant> values;
  bool Exist(const std::string& name) override;
  // Raises 5 for a name that is not there.
  Variant Item(const std::string& name) override;
};

// Workset.Application: Exist answers for the keys given.
class ApplicationObject : public HostObject, public HostApplication {
 public:
  bool Exist(const std::string& key) override { return keys.count(key) != 0; }
  std::string ApplicationPath() override { return applicationPath; }
  std::set<std::string> keys;
  std::string applicationPath;
};

// A document, a document type or a user: the base interface's members are
// plain fields; a document also has a type, a workset and print settings.
class DocumentObject : public HostObject, public VemraObject, public Document {
 public:
  explicit DocumentObject(std::string name = {}, HostObjectRef owner = nullptr)
      : name(std::move(name)), owner(std::move(owner)) {}
  std::string Name() override { return name; }
  std::string Title() override { return title; }
  HostObjectRef Owner() override { return owner; }
  std::string DocumentName() override { return documentName; }
  int32_t SystemType() override { return systemType; }
  std::string Number() override { return number; }
  HostObjectRef TypeObject() override { return typeObject; }
  HostObjectRef Workset() override { return workset; }
  HostObjectRef PrintSettings() override { return printSettings; }

  std::string name;
  std::string title;
  HostObjectRef owner;
  std::string documentName;
  int32_t systemType = 29;
  std::string number;
  HostObjectRef typeObject;
  // A WorksetObject where the host has one.
  HostObjectRef workset;
  HostObjectRef printSettings;
};

}  // namespace kestrivon::host::portable
