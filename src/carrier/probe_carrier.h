#pragma once

#include "carrier/guarded_walk.h"
#include "carrier/reading.h"

namespace tarnel {

struct ProbeRequest {
  Path carrier;
  Key password;
  Algorithm algorithm = Algorithm::Rijndael256;
  enum class Depth { NewestEntry, WholeChain } depth = Depth::WholeChain;
  OpenedCarrier* opened = nullptr;  ///< that `carrier` is, where several probes of it follow each other
};
struct ProbeResult {
  bool found = false;
  WipedText title;  ///< of the entry that fits, stored text
};

/// Says whether an entry of the carrier fits. No model, no version gate. Yields before each entry;
/// SearchAbort stops it and stays set. Errors are asked about as "probe.error", but BadRecordNumber is
/// silent. After that one, which a file of fewer than 80 bytes gives, and after Abort, SearchBusy stays set
/// and every further probe finds nothing: callers that don't want that pass such files over.
ProbeResult ProbeCarrier(const ProbeRequest& request, Reading& reading, Dialogue& dialogue);

}  // namespace tarnel
