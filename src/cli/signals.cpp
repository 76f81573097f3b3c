#include "cli/signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>

#include "base/size_limit.h"

namespace tarnel {

namespace {

constexpr int kCaught[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

std::atomic<bool> g_cancelled{false};
static_assert(std::atomic<bool>::is_always_lock_free, "the handler may touch nothing that locks");

void OnSignal(int) {
  g_cancelled.store(true);
}

sigset_t CaughtSet() {
  sigset_t set;
  sigemptyset(&set);
  for (const int number : kCaught)
    sigaddset(&set, number);
  return set;
}

bool IsIgnored(int number) {
  struct sigaction now {};
  return sigaction(number, nullptr, &now) == 0 && now.sa_handler == SIG_IGN;
}

}  // namespace

void CatchSignals() {
  struct sigaction action {};
  action.sa_handler = OnSignal;
  action.sa_mask = CaughtSet();
  for (const int number : kCaught) {
    if (number != SIGHUP || !IsIgnored(number)) sigaction(number, &action, nullptr);
  }
  std::signal(SIGPIPE, SIG_IGN);
  SurviveFileSizeLimit();
}

bool CancelSignalled() {
  return g_cancelled.load();
}

HoldSignals::HoldSignals() {
  const sigset_t caught = CaughtSet();
  pthread_sigmask(SIG_BLOCK, &caught, &m_before);
}

HoldSignals::~HoldSignals() {
  pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void FillStandardStreams() {
  for (int stream = 0; stream <= 2; ++stream) {
    if (fcntl(stream, F_GETFD) != -1) continue;
    const int got = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    if (got != stream) std::abort();
  }
}

}  // namespace tarnel
