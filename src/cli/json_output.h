#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "carrier/chain.h"
#include "cli/exit_codes.h"

namespace tarnel {

using Json = nlohmann::ordered_json;

/// An object that begins with "schema": 1.
Json JsonObject();

/// `object`[`key`] = `bytes`. Bytes that are no UTF-8 show as U+FFFD there, and stand whole, as Base64, in
/// `key`"_b64".
void PutBytes(Json& object, const std::string& key, std::string_view bytes);

/// A list of names or paths: an array of objects with the one key `name`.
Json JsonOfNames(const std::vector<std::string>& names);
Json JsonOfNames(const std::vector<Path>& paths);
/// Paths of entries, each as an object with "path".
Json JsonOfPaths(const std::vector<std::string>& paths);

/// "broken_at", "closed_by" and "damaged_entries", each only where there is something to say.
void PutFaults(Json& object, const ChainFaults& faults);

Json JsonOfFailure(const CliFailure& failure, std::string_view message);
void PutFailure(Json& object, const CliFailure& failure, std::string_view message);
Json JsonOfMessage(const char* kind, std::string_view text);

/// The object on one line, with its line end.
std::string JsonLine(const Json& object);

}  // namespace tarnel
