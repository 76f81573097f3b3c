#pragma once

#include <vector>

#include "base/dialogue.h"
#include "search/search_folder.h"

namespace tarnel {

/// Id "search.no-password": a search was started without a password.
Question SearchWithoutPassword();

/// Id "search.not-searched": what could not be read, and why, in a list.
Question NotSearchedMessage(const std::vector<NotSearched>& places);

}  // namespace tarnel
