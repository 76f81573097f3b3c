#include "base/core_dumps.h"

#include <sys/prctl.h>
#include <sys/resource.h>

namespace tarnel {

bool ForbidCoreDumps(Dumpable dumpable) {
  constexpr rlimit one = {1, 1};
  const bool limited = ::setrlimit(RLIMIT_CORE, &one) == 0;
  const bool hidden = dumpable == Dumpable::Kept || ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) == 0;
  return limited && hidden;
}

}  // namespace tarnel
