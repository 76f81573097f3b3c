#include "base/size_limit.h"

#include <csignal>

namespace tarnel {

void SurviveFileSizeLimit() {
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace tarnel
