#pragma once

#include <functional>

#include "base/files.h"

namespace tarnel {

/// What the platform copies between two looks at the person.
inline constexpr Length kCopyPiece = Length{1} << 20;

enum class Durability { Cached, WrittenThrough };

/// Called after each block with the bytes copied so far. May throw to end the copy.
using CopyHook = std::function<void(Length)>;

/// Copies `from` into the new file `to`, which gets its permission bits, owner and group as TakeAccessOf
/// gives them, and is its maker's alone until it is complete. FileExists if `to` is taken, and then it is
/// left alone. With WrittenThrough the bytes are on the medium afterwards; the name is after
/// Files::SyncFolder. A source that changes its length meanwhile is a DeviceIo. Whatever is thrown, by the
/// hook too, no part of `to` stays.
void CopyFile(Files& files, const Path& from, const Path& to, Durability durability,
              const CopyHook& hook = {});

/// The same from a file that is open, with other permission bits; `from` is its name for messages. For a file
/// that this process has locked: see File::Lock.
void CopyFile(Files& files, File& source, const Path& from, const Path& to, mode_t mode,
              Durability durability, const CopyHook& hook = {});

}  // namespace tarnel
