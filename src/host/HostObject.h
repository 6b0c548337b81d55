#pragma once

#include <memory>

namespace kestrivon::host {

// A host object handed to a revision printer (a document, its owner). The
// printers that read them extend this with the members they use.
class HostObject {
 public:
  virtual ~HostObject() = default;
};

using HostObjectRef = std::shared_ptr<HostObject>;

}  // namespace kestrivon::host
