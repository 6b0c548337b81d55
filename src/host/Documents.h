#pragma once

#include <memory>
#include <string>

#include "host/HostObject.h"
#include "runtime/Variant.h"

namespace kestrivon::host {

// The host's object model as far as revision messages reach into it. A
// failing member raises RunTimeError; a missing object where one is used is
// error 91.

// A message of the host's message pack.
class MessageEntry {
 public:
  virtual ~MessageEntry() = default;
  // VemraObject, set by reference.
  virtual void SetVemraObject(const HostObjectRef& object) = 0;
  virtual void SetDescription(const std::string& text) = 0;
};

// The list of messages that the host shows together after a run.
class MessagePack {
 public:
  virtual ~MessagePack() = default;
  virtual std::shared_ptr<MessageEntry> AddNew() = 0;
};

// An owner's environment; its Device holds the current message pack.
class Environment {
 public:
  virtual ~Environment() = default;
  // Device.CurrentMessagePack.
  virtual std::shared_ptr<MessagePack> CurrentMessagePack() = 0;
};

// An owner's options, read by name.
class OptionSet {
 public:
  virtual ~OptionSet() = default;
  virtual bool Exist(const std::string& name) = 0;
  virtual Variant Option(const std::string& name) = 0;
};

// The owner of documents (interface IVemraOwner).
class Owner {
 public:
  virtual ~Owner() = default;
  virtual std::shared_ptr<OptionSet> Options() = 0;
  virtual std::shared_ptr<host::Environment> Environment() = 0;
  // The user object (implements the base interface); null for Nothing.
  virtual HostObjectRef CurrentUser() = 0;
};

// A document, document type or user (the host's base interface).
class VemraObject {
 public:
  virtual ~VemraObject() = default;
  virtual std::string Name() = 0;          // slot 7
  virtual std::string Title() = 0;         // slot 9, second text of the print prompt
  virtual HostObjectRef Owner() = 0;       // slot 17; null when the host answers Nothing
  virtual std::string DocumentName() = 0;  // slot 19, names the lock file
  virtual int32_t SystemType() = 0;        // slot 33, 29 marks a document
  virtual std::string Number() = 0;        // slot 38, first text of the print prompt
};

// The database context of a document (late-bound Workset.Settings).
class SettingsCollection {
 public:
  virtual ~SettingsCollection() = default;
  virtual bool Exist(const std::string& name) = 0;
  // Item(name), the default member; raises for a name that is not there.
  virtual Variant Item(const std::string& name) = 0;
};

// The running host application as a document's workset supplies it
// (late-bound Workset.Application).
class HostApplication {
 public:
  virtual ~HostApplication() = default;
  virtual bool Exist(const std::string& key) = 0;
  // The folder of the host's executable.
  virtual std::string ApplicationPath() = 0;
};

// A host document (interface IVemraDocument and its late-bound members).
class Document {
 public:
  virtual ~Document() = default;
  // The document type object (implements the base interface); slot 188.
  virtual HostObjectRef TypeObject() = 0;
  // Workset, late-bound: the document's database context (seen through
  // AsWorkset); null when the document has none.
  virtual HostObjectRef Workset() = 0;
  // PrintSettings, late-bound: an opaque value handed unchanged to the
  // device-mode preparation of the printer.
  virtual HostObjectRef PrintSettings() = 0;
};

// A host object seen through one of the interfaces: null for a null
// object; raises when the object does not implement the interface.
std::shared_ptr<VemraObject> AsVemraObject(const HostObjectRef& object);
std::shared_ptr<Owner> AsOwner(const HostObjectRef& object);
std::shared_ptr<Document> AsDocument(const HostObjectRef& object);

}  // namespace kestrivon::host
