#include "core/SimTraceService.h"

#include <chrono>
#include <cstdio>

#include "core/Environment.h"
#include "core/FileCopy.h"
#include "core/Progress.h"

namespace kestrivon::hostkit {

SimTraceService::SimTraceService(std::shared_ptr<TraceLog> log,
                                 std::optional<std::filesystem::path> translationsFile,
                                 std::optional<std::filesystem::path> answersFile)
    : log_(std::move(log)),
      translationsFile_(std::move(translationsFile)),
      answersFile_(std::move(answersFile)) {}

void SimTraceService::LogError(const host::ErrorInfo& error, const std::string& classLabel,
                               const std::string& procedureLabel) {
  log_->Append("ERROR", {FormatErrorNumber(error.number), error.description, error.source,
                         classLabel, procedureLabel});
}

std::string SimTraceService::ResolveText(const std::string& text) {
  std::string resolved = text;
  if (const auto message = ParseMessageIdText(text)) {
    const std::string* translation = LoadedTranslations().Find(message->id);
    resolved = translation ? *translation : message->defaultText;
  }
  log_->Append("RESOLVE", {text, resolved});
  return resolved;
}

int32_t SimTraceService::CurrentTicks() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  const auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
  // A 32-bit tick count wraps like the system's.
  return static_cast<int32_t>(static_cast<uint32_t>(millis));
}

void SimTraceService::WriteTrace(const std::string& line) {
  log_->Append("TRACE", {line});
  // The waits the component must make are named while they happen.
  if (const std::string note = MandatedWaitNote(line); !note.empty()) Progress(note);
}

int32_t SimTraceService::ShowMessageBox(const std::string& prompt, int32_t buttons,
                                        const std::string& title) {
  int32_t answer = kAnswerOK;
  std::string origin = "default";
  if (ScriptedAnswers* answers = LoadedAnswers()) {
    if (const auto line = answers->Next()) {
      if (const auto parsed = ParseAnswer(*line)) {
        answer = *parsed;
        origin = "scripted";
      } else {
        Note("message box answer '" + *line + "' is not understood; OK is answered");
      }
    }
  }
  log_->Append("MSGBOX", {prompt, std::to_string(buttons), title, std::to_string(answer), origin});
  return answer;
}

bool SimTraceService::CopyFile(const std::string& source, const std::string& target,
                               bool overwrite) {
  std::string why;
  const bool copied = CopyOneFile(source, target, overwrite, why);
  std::vector<std::string> fields{source, target, overwrite ? "overwrite" : "keep",
                                  copied ? "copied" : "failed"};
  if (!copied) fields.push_back(why);
  log_->Append("COPY", fields);
  return copied;
}

host::HostObjectRef SimTraceService::GetObject(const std::string& name) {
  return name == "Workset" ? workset_ : nullptr;
}

const Translations& SimTraceService::LoadedTranslations() {
  std::lock_guard lock(mutex_);
  if (!translations_) {
    translations_.emplace();
    if (translationsFile_) {
      std::vector<std::string> problems;
      translations_ = Translations::Load(*translationsFile_, problems);
      for (const auto& problem : problems) {
        Note("translations file '" + PathToUtf8(*translationsFile_) + "': " + problem);
      }
    }
  }
  return *translations_;
}

ScriptedAnswers* SimTraceService::LoadedAnswers() {
  std::lock_guard lock(mutex_);
  if (!answersLoaded_) {
    answersLoaded_ = true;
    if (answersFile_) {
      answers_ = ScriptedAnswers::Load(*answersFile_);
      if (!answers_) {
        Note("message box answers file '" + PathToUtf8(*answersFile_) +
             "' cannot be read; every box answers OK");
      }
    }
  }
  return answers_ ? &*answers_ : nullptr;
}

void SimTraceService::Note(const std::string& text) { log_->Append("HOSTKIT", {text}); }

std::string FormatErrorNumber(int32_t number) {
  std::string text = std::to_string(number);
  if (number < 0 || number > 0xFFFF) {
    char hex[16];
    std::snprintf(hex, sizeof hex, " (0x%08X)", static_cast<uint32_t>(number));
    text += hex;
  }
  return text;
}

}  // namespace kestrivon::hostkit
