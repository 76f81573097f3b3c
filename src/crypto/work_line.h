#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tarnel {

/// How many threads may work on one file: as many as the process may use cores, 8 at most; none where that
/// is one core.
std::size_t WorkerLimit();

/// Items that are worked on side by side and come out in the order in which they went in.
///
/// The line knows their numbers only, which count from 0. Between Put and Take the item belongs to the line.
/// Threads are started one by one, when items wait; they take no signals, and end with the line. Where no
/// thread can be had, Put does the work itself. A line is used by one thread, and holds nothing of the
/// process: a fork leaves nothing behind in the child.
class WorkLine {
 public:
  /// Works on an item. No two calls at a time have the same `worker`, a number up to the constructor's
  /// `workers` inclusive. What it throws comes out of Take.
  using Work = std::function<void(std::size_t worker, std::size_t item)>;

  /// Never more than `slots` items may be in the line.
  WorkLine(std::size_t workers, std::size_t slots, Work work);
  /// Waits for the work that has begun; what nobody began is dropped.
  ~WorkLine();
  WorkLine(const WorkLine&) = delete;
  WorkLine& operator=(const WorkLine&) = delete;

  /// The next item goes in.
  void Put();
  /// The oldest item comes out, as soon as it is done; until then `meanwhile` runs every 20 ms. Throws what
  /// its work threw.
  void Take(const std::function<void()>& meanwhile = nullptr);

 private:
  struct Outcome {
    bool isDone = false;
    std::exception_ptr error;
  };

  void StartThread();
  void Run(std::size_t worker);
  void Perform(std::size_t worker, std::unique_lock<std::mutex>& lock);
  Outcome& OutcomeOf(std::size_t item) { return m_outcomes[item % m_outcomes.size()]; }

  std::size_t m_workers;
  const Work m_work;
  std::vector<std::thread> m_threads;
  std::mutex m_mutex;  ///< for all that follows
  std::condition_variable m_hasWork;
  std::condition_variable m_isDone;
  std::vector<Outcome> m_outcomes;
  std::size_t m_put = 0;
  std::size_t m_begun = 0;
  std::size_t m_taken = 0;
  std::size_t m_idle = 0;
  bool m_ends = false;
};

}  // namespace tarnel
