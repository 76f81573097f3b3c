#pragma once

#include "base/files.h"

class QMimeData;

namespace tarnel {

/// The first file of a drop, byte for byte (RFC 8089, RFC 2483); empty if that is no file of this machine.
Path FirstDroppedPath(const QMimeData& data);

}  // namespace tarnel
