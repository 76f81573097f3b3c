#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "base/attempt.h"
#include "base/files.h"
#include "carrier/walk.h"

namespace tarnel {

/// A walk through a carrier of which every step runs as a statement that the person is asked about when it
/// fails.
class GuardedWalk {
 public:
  /// Runs a statement as Attempt does: Retry runs it again, Abort throws Stop.
  using Try = std::function<Outcome(const std::function<void()>&)>;
  explicit GuardedWalk(Try attempt) : m_try(std::move(attempt)) {}

  /// False where the person has ignored that it can't be opened.
  bool Open(Files& files, const Path& carrier);

  /// The next older entry, or nothing at the end, which is also where the person ignores an error.
  std::optional<EntryPlace> Next();

  /// True if the last call of Next ended at an error that was ignored.
  bool WasIgnored() const { return m_wasIgnored; }

  Walk& Entries() { return *m_walk; }

 private:
  Try m_try;
  std::unique_ptr<File> m_file;
  std::unique_ptr<Walk> m_walk;
  bool m_wasIgnored = false;
};

}  // namespace tarnel
