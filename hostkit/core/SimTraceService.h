#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "core/MessageTexts.h"
#include "core/TraceLog.h"
#include "host/TraceService.h"

namespace kestrivon::hostkit {

// The host's trace and message service without the host: everything goes to
// the trace log, texts come from an optional translations file, and message
// boxes answer from an optional script instead of a user.
class SimTraceService final : public host::TraceService {
 public:
  SimTraceService(std::shared_ptr<TraceLog> log,
                  std::optional<std::filesystem::path> translationsFile,
                  std::optional<std::filesystem::path> answersFile);

  void LogError(const host::ErrorInfo& error, const std::string& classLabel,
                const std::string& procedureLabel) override;
  std::string ResolveText(const std::string& text) override;
  int32_t CurrentTicks() override;
  void WriteTrace(const std::string& line) override;
  int32_t ShowMessageBox(const std::string& prompt, int32_t buttons,
                         const std::string& title) override;
  bool CopyFile(const std::string& source, const std::string& target, bool overwrite) override;
  // The host kit's application and its workset, when it has one.
  host::HostObjectRef Application() override { return application_; }
  host::HostObjectRef GetObject(const std::string& name) override;
  void SetApplication(host::HostObjectRef application, host::HostObjectRef workset) {
    application_ = std::move(application);
    workset_ = std::move(workset);
  }

  [[nodiscard]] TraceLog& Log() noexcept { return *log_; }

 private:
  const Translations& LoadedTranslations();
  ScriptedAnswers* LoadedAnswers();
  void Note(const std::string& text);

  std::shared_ptr<TraceLog> log_;
  std::optional<std::filesystem::path> translationsFile_;
  std::optional<std::filesystem::path> answersFile_;
  std::mutex mutex_;
  std::optional<Translations> translations_;
  bool answersLoaded_ = false;
  std::optional<ScriptedAnswers> answers_;
  host::HostObjectRef application_;
  host::HostObjectRef workset_;
};

// An error number as the log shows it: decimal, with the hexadecimal form
// beside the numbers that are HRESULTs rather than the run time's own.
std::string FormatErrorNumber(int32_t number);

}  // namespace kestrivon::hostkit
