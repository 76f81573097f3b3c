#pragma once

#include <csignal>

namespace tarnel {

/// From now on Ctrl+C, Ctrl+\, SIGTERM and SIGHUP set a flag instead of ending the process, however often
/// they come; a broken pipe and an exceeded file size limit are errors of the call that met them. SIGHUP
/// stays ignored where it was ignored at the start (nohup).
void CatchSignals();

bool CancelSignalled();

/// While it lives the caught signals wait. `Waiting` is the mask to hand to ppoll, so that none can slip in
/// between a look at the flag and the wait.
class HoldSignals {
 public:
  HoldSignals();
  ~HoldSignals();
  HoldSignals(const HoldSignals&) = delete;
  HoldSignals& operator=(const HoldSignals&) = delete;

  const sigset_t* Waiting() const { return &m_before; }

 private:
  sigset_t m_before{};
};

/// Opens the null device on each standard stream that is closed, so that no file of an operation can get its
/// number. Writing to such an output still fails.
void FillStandardStreams();

}  // namespace tarnel
