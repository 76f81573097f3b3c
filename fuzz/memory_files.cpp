#include "fuzz/memory_files.h"

#include <algorithm>

#include "fuzz/input.h"

namespace tarnel::fuzz {

void Refuse() {
  throw Violation("broken: reading a carrier only reads the carrier");
}

namespace {

class MemoryFile : public File {
 public:
  MemoryFile(const MemoryCarrier& carrier, std::size_t readLimit)
      : m_carrier(carrier), m_readLimit(readLimit) {}

  std::size_t ReadAt(Position from, MutableBytes into) override;
  FileStat Stat() override { return {.size = m_carrier.Size()}; }
  void Close() override {}

  void WriteAt(Position, Bytes) override { Refuse(); }
  void Truncate(Length) override { Refuse(); }
  void SetMode(mode_t) override { Refuse(); }
  void Sync() override { Refuse(); }
  void Lock() override { Refuse(); }

 private:
  const MemoryCarrier& m_carrier;
  std::size_t m_readLimit;
};

std::size_t MemoryFile::ReadAt(Position from, MutableBytes into) {
  if (from < Position{}) throw Error(ErrorNumber::BadRecordNumber, "cannot read before the file");
  Require(into.size() <= m_readLimit, "no read is larger than an entry allows");
  const Length at = std::min(from - Position{}, m_carrier.Size());
  const auto count =
      static_cast<std::size_t>(std::min(static_cast<Length>(into.size()), m_carrier.Size() - at));
  const auto own =
      static_cast<std::size_t>(std::clamp<Length>(m_carrier.body - at, 0, static_cast<Length>(count)));
  std::fill_n(into.begin(), own, std::uint8_t{0});
  if (own == count) return count;
  const auto begin = static_cast<std::size_t>(std::max<Length>(at - m_carrier.body, 0));
  std::copy_n(AsBytes(m_carrier.tail).begin() + static_cast<std::ptrdiff_t>(begin), count - own,
              into.begin() + static_cast<std::ptrdiff_t>(own));
  return count;
}

}  // namespace

std::unique_ptr<File> MemoryFiles::OpenToRead(const Path&) {
  return std::make_unique<MemoryFile>(m_carrier, m_readLimit);
}

}  // namespace tarnel::fuzz
