#include "carrier/guarded_walk.h"

#include <utility>

namespace tarnel {

bool GuardedWalk::Open(Files& files, const Path& carrier) {
  if (Carrier().walk && Carrier().walk->Rewind()) return true;
  return m_try([&] {
           Carrier() = {};
           auto file = files.OpenToRead(carrier);
           auto walk = std::make_unique<Walk>(*file, carrier);
           if (m_shared != nullptr) walk->RememberTheWay();
           Carrier() = {.file = std::move(file), .walk = std::move(walk)};
         }) == Outcome::Done;
}

std::optional<EntryPlace> GuardedWalk::Next() {
  std::optional<EntryPlace> place;
  m_wasIgnored = m_try([&] { place = Entries().Next(); }) == Outcome::Ignored;
  // The outcome first: after a throw g++ 12 may leave anything in `place`.
  if (m_wasIgnored) return std::nullopt;
  return place;
}

}  // namespace tarnel
