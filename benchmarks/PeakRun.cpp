// peak_run FILE COMMAND...: runs COMMAND and writes its peak memory
// (ru_maxrss, KiB) to FILE; exits as COMMAND did (127 when it could not
// start). A child's ru_maxrss counts from the memory of the process that
// started it, so the benchmarks start their reference commands through
// this small program rather than from their own, larger, process.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: peak_run FILE COMMAND...\n", stderr);
    return 2;
  }
  const pid_t child = ::fork();
  if (child == 0) {
    ::execvp(argv[2], argv + 2);
    ::_exit(127);
  }
  int status = 0;
  rusage usage{};
  if (child < 0 || ::wait4(child, &status, 0, &usage) != child) return 127;
  FILE* out = std::fopen(argv[1], "w");
  if (out == nullptr || std::fprintf(out, "%ld\n", usage.ru_maxrss) < 0 || std::fclose(out) != 0) {
    return 127;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
