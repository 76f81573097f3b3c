#include "tests/proof/person.h"

#include <algorithm>

#include "crypto/base64.h"
#include "tests/cli/cli_bench.h"
#include "tests/support/held_key.h"

namespace tarnel::test {

namespace {

class AgreeingTerminal : public ScriptedTerminal {
 public:
  explicit AgreeingTerminal(std::size_t cancelAt) : m_cancelAt(cancelAt) { canAsk = true; }
  std::optional<std::string> ReadLine(std::string_view) override {
    return ++m_answers <= kPatience ? std::optional<std::string>("y") : std::nullopt;
  }
  bool CancelRequested() const override { return m_cancelAt > 0 && ++m_looks >= m_cancelAt; }

 private:
  static constexpr int kPatience = 20;
  int m_answers = 0;
  std::size_t m_cancelAt;
  mutable std::size_t m_looks = 0;
};

std::string TextIn(const nlohmann::json& object, const std::string& key) {
  if (!object.contains(key + "_b64")) return object.at(key);
  return Base64Decode(object.at(key + "_b64").get<std::string>());
}

}  // namespace

Said RunAgreeing(const std::vector<std::string>& words, Files& files, std::size_t cancelAt) {
  AgreeingTerminal terminal(cancelAt);
  const int code = RunCli(words, terminal, files, [](const char*) { return std::nullopt; });
  return {.code = code, .out = std::move(terminal.out), .err = std::move(terminal.err)};
}

Said Person::Says(const std::string& password, const std::vector<std::string>& words) const {
  return RunAgreeing(Words(password, words), m_files, m_cancelAt);
}

Path Person::PasswordFile(const std::string& password) const {
  const Path path = m_passwords / password;
  if (!std::filesystem::exists(path)) WriteAll(path, password, 0600);
  HeldKey(password).Prepare([] {});
  return path;
}

std::vector<std::string> Person::Words(const std::string& password,
                                       const std::vector<std::string>& rest) const {
  std::vector<std::string> words = {"--quiet", "--password-file", PasswordFile(password)};
  words.insert(words.end(), rest.begin(), rest.end());
  return words;
}

Entries Person::Reads(const Path& carrier, const std::string& password) const {
  const Said listed = Says(password, {"list", carrier, "--json"});
  if (listed.out.empty()) return {};
  const TempFolder target;
  Says(password, {"extract", carrier, "--to", target.Where(), "--on-error", "ignore"});
  const std::map<std::string, std::string> extracted = FilesBelow(target.Where());
  Entries entries;
  const nlohmann::json hideout = nlohmann::json::parse(listed.out);
  if (!hideout.contains("files")) return {};
  for (const auto& file : hideout.at("files")) {
    const std::string folder = TextIn(file, "folder");
    const std::string path = (folder.empty() ? "" : folder + "/") + TextIn(file, "name");
    entries.push_back({path, extracted.contains(path) ? extracted.at(path) : "(damaged)"});
  }
  std::reverse(entries.begin(), entries.end());
  return entries;
}

std::map<std::string, std::string> FilesBelow(const Path& folder) {
  std::map<std::string, std::string> files;
  if (!std::filesystem::exists(folder)) return files;
  for (const auto& file : std::filesystem::recursive_directory_iterator(folder))
    if (file.is_regular_file()) files[file.path().lexically_relative(folder).native()] = ReadAll(file.path());
  return files;
}

}  // namespace tarnel::test
