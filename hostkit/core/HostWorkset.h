#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/TraceLog.h"
#include "host/Workset.h"
#include "host/portable/Workset.h"

namespace kestrivon::hostkit {

// The host kit's workset: Globals with ConfigDirectory (when one is given;
// a trailing separator is added where it lacks one) and the Ghostscript
// members, whose writes become GLOBALS entries; a workset Application, empty
// Settings, and a FileSystem on the platform seam (no file carries a
// version natively).
std::shared_ptr<host::portable::WorksetObject> NewHostWorkset(
    std::shared_ptr<TraceLog> log, const std::optional<std::string>& configDirectory);

// The host's trace facility: every named source writes a SOURCE entry with
// the source's name, the level, the number and the text.
class SimTraceFacility final : public host::TraceFacility {
 public:
  explicit SimTraceFacility(std::shared_ptr<TraceLog> log) : log_(std::move(log)) {}
  std::shared_ptr<host::TraceSource> TraceSource(const std::string& name) override;

 private:
  std::shared_ptr<TraceLog> log_;
};

}  // namespace kestrivon::hostkit
