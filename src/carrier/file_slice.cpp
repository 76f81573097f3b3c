#include <algorithm>

#include "carrier/load_hideout.h"

namespace tarnel {

std::string ReadFileSlice(File& file, Position from, Length length) {
  const Length available = std::max<Length>(0, file.Size() - (from - Position{}));
  std::string bytes(static_cast<std::size_t>(std::min(length, available)), '\0');
  bytes.resize(file.ReadAt(from, {reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()}));
  return bytes;
}

}  // namespace tarnel
