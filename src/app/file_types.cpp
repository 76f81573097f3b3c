#include "app/file_types.h"

#include <algorithm>
#include <utility>

#include "base/utf8.h"
#include "carrier/stored_text.h"

namespace tarnel {

namespace {

constexpr int kStandByImage = 2;
constexpr int kFirstTypeImage = 4;

std::string LowerCase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

std::string TypeKey(const std::string& name) {
  const std::string lower = LowerCase(name);
  if (lower == "setup.exe" || lower == "install.exe") return "setup";
  const std::size_t point = lower.rfind('.');
  return point == std::string::npos ? std::string() : lower.substr(point + 1);
}

std::string CutToLimit(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size()) {
    const std::size_t next = std::max<std::size_t>(FirstUtf8Character(text.substr(length)).length, 1);
    if (length + next > kTypeTextLimit) break;
    length += next;
  }
  return std::string(text.substr(0, length));
}

}  // namespace

FileTypes::FileTypes(std::function<std::string(const std::string& name)> typeTextOf)
    : m_typeTextOf(std::move(typeTextOf)) {}

FileTypes::Type FileTypes::Of(std::string_view storedName) {
  const std::string name = ToPlatform(storedName);
  const std::string key = TypeKey(name);
  if (const auto known = m_types.find(key); known != m_types.end()) return known->second;
  Type type{kStandByImage, CutToLimit(m_typeTextOf(name))};
  if (key.empty() || type.text.empty()) return type;
  type.icon = kFirstTypeImage + static_cast<int>(m_keys.size());
  m_keys.push_back(key);
  m_types.emplace(key, type);
  return type;
}

}  // namespace tarnel
