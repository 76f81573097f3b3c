#include "tools/soak/model.h"

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>

#include "crypto/algorithm.h"
#include "tests/proof/scene.h"

namespace tarnel::test {

namespace {

constexpr int kCancelled = 130;

using Contents = std::map<std::string, std::string>;

/// Few, for each costs one key derivation per process.
const std::array<std::string, 5> kPasswords = {"one", "two words",
                                               "dr\xc3\xbc"
                                               "ben",
                                               "4", "a much longer fifth"};

const std::array<std::string, 5> kFolders = {"", "docs/", "docs/old/", "a > b\\c/", "\xff/"};
const std::array<std::string, 6> kNames = {"a.txt",        "b",      "?Fls=<5>", "line\nbreak",
                                           "\xd0\xb6.bin", ".hidden"};

const std::array<std::size_t, 12> kSizes = {0, 1, 16, 79, 80, 1000, 14999, 15000, 15001, 30000, 45017, 70000};
const std::array<std::size_t, 8> kBodySizes = {0, 1, 78, 79, 80, 81, 1000, 40000};

template <class Choices>
const auto& AnyOf(const Choices& choices, Dice& dice) {
  return choices[dice.Roll(choices.size())];
}

void Erase(Entries& entries, const std::string& path) {
  std::erase_if(entries, [&](const Entry& entry) { return entry.path == path; });
}

class Sequence {
 public:
  explicit Sequence(unsigned seed)
      : m_seed(seed),
        m_dice(seed),
        m_body(Pattern(AnyOf(kBodySizes, m_dice), seed)),
        m_carrier(m_folder.Put("carrier.bin", m_body)) {}

  void Run(int steps) {
    for (m_step = 1; m_step <= steps; ++m_step) {
      Step();
      Check();
    }
  }

 private:
  void Step() {
    if (m_model.empty()) return Hide();
    switch (m_dice.Roll(9)) {
      case 0:
        return Delete();
      case 1:
        return Update();
      case 2:
        return ChangePassword();
      case 3:
        return ExtractOne();
      case 4:
        return Salvage();
      case 5:
        return DamageAndRecover();
      default:
        return Hide();
    }
  }

  void Hide() {
    const std::string password = AnyPassword();
    Entries now = m_model.contains(password) ? m_model[password] : Entries{};
    Entries added;
    for (std::size_t count = 1 + m_dice.Roll(3); count > 0; --count)
      if (const std::string path = FreePath(now); !path.empty()) {
        added.push_back({path, Content()});
        now.push_back(added.back());
      }
    if (added.empty()) return;
    const TempFolder sources;
    std::vector<std::string> words = {"hide", m_carrier};
    for (const Entry& entry : added)
      sources.Put(entry.path, entry.content);
    for (const std::string& top : TopsOf(added))
      words.push_back(sources / top);
    if (m_dice.OneIn(2)) words.push_back("--compress");
    if (m_dice.OneIn(4)) words.insert(words.end(), {"--originals", "destroy"});
    if (!m_model.contains(password))
      words.insert(words.end(), {"--algorithm", AlgorithmName(AnyOf(OfferedAlgorithms(), m_dice).algorithm)});
    if (IsDone(password, words)) Add(password, added);
  }

  /// The order in which the files of one command come is the command's own choice.
  void Add(const std::string& password, Entries added) {
    Entries& all = m_model[password];
    const Entries found = m_person.Reads(m_carrier, password);
    for (std::size_t i = all.size(); i < found.size(); ++i)
      if (const auto entry = std::find(added.begin(), added.end(), found[i]); entry != added.end()) {
        all.push_back(*entry);
        added.erase(entry);
      }
    Must(added.empty(), "all that was hidden is there");
  }

  void Delete() {
    const std::string password = AnyHideout();
    std::vector<std::string> words = {"delete", m_carrier};
    const bool all = m_dice.OneIn(6);
    Entries kept;
    for (const Entry& entry : m_model[password]) {
      if (all || m_dice.OneIn(3))
        words.push_back(entry.path);
      else
        kept.push_back(entry);
    }
    if (words.size() == 2 || !IsDone(password, words)) return;
    m_model[password] = kept;
    if (kept.empty()) m_model.erase(password);
  }

  void Update() {
    const std::string password = AnyHideout();
    const Entry fresh{AnyOf(m_model[password], m_dice).path, Content()};
    const TempFolder sources;
    if (!IsDone(password, {"update", m_carrier, fresh.path, sources.Put("fresh", fresh.content)})) return;
    Erase(m_model[password], fresh.path);
    m_model[password].push_back(fresh);
  }

  void ChangePassword() {
    const std::string from = AnyHideout();
    const std::string to = m_dice.OneIn(4) ? from : UnusedPassword();
    if (to.empty() || !IsDone(from, {"passwd", m_carrier, "--new-password-file", m_person.PasswordFile(to)}))
      return;
    Entries moved = std::move(m_model[from]);
    m_model.erase(from);
    m_model[to] = std::move(moved);
  }

  void ExtractOne() {
    const std::string password = AnyHideout();
    const Entry& entry = AnyOf(m_model[password], m_dice);
    const TempFolder target;
    if (IsDone(password, {"extract", m_carrier, entry.path, "--to", target.Where()}))
      Must(FilesBelow(target.Where()) == Contents{{entry.path, entry.content}},
           "the file extracted by itself is the one hidden");
  }

  void Salvage() {
    const std::string password = AnyHideout();
    const TempFolder target;
    if (!IsDone(password, {"salvage", m_carrier, "--to", target.Where()})) return;
    Contents all;
    for (const Entry& entry : m_model[password])
      all[entry.path] = entry.content;
    Must(FilesBelow(target.Where()) == all, "salvage brings all and nothing else");
  }

  /// Bytes behind the newest entry, or a byte of its length fields altered; recover mends either.
  void DamageAndRecover() {
    const std::string password = AnyHideout();
    std::string bytes = ReadAll(m_carrier);
    const std::string whole = bytes;
    if (m_dice.OneIn(2))
      bytes += Pattern(1 + m_dice.Roll(300), static_cast<unsigned>(m_dice.Roll(1000)));
    else
      bytes.at(bytes.size() - 40 + m_dice.Roll(20)) ^= 1;
    WriteAll(m_carrier, bytes);
    if (!IsDone(password, {"recover", "--yes", m_carrier})) return WriteAll(m_carrier, whole);
    if (!std::filesystem::exists(m_folder / "carrier.bin.old")) return;
    Must(ReadAll(m_folder / "carrier.bin.old") == bytes, "the old carrier is kept");
    std::filesystem::remove(m_folder / "carrier.bin.old");
  }

  void Check() {
    for (const std::string& password : kPasswords) {
      const Entries expected = m_model.contains(password) ? m_model[password] : Entries{};
      Must(m_person.Reads(m_carrier, password) == expected, "all entries are there under " + password);
    }
    const std::string bytes = ReadAll(m_carrier);
    Must(bytes.starts_with(m_body), "the carrier begins with its own bytes");
    Must(!m_model.empty() || bytes.size() == m_body.size(), "without entries the carrier is what it was");
    Must(m_folder.Names().size() == 1, "nothing lies beside the carrier");
  }

  void Must(bool holds, const std::string& what) const {
    if (holds) return;
    throw std::runtime_error("not so: " + what + "; seed " + std::to_string(m_seed) + ", step " +
                             std::to_string(m_step) + ": " + m_doing);
  }

  std::string AnyPassword() { return AnyOf(kPasswords, m_dice); }

  std::string AnyHideout() {
    return std::next(m_model.begin(), static_cast<std::ptrdiff_t>(m_dice.Roll(m_model.size())))->first;
  }

  std::string UnusedPassword() {
    for (const std::string& password : kPasswords)
      if (!m_model.contains(password)) return password;
    return {};
  }

  /// Empty if the one drawn is taken.
  std::string FreePath(const Entries& taken) {
    const std::string path = AnyOf(kFolders, m_dice) + AnyOf(kNames, m_dice);
    const bool isTaken =
        std::any_of(taken.begin(), taken.end(), [&](const Entry& entry) { return entry.path == path; });
    return isTaken ? std::string() : path;
  }

  std::string Content() { return Pattern(AnyOf(kSizes, m_dice), static_cast<unsigned>(m_dice.Roll(1000))); }

  static std::set<std::string> TopsOf(const Entries& entries) {
    std::set<std::string> tops;
    for (const Entry& entry : entries)
      tops.insert(entry.path.substr(0, entry.path.find('/')));
    return tops;
  }

  /// False if the person has stopped the command.
  bool IsDone(const std::string& password, std::vector<std::string> words) {
    m_doing = words.front() + " under " + password;
    m_person.CancelAt(m_dice.OneIn(8) ? 1 + m_dice.Roll(30) : 0);
    const Said said = m_person.Says(password, words);
    m_person.CancelAt(0);
    Must(said.code == 0 || said.code == kCancelled,
         "it ends well: " + std::to_string(said.code) + " " + said.err);
    return said.code == 0;
  }

  unsigned m_seed;
  Dice m_dice;
  int m_step = 0;
  std::string m_doing;
  TempFolder m_folder;
  std::string m_body;
  Path m_carrier;
  PosixFiles m_files;
  Person m_person{m_files};
  Model m_model;
};

}  // namespace

void RandomSequence::Run(int steps) const {
  Sequence(m_seed).Run(steps);
}

}  // namespace tarnel::test
