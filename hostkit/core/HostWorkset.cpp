#include "core/HostWorkset.h"

namespace kestrivon::hostkit {
namespace {

class SimTraceSource final : public host::TraceSource {
 public:
  SimTraceSource(std::shared_ptr<TraceLog> log, std::string name)
      : log_(std::move(log)), name_(std::move(name)) {}
  void Write(int32_t level, int32_t id, const std::string& text) override {
    log_->Append("SOURCE", {name_, std::to_string(level), std::to_string(id), text});
  }

 private:
  std::shared_ptr<TraceLog> log_;
  std::string name_;
};

}  // namespace

std::shared_ptr<host::portable::WorksetObject> NewHostWorkset(
    std::shared_ptr<TraceLog> log, const std::optional<std::string>& configDirectory) {
  auto workset = std::make_shared<host::portable::WorksetObject>();
  if (configDirectory) {
    std::string folder = *configDirectory;
    // The component appends "HARP.ini" without a separator of its own.
    if (!folder.empty() && folder.back() != '\\' && folder.back() != '/') {
      folder += folder.front() == '/' ? '/' : '\\';
    }
    workset->globals->values["ConfigDirectory"] = folder;
  }
  workset->globals->onWrite = [log](const std::string& member, const std::string& value) {
    log->Append("GLOBALS", {member, value});
  };
  return workset;
}

std::shared_ptr<host::TraceSource> SimTraceFacility::TraceSource(const std::string& name) {
  return std::make_shared<SimTraceSource>(log_, name);
}

}  // namespace kestrivon::hostkit
