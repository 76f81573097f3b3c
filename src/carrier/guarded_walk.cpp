#include "carrier/guarded_walk.h"

namespace tarnel {

bool GuardedWalk::Open(Files& files, const Path& carrier) {
  return m_try([&] {
           m_file = files.OpenToRead(carrier);
           m_walk = std::make_unique<Walk>(*m_file, carrier);
         }) == Outcome::Done;
}

std::optional<EntryPlace> GuardedWalk::Next() {
  std::optional<EntryPlace> place;
  m_wasIgnored = m_try([&] { place = m_walk->Next(); }) == Outcome::Ignored;
  // The outcome first: after a throw g++ 12 may leave anything in `place`.
  if (m_wasIgnored) return std::nullopt;
  return place;
}

}  // namespace tarnel
