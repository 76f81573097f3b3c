#include "cli/choice.h"

#include "cli/given_input.h"

namespace tarnel {

EntryWish WishOf(const std::vector<std::string>& named, const ChoiceOptions& choice) {
  EntryWish wish{.named = named, .excluded = choice.exclude};
  if (!choice.filesFrom) return wish;
  for (std::string& name : ReadNameList(*choice.filesFrom))
    wish.named.push_back(std::move(name));
  if (wish.named.empty()) throw CliFailure(ExitCode::Usage, "--files-from names nothing");
  return wish;
}

std::vector<std::string> PathsOf(const std::vector<MirrorRow>& rows, const std::vector<std::size_t>& chosen) {
  std::vector<std::string> paths;
  for (const std::size_t row : NewestOf(rows, chosen))
    paths.push_back(PathOfEntry(rows[row]));
  return paths;
}

void ShowChoice(const std::vector<std::string>& paths, const char* member, Surroundings& around) {
  around.report[member] = JsonOfPaths(paths);
  if (around.options.json) return;
  for (const std::string& path : paths)
    around.terminal.Write(ListedPath(path) + "\n");
}

std::string SentenceOf(const std::vector<MirrorRow>& rows, const std::vector<std::size_t>& chosen) {
  constexpr std::size_t kMost = 10;
  const auto versions = VersionsOf(rows, chosen);
  const std::vector<std::string> paths = PathsOf(rows, chosen);
  std::string text;
  for (std::size_t i = 0; i < paths.size() && i < kMost; ++i) {
    const std::size_t count = versions.at(paths[i]);
    text += (i == 0 ? "" : ", ") + ListedPath(paths[i]);
    if (count > 1) text += " (" + std::to_string(count) + " versions)";
  }
  return text + (paths.size() > kMost ? " and " + std::to_string(paths.size() - kMost) + " more" : "");
}

}  // namespace tarnel
