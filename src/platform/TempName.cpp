#include <cstdio>
#include <random>
#include <string>

#include "platform/FileSystem.h"

namespace kestrivon::platform {

std::string TempName() {
  static std::mt19937 generator{std::random_device{}()};
  std::uniform_int_distribution<unsigned> digits(0, 0xFFFFF);
  char name[16];
  std::snprintf(name, sizeof name, "rad%05X.tmp", digits(generator));
  return name;
}

}  // namespace kestrivon::platform
