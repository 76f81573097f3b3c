#pragma once

#include "base/dialogue.h"

namespace tarnel {

/// Id "search.no-password": a search was started without a password.
Question SearchWithoutPassword();

}  // namespace tarnel
