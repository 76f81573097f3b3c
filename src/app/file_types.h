#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarnel {

/// The longest type text, in bytes.
inline constexpr std::size_t kTypeTextLimit = 80;

/// The image list of the tree and the lists. Keys are extensions in the platform's bytes with ASCII letters
/// in lower case, or "setup" for the names setup.exe and install.exe.
class FileTypes {
 public:
  /// `typeTextOf` names the type of a file name in the platform's bytes, such as "PNG image"; it touches no
  /// file. What is longer than kTypeTextLimit is cut.
  explicit FileTypes(std::function<std::string(const std::string& name)> typeTextOf);

  struct Type {
    int icon;
    std::string text;
  };
  /// Image 2 is the stand-by, for names without extension and where there is no type text; a key not seen
  /// before gets the next index, in the order of their coming.
  Type Of(std::string_view storedName);
  /// Keys in the order of their index, from 4 on (1 to 3 are carrier, folder or stand-by, open folder).
  const std::vector<std::string>& Keys() const { return m_keys; }

 private:
  std::function<std::string(const std::string&)> m_typeTextOf;
  std::vector<std::string> m_keys;
  std::map<std::string, Type, std::less<>> m_types;
};

}  // namespace tarnel
