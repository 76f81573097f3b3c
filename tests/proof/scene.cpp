#include "tests/proof/scene.h"

#include <algorithm>
#include <stdexcept>

#include "carrier/companions.h"

namespace tarnel::test {

namespace {

constexpr const char* kMine = "one";
constexpr const char* kTheirs = "two words";
constexpr const char* kFresh = "4";

bool Contains(const Entries& entries, const Entry& entry) {
  return std::find(entries.begin(), entries.end(), entry) != entries.end();
}

}  // namespace

Scene::Scene(unsigned seed) : m_dice(seed), m_bodySize(1000 + m_dice.Roll(20000)) {
  m_carrier = m_folder.Put("carrier.bin", Pattern(m_bodySize, seed));
  const auto hide = [&](const char* password, const Entry& entry) {
    m_sources.Put(entry.path, entry.content);
    const std::string top = entry.path.substr(0, entry.path.find('/'));
    m_person.Says(password, {"hide", m_carrier, m_sources / top});
    m_before[password].push_back(entry);
  };
  hide(kMine, {"a.txt", Pattern(m_dice.Roll(40000), 2)});
  hide(kTheirs, {"x.txt", Pattern(m_dice.Roll(3000), 3)});
  hide(kMine, {"b.txt", Pattern(m_dice.Roll(200), 4)});
  hide(kMine, {"docs/c.txt", Pattern(m_dice.Roll(40000), 5)});
  hide(kTheirs, {"y.txt", Pattern(m_dice.Roll(20000), 6)});
  m_bytes = ReadAll(m_carrier);
  m_person.PasswordFile(kFresh);  // its key is derived before anything forks
  AddHide("hide", kMine);
  AddHide("hide in a new hideout", kFresh);
  AddDelete();
  AddUpdate();
  AddPasswd();
}

void Scene::AddHide(const std::string& name, const std::string& password) {
  const Entries fresh = {{"n1.txt", Pattern(m_dice.Roll(40000), 7)},
                         {"n2.txt", Pattern(m_dice.Roll(3000), 8)}};
  Command command{.name = name,
                  .password = password,
                  .words = {"hide", m_carrier, "--originals", "destroy"},
                  .outcomes = {},
                  .originals = fresh};
  for (const Entry& entry : fresh)
    command.words.push_back(m_sources / entry.path);
  // Which of the two comes first is the command's own choice.
  for (const std::vector<std::size_t>& rows : {std::vector<std::size_t>{0}, {1}, {0, 1}, {1, 0}}) {
    Model outcome = m_before;
    for (const std::size_t row : rows)
      outcome[password].push_back(fresh[row]);
    command.outcomes.push_back(outcome);
  }
  m_commands.push_back(command);
}

void Scene::AddDelete() {
  Model without = m_before;
  std::erase_if(without[kMine], [](const Entry& entry) { return entry.path != "b.txt"; });
  m_commands.push_back({.name = "delete",
                        .password = kMine,
                        .words = {"delete", m_carrier, "a.txt", "docs/c.txt"},
                        .outcomes = {without}});
}

void Scene::AddUpdate() {
  const Entry fresh{"b.txt", Pattern(m_dice.Roll(40000), 9)};
  Model updated = m_before;
  std::erase_if(updated[kMine], [](const Entry& entry) { return entry.path == "b.txt"; });
  updated[kMine].push_back(fresh);
  m_commands.push_back({.name = "update",
                        .password = kMine,
                        .words = {"update", m_carrier, "b.txt", m_sources.Put("edited", fresh.content)},
                        .outcomes = {updated}});
}

void Scene::AddPasswd() {
  Model moved = m_before;
  moved[kFresh] = moved[kMine];
  moved.erase(kMine);
  m_commands.push_back({.name = "passwd",
                        .password = kMine,
                        .words = {"passwd", m_carrier, "--new-password-file", m_person.PasswordFile(kFresh)},
                        .outcomes = {moved}});
}

void Scene::Reset(const Command& command) {
  for (const std::string& name : m_folder.Names())
    std::filesystem::remove(m_folder / name);
  WriteAll(m_carrier, m_bytes);
  for (const Entry& original : command.originals)
    m_sources.Put(original.path, original.content);
}

void Scene::Run(const Command& command, const Runner& runner) const {
  runner(m_person.Words(command.password, command.words));
}

void Scene::Recover(const Command& command, const Runner& runner) {
  for (const std::string& password : {std::string(kMine), command.password})
    if (HasLeftovers()) runner(m_person.Words(password, {"recover", m_carrier}));
  if (HasLeftovers()) throw std::runtime_error(command.name + ": recover leaves a copy beside the carrier");
}

bool Scene::HasLeftovers() {
  return !LeftoversBeside(m_carrier, m_files).empty();
}

Model Scene::Found() {
  Model found;
  for (const char* password : {kMine, kTheirs, kFresh})
    if (const Entries entries = m_person.Reads(m_carrier, password); !entries.empty())
      found[password] = entries;
  return found;
}

void Scene::Judge(const Command& command, const std::string& when) {
  const auto must = [&](bool holds, const char* what) {
    if (!holds) throw std::runtime_error(command.name + ", " + when + ": not so: " + what);
  };
  Model found = Found();
  DropUnfinished(command, found);
  const auto& outcomes = command.outcomes;
  must(found == m_before || std::find(outcomes.begin(), outcomes.end(), found) != outcomes.end(),
       "every hideout is as before or as after");
  must(ReadAll(m_carrier).starts_with(m_bytes.substr(0, m_bodySize)), "the carrier has its own bytes");
  const auto hideout = found.find(command.password);
  for (const Entry& original : command.originals)
    must(Stands(original) || (hideout != found.end() && Contains(hideout->second, original)),
         "an original is there or hidden");
}

/// An entry that the interrupted hide has left half written is nothing lost: its original must stand.
void Scene::DropUnfinished(const Command& command, Model& found) const {
  std::erase_if(found[command.password], [&](const Entry& entry) {
    const auto isIt = [&](const Entry& original) { return original.path == entry.path; };
    return entry.content == "(damaged)" &&
           std::any_of(command.originals.begin(), command.originals.end(), isIt);
  });
  if (found[command.password].empty()) found.erase(command.password);
}

void Scene::JudgeFinished(const Command& command) {
  Judge(command, "undisturbed");
  if (Found() == m_before) throw std::runtime_error(command.name + " does nothing");
}

bool Scene::Stands(const Entry& original) const {
  const Path path = m_sources / original.path;
  return std::filesystem::exists(path) && ReadAll(path) == original.content;
}

std::vector<Path> Scene::AllFiles() const {
  std::vector<Path> files;
  for (const TempFolder* folder : {&m_folder, &m_sources})
    for (const std::string& name : folder->Names())
      if (std::filesystem::is_regular_file(*folder / name)) files.push_back(*folder / name);
  return files;
}

int RunHere(const std::vector<std::string>& words, Files& files) {
  return RunAgreeing(words, files).code;
}

}  // namespace tarnel::test
