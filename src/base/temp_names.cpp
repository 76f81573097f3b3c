#include "base/temp_names.h"

#include <stdlib.h>
#include <sys/random.h>

#include <array>
#include <cerrno>
#include <cstdint>

namespace tarnel {

namespace {

constexpr std::size_t kRandomLength = 16;

void FillRandom(MutableBytes bytes) {
  ssize_t got = 0;
  do {
    got = ::getrandom(bytes.data(), bytes.size(), 0);  // up to 256 bytes come whole or not at all
  } while (got < 0 && errno == EINTR);
  if (got < 0) throw ErrnoError(errno, "read", "random numbers of the system");
}

}  // namespace

std::string RandomName(std::string_view prefix) {
  constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz234567";
  std::array<std::uint8_t, kRandomLength> random{};
  FillRandom(random);
  std::string name(prefix);
  for (const std::uint8_t byte : random)
    name += letters[byte % letters.size()];
  return name;
}

Path SystemTempFolder() {
  const char* named = ::getenv("TMPDIR");
  return named != nullptr && *named == '/' ? named : "/tmp";
}

Path MakeTempFolder(Files& files, std::string_view prefix) {
  Path path = SystemTempFolder() / RandomName(prefix);
  files.CreateFolder(path, 0700);
  return path;
}

}  // namespace tarnel
