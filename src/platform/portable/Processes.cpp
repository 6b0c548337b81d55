#include "platform/portable/Processes.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "platform/portable/FileSystem.h"
#include "platform/portable/Internal.h"

extern char** environ;

namespace kestrivon::platform {
namespace portable {
namespace {

constexpr uint32_t kErrorNotGuiProcess = 1471;
constexpr Handle kFirstHandle = 0x60;

struct ProcessRecord {
  bool exited = false;
  uint32_t exitCode = kStillActive;
};

struct ProcessTable {
  std::map<Handle, pid_t> handles;
  std::map<pid_t, ProcessRecord> processes;
  std::set<pid_t> orphans;
  CreateProcessCall lastCall;
};

ProcessTable& Table() {
  static ProcessTable table;
  return table;
}

Handle NewHandle(pid_t pid) {
  Handle handle = kFirstHandle;
  while (Table().handles.count(handle) != 0) handle += 4;
  Table().handles[handle] = pid;
  return handle;
}

// Collects the exit status if the process has ended; true when it has.
bool Reap(pid_t pid) {
  ProcessRecord& record = Table().processes[pid];
  if (record.exited) return true;
  int status = 0;
  const pid_t result = ::waitpid(pid, &status, WNOHANG);
  if (result == pid) {
    record.exited = true;
    if (WIFEXITED(status)) {
      record.exitCode = static_cast<uint32_t>(WEXITSTATUS(status));
    } else if (WIFSIGNALED(status) && record.exitCode == kStillActive) {
      record.exitCode = 128u + static_cast<uint32_t>(WTERMSIG(status));
    }
    return true;
  }
  if (result < 0 && errno == ECHILD) {
    record.exited = true;
    return true;
  }
  return false;
}

// The process behind a handle, or none with ERROR_INVALID_HANDLE left.
std::optional<pid_t> ProcessOf(Handle handle) {
  const auto it = Table().handles.find(handle);
  if (it != Table().handles.end()) return it->second;
  SetLastError(kErrorInvalidHandle);
  return std::nullopt;
}

// Children whose handles were all closed before they ended.
void ReapOrphans() {
  for (auto it = Table().orphans.begin(); it != Table().orphans.end();) {
    if (Reap(*it)) {
      Table().processes.erase(*it);
      it = Table().orphans.erase(it);
    } else {
      ++it;
    }
  }
}

bool IsExecutable(const std::string& hostPath) {
  struct stat st {};
  return !hostPath.empty() && ::stat(hostPath.c_str(), &st) == 0 && S_ISREG(st.st_mode) &&
         ::access(hostPath.c_str(), X_OK) == 0;
}

bool HasExtension(const std::string& name) {
  const size_t slash = name.find_last_of("\\/");
  const size_t dot = name.rfind('.');
  return dot != std::string::npos && (slash == std::string::npos || dot > slash);
}

std::string FindProgram(const std::string& name) {
  auto tryPath = [&name](const std::string& hostPath) -> std::string {
    if (IsExecutable(hostPath)) return hostPath;
    if (!HasExtension(name) && IsExecutable(hostPath + ".exe")) return hostPath + ".exe";
    return {};
  };
  if (name.find_first_of("\\/:") != std::string::npos) {
    std::string found = tryPath(ResolveHostPath(name));
    if (found.empty() && !HasExtension(name)) found = tryPath(ResolveHostPath(name + ".exe"));
    return found;
  }
  std::vector<std::string> folders;
  char self[4096] = {};
  const ssize_t n = ::readlink("/proc/self/exe", self, sizeof self - 1);
  if (n > 0) {
    std::string exe(self, static_cast<size_t>(n));
    folders.push_back(exe.substr(0, exe.rfind('/')));
  }
  folders.emplace_back(".");
  if (const char* path = std::getenv("PATH")) {
    for (std::string& folder : SplitPath(path, ':')) folders.push_back(std::move(folder));
  }
  for (const auto& folder : folders) {
    if (folder.empty()) continue;
    std::string found = tryPath(std::string(folder).append("/").append(name));
    if (!found.empty()) return found;
  }
  return {};
}

// The program token: up to the closing quote, or up to the first blank.
std::string ProgramToken(const std::string& commandLine, size_t* end) {
  size_t i = 0;
  while (i < commandLine.size() && (commandLine[i] == ' ' || commandLine[i] == '\t')) ++i;
  std::string token;
  if (i < commandLine.size() && commandLine[i] == '"') {
    ++i;
    while (i < commandLine.size() && commandLine[i] != '"') token += commandLine[i++];
    if (i < commandLine.size()) ++i;
  } else {
    while (i < commandLine.size() && commandLine[i] != ' ' && commandLine[i] != '\t') {
      token += commandLine[i++];
    }
  }
  *end = i;
  return token;
}

// The arguments after the program token, split as the C run time of a
// Windows program splits them.
std::vector<std::string> SplitArguments(const std::string& text) {
  std::vector<std::string> args;
  size_t i = 0;
  while (true) {
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    if (i >= text.size()) break;
    std::string arg;
    bool quoted = false;
    while (i < text.size()) {
      const char c = text[i];
      if (!quoted && (c == ' ' || c == '\t')) break;
      if (c == '\\') {
        size_t slashes = 0;
        while (i < text.size() && text[i] == '\\') {
          ++slashes;
          ++i;
        }
        if (i < text.size() && text[i] == '"') {
          arg.append(slashes / 2, '\\');
          if (slashes % 2 == 1) {
            arg += '"';
            ++i;
          }
        } else {
          arg.append(slashes, '\\');
        }
        continue;
      }
      if (c == '"') {
        if (quoted && i + 1 < text.size() && text[i + 1] == '"') {
          arg += '"';
          i += 2;
          continue;
        }
        quoted = !quoted;
        ++i;
        continue;
      }
      arg += c;
      ++i;
    }
    args.push_back(arg);
  }
  return args;
}

}  // namespace

const CreateProcessCall& LastCreateProcessCall() { return Table().lastCall; }

size_t OpenProcessHandles() { return Table().handles.size(); }

}  // namespace portable

bool CreateProcessA(const std::string& commandLine, bool inheritHandles, uint32_t creationFlags,
                    const StartupInfo& startup, ProcessInformation* information) {
  portable::ReapOrphans();
  portable::Table().lastCall = {commandLine, inheritHandles, creationFlags, startup};
  // Windows takes at most 32 766 characters and refuses a longer command
  // before it looks for its program (which, word by word, would take time
  // in proportion to the words times the length).
  constexpr size_t kMaxCommandLine = 32766;
  if (portable::CharacterCount(commandLine) > kMaxCommandLine) {
    portable::SetLastError(portable::kErrorInvalidParameter);
    return false;
  }
  size_t end = 0;
  std::string token = portable::ProgramToken(commandLine, &end);
  std::string program = token.empty() ? std::string() : portable::FindProgram(token);
  // An unquoted path with blanks is tried word by word, as Windows does.
  const size_t first = commandLine.find_first_not_of(" \t");
  if (first != std::string::npos && commandLine[first] != '"') {
    size_t next = end;
    while (program.empty() && next < commandLine.size()) {
      next = commandLine.find_first_of(" \t", commandLine.find_first_not_of(" \t", next));
      if (next == std::string::npos) next = commandLine.size();
      const std::string longer = commandLine.substr(first, next - first);
      const std::string found = portable::FindProgram(longer);
      if (!found.empty()) {
        token = longer;
        program = found;
        end = next;
      }
    }
  }
  if (program.empty() || information == nullptr) {
    portable::SetLastError(portable::kErrorFileNotFound);
    return false;
  }
  std::vector<std::string> args{token};
  for (auto& arg : portable::SplitArguments(commandLine.substr(end))) args.push_back(arg);
  std::vector<char*> argv;
  argv.reserve(args.size() + 1);
  for (auto& arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  pid_t pid = 0;
  if (::posix_spawn(&pid, program.c_str(), nullptr, nullptr, argv.data(), environ) != 0) {
    portable::SetLastError(portable::kErrorFileNotFound);
    return false;
  }
  portable::Table().processes[pid] = portable::ProcessRecord{};
  information->process = portable::NewHandle(pid);
  information->thread = portable::NewHandle(pid);
  information->processId = static_cast<uint32_t>(pid);
  information->threadId = static_cast<uint32_t>(pid);
  return true;
}

uint32_t WaitForSingleObject(Handle handle, uint32_t milliseconds) {
  const std::optional<pid_t> process = portable::ProcessOf(handle);
  if (!process) return kWaitFailed;
  const pid_t pid = *process;
  const uint64_t start = portable::RealMilliseconds();
  const int pidfd = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
  uint32_t result = kWaitTimeout;
  while (true) {
    if (portable::Reap(pid)) {
      result = kWaitObject0;
      break;
    }
    const uint64_t waited = portable::RealMilliseconds() - start;
    if (milliseconds != kInfinite && waited >= milliseconds) break;
    int slice = 50;
    if (milliseconds != kInfinite)
      slice = static_cast<int>(std::min<uint64_t>(50, milliseconds - waited));
    // Without a pidfd (a kernel before 5.3) the poll only sleeps the slice.
    pollfd fd{pidfd, POLLIN, 0};
    ::poll(&fd, pidfd >= 0 ? 1 : 0, slice);
  }
  if (pidfd >= 0) ::close(pidfd);
  return result;
}

uint32_t WaitForInputIdle(Handle process, uint32_t /*milliseconds*/) {
  if (portable::ProcessOf(process)) portable::SetLastError(portable::kErrorNotGuiProcess);
  return kWaitFailed;
}

bool GetExitCodeProcess(Handle process, uint32_t* exitCode) {
  const std::optional<pid_t> pid = portable::ProcessOf(process);
  if (!pid || exitCode == nullptr) return false;
  portable::Reap(*pid);
  *exitCode = portable::Table().processes[*pid].exitCode;
  return true;
}

bool TerminateProcess(Handle process, uint32_t exitCode) {
  const std::optional<pid_t> running = portable::ProcessOf(process);
  if (!running || portable::Reap(*running)) return false;
  const pid_t pid = *running;
  portable::Table().processes[pid].exitCode = exitCode;
  ::kill(pid, SIGKILL);
  int status = 0;
  ::waitpid(pid, &status, 0);
  portable::Table().processes[pid].exited = true;
  return true;
}

bool CloseHandle(Handle handle) {
  const std::optional<pid_t> process = portable::ProcessOf(handle);
  if (!process) return false;
  const pid_t pid = *process;
  portable::Table().handles.erase(handle);
  bool stillReferenced = false;
  for (const auto& [h, p] : portable::Table().handles) stillReferenced |= p == pid;
  if (!stillReferenced) {
    if (portable::Reap(pid)) {
      portable::Table().processes.erase(pid);
    } else {
      portable::Table().orphans.insert(pid);
    }
  }
  portable::ReapOrphans();
  return true;
}

Handle AcquireMachineLock(const std::string& name, uint32_t milliseconds) {
  uint64_t hash = 1469598103934665603ull;  // FNV-1a of the name, ASCII letters in upper case
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    hash = (hash ^ byte) * 1099511628211ull;
  }
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const int length =
      std::snprintf(address.sun_path + 1, sizeof address.sun_path - 1,
                    "kestrivon-machine-lock-%016llx", static_cast<unsigned long long>(hash));
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
  const uint64_t start = portable::RealMilliseconds();
  while (true) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return 0;
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), size) == 0) {
      return static_cast<Handle>(fd) + 1;
    }
    ::close(fd);
    if (portable::RealMilliseconds() - start >= milliseconds) {
      portable::SetLastError(kWaitTimeout);
      return 0;
    }
    ::usleep(5000);
  }
}

void ReleaseMachineLock(Handle lock) {
  if (lock != 0) ::close(static_cast<int>(lock - 1));
}

}  // namespace kestrivon::platform
