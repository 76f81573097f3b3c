#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "base/attempt.h"
#include "base/files.h"
#include "carrier/walk.h"

namespace tarnel {

/// A carrier that several walks go through one after the other: it is opened once, and what the first walk
/// has read is there for the others. After a read that has failed the next walk opens it anew. Whoever wants
/// to see what others write to it meanwhile forgets it.
struct OpenedCarrier {
  std::unique_ptr<File> file;
  std::unique_ptr<Walk> walk;  ///< through `file`
};

/// A walk through a carrier of which every step runs as a statement that the person is asked about when it
/// fails.
class GuardedWalk {
 public:
  /// Runs a statement as Attempt does: Retry runs it again, Abort throws Stop.
  using Try = std::function<Outcome(const std::function<void()>&)>;
  /// `shared`, if there is one, has to live as long.
  explicit GuardedWalk(Try attempt, OpenedCarrier* shared = nullptr)
      : m_try(std::move(attempt)), m_shared(shared) {}

  /// False where the person has ignored that it can't be opened.
  bool Open(Files& files, const Path& carrier);

  /// The next older entry, or nothing at the end, which is also where the person ignores an error.
  std::optional<EntryPlace> Next();

  /// True if the last call of Next ended at an error that was ignored.
  bool WasIgnored() const { return m_wasIgnored; }

  Walk& Entries() { return *Carrier().walk; }

 private:
  OpenedCarrier& Carrier() { return m_shared == nullptr ? m_own : *m_shared; }

  Try m_try;
  OpenedCarrier* m_shared;
  OpenedCarrier m_own;
  bool m_wasIgnored = false;
};

}  // namespace tarnel
