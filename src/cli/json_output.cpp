#include "cli/json_output.h"

#include <algorithm>
#include <utility>

#include "base/bytes.h"
#include "carrier/stored_text.h"
#include "crypto/base64.h"

namespace tarnel {

namespace {

constexpr int kSchema = 1;

bool IsUtf8(const Json& text) {
  try {
    text.dump();
    return true;
  } catch (const Json::type_error&) {
    return false;
  }
}

std::string Base64OneLine(std::string_view bytes) {
  std::string text = Base64Encode(AsBytes(bytes));
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
  return text;
}

template <class Item, class BytesOf>
Json ArrayOf(const std::vector<Item>& items, BytesOf bytesOf) {
  Json array = Json::array();
  for (const Item& item : items) {
    Json object;
    PutBytes(object, "name", bytesOf(item));
    array.push_back(std::move(object));
  }
  return array;
}

}  // namespace

Json JsonObject() {
  Json object;
  object["schema"] = kSchema;
  return object;
}

void PutBytes(Json& object, const std::string& key, std::string_view bytes) {
  object[key] = bytes;
  if (!IsUtf8(object[key])) object[key + "_b64"] = Base64OneLine(bytes);
}

Json JsonOfNames(const std::vector<std::string>& names) {
  return ArrayOf(names, [](const std::string& name) -> std::string_view { return name; });
}

Json JsonOfPaths(const std::vector<std::string>& paths) {
  Json array = Json::array();
  for (const std::string& path : paths) {
    Json object;
    PutBytes(object, "path", path);
    array.push_back(std::move(object));
  }
  return array;
}

Json JsonOfNames(const std::vector<Path>& paths) {
  return ArrayOf(paths, [](const Path& path) -> std::string_view { return path.native(); });
}

void PutFaults(Json& object, const ChainFaults& faults) {
  if (faults.brokenAt) object["broken_at"] = faults.brokenAt->value;
  if (faults.closedBy) PutBytes(object, "closed_by", ToPlatform(*faults.closedBy));
  for (const EntryFault& entry : faults.entries) {
    Json fault;
    fault["at"] = entry.at.value;
    PutBytes(fault, "name", ToPlatform(entry.name));
    fault["reason"] = entry.fault;
    object["damaged_entries"].push_back(std::move(fault));
  }
}

Json JsonOfFailure(const CliFailure& failure, std::string_view message) {
  Json object = JsonObject();
  PutFailure(object, failure, message);
  return object;
}

void PutFailure(Json& object, const CliFailure& failure, std::string_view message) {
  Json error;
  error["code"] = static_cast<int>(failure.Code());
  error["message"] = message;
  if (failure.Number()) error["number"] = static_cast<int>(*failure.Number());
  object["error"] = std::move(error);
}

Json JsonOfMessage(const char* kind, std::string_view text) {
  Json object = JsonObject();
  object[kind]["message"] = text;
  return object;
}

std::string JsonLine(const Json& object) {
  return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tarnel
