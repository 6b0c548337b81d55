// A small program the process and file-locking tests start:
//   exit N             ends with exit code N
//   sleep MS [N]       sleeps, then ends with N
//   hold PATH MS       opens PATH exclusively, writes PATH.ready, sleeps
//   args OUT ARG...    writes each ARG on a line of OUT
//   late MS PATH       sleeps, then creates PATH
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace {

void SleepFor(long ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

void Touch(const std::string& path) {
  if (FILE* f = std::fopen(path.c_str(), "wb")) std::fclose(f);
}

int Hold(const std::string& path, long ms) {
#ifdef _WIN32
  HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return 2;
  Touch(path + ".ready");
  SleepFor(ms);
  CloseHandle(file);
#else
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT, 0666);
  if (fd < 0 || flock(fd, LOCK_EX) != 0) return 2;
  Touch(path + ".ready");
  SleepFor(ms);
  close(fd);
#endif
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 100;
  const std::string mode = argv[1];
  if (mode == "exit" && argc >= 3) return std::atoi(argv[2]);
  if (mode == "sleep" && argc >= 3) {
    SleepFor(std::atol(argv[2]));
    return argc >= 4 ? std::atoi(argv[3]) : 0;
  }
  if (mode == "hold" && argc >= 4) return Hold(argv[2], std::atol(argv[3]));
  if (mode == "late" && argc >= 4) {
    SleepFor(std::atol(argv[2]));
    Touch(argv[3]);
    return 0;
  }
  if (mode == "args" && argc >= 3) {
    FILE* out = std::fopen(argv[2], "wb");
    if (out == nullptr) return 3;
    for (int i = 3; i < argc; ++i) std::fprintf(out, "%s\n", argv[i]);
    std::fclose(out);
    return 0;
  }
  return 101;
}
