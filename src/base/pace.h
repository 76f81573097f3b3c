#pragma once

#include <chrono>
#include <future>
#include <utility>

#include "base/dialogue.h"

namespace tarnel {

/// Keeps the window alive in long work: Step() yields when the last yield is 50 ms ago, so that pieces of up
/// to 50 ms each give a yield every 100 ms at least. Cheap enough to call for every block of a few kilobytes.
class Pace {
 public:
  explicit Pace(Dialogue& dialogue) : m_dialogue(dialogue) {}

  void Step() {
    if (Clock::now() - m_last < std::chrono::milliseconds(50)) return;
    m_dialogue.Yield();
    m_last = Clock::now();
  }

 private:
  using Clock = std::chrono::steady_clock;

  Dialogue& m_dialogue;
  Clock::time_point m_last = Clock::now();
};

/// Runs `call` on a helper thread, yields every 50 ms until it has returned, and gives its result or throws
/// what it threw. For a call that can't be cut into pieces, such as File::Sync. It must touch nothing that a
/// yield can reach.
template <class Call>
auto RunYielding(Dialogue& dialogue, Call&& call) {
  auto result = std::async(std::forward<Call>(call));
  while (result.wait_for(std::chrono::milliseconds(50)) == std::future_status::timeout)
    dialogue.Yield();
  return result.get();
}

}  // namespace tarnel
