#pragma once

namespace tarnel {

/// From now on a write beyond the process's file size limit is an error of that write (DiskFull). Else the
/// system would end the process in the middle of it.
void SurviveFileSizeLimit();

}  // namespace tarnel
