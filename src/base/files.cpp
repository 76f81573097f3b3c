#include "base/files.h"

#include <algorithm>

namespace tarnel {

bool FileStat::IsUntouchedSince(const FileStat& before) const {
  return IsSameFile(before) && kind == before.kind && size == before.size &&
         modifiedNanoseconds == before.modifiedNanoseconds && changedNanoseconds == before.changedNanoseconds;
}

Length File::CopyAt(Position to, File& source, Position from, Length length) {
  constexpr Length blockSize = Length{256} * 1024;
  std::vector<std::uint8_t> block(static_cast<std::size_t>(std::min(length, blockSize)));
  Length done = 0;
  while (done < length) {
    const auto wanted = static_cast<std::size_t>(std::min(length - done, blockSize));
    const std::size_t got = source.ReadAt(from + done, MutableBytes(block).first(wanted));
    WriteAt(to + done, Bytes(block).first(got));
    done += static_cast<Length>(got);
    if (got < wanted) break;
  }
  return done;
}

}  // namespace tarnel
