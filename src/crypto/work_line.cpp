#include "crypto/work_line.h"

#include <sched.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <system_error>
#include <utility>

namespace tarnel {
namespace {

/// Threads that start meanwhile take no signals, so that those still interrupt the thread that waits for
/// them.
class NoSignals {
 public:
  NoSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_before);
  }
  ~NoSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
  NoSignals(const NoSignals&) = delete;
  NoSignals& operator=(const NoSignals&) = delete;

 private:
  sigset_t m_before;
};

}  // namespace

std::size_t WorkerLimit() {
  constexpr std::size_t kMost = 8;
  // hardware_concurrency opens a file to count the cores, and counts those of others too.
  cpu_set_t allowed;
  const bool isKnown = sched_getaffinity(0, sizeof allowed, &allowed) == 0;
  const std::size_t cores =
      isKnown ? static_cast<std::size_t>(CPU_COUNT(&allowed)) : std::thread::hardware_concurrency();
  return cores < 2 ? 0 : std::min(cores, kMost);
}

WorkLine::WorkLine(std::size_t workers, std::size_t slots, Work work)
    : m_workers(workers), m_work(std::move(work)), m_outcomes(slots) {
  m_threads.reserve(workers);
}

WorkLine::~WorkLine() {
  {
    const std::scoped_lock lock(m_mutex);
    m_ends = true;
  }
  m_hasWork.notify_all();
  for (std::thread& thread : m_threads)
    thread.join();
}

void WorkLine::Put() {
  std::unique_lock lock(m_mutex);
  OutcomeOf(m_put) = {};
  ++m_put;
  const bool needsThread = m_put - m_begun > m_idle && m_threads.size() < m_workers;
  lock.unlock();
  if (needsThread) StartThread();
  if (!m_threads.empty()) return m_hasWork.notify_one();
  lock.lock();
  Perform(m_workers, lock);
}

void WorkLine::Take(const std::function<void()>& meanwhile) {
  std::unique_lock lock(m_mutex);
  Outcome& outcome = OutcomeOf(m_taken);
  const auto isDone = [&] { return outcome.isDone; };
  while (meanwhile && !m_isDone.wait_for(lock, std::chrono::milliseconds(20), isDone)) {
    lock.unlock();
    meanwhile();
    lock.lock();
  }
  m_isDone.wait(lock, isDone);
  ++m_taken;
  if (const std::exception_ptr error = std::exchange(outcome.error, nullptr)) std::rethrow_exception(error);
}

void WorkLine::StartThread() {
  const NoSignals noSignals;
  try {
    m_threads.emplace_back([this, worker = m_threads.size()] { Run(worker); });
  } catch (const std::system_error&) {  // there is no thread to be had
    m_workers = m_threads.size();
  }
}

void WorkLine::Run(std::size_t worker) {
  std::unique_lock lock(m_mutex);
  for (;;) {
    ++m_idle;
    m_hasWork.wait(lock, [this] { return m_ends || m_begun < m_put; });
    --m_idle;
    if (m_ends) return;
    Perform(worker, lock);
  }
}

/// The oldest item that nobody began. Unlocks while it is worked on.
void WorkLine::Perform(std::size_t worker, std::unique_lock<std::mutex>& lock) {
  Outcome& outcome = OutcomeOf(m_begun);
  const std::size_t item = m_begun++;
  lock.unlock();
  std::exception_ptr error;
  try {
    m_work(worker, item);
  } catch (...) {
    error = std::current_exception();
  }
  lock.lock();
  outcome = {true, std::move(error)};
  m_isDone.notify_one();
}

}  // namespace tarnel
