#include "tests/proof/model.h"

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

namespace tarnel::test {

namespace {

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

Entry& Find(Entries& entries, const std::string& path) {
  return *std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.path == path; });
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
    switch (m_dice.Roll(7)) {
      case 0:
        return Delete();
      case 1:
        return Update();
      case 2:
        return ChangePassword();
      case 3:
        return ExtractOne();
      default:
        return Hide();
    }
  }

  void Hide() {
    const std::string password = AnyPassword();
    Entries now = m_model.contains(password) ? m_model[password] : Entries{};
    const std::size_t before = now.size();
    for (std::size_t count = 1 + m_dice.Roll(3); count > 0; --count)
      if (const std::string path = FreePath(now); !path.empty()) now.push_back({path, Content()});
    m_doing = "hide under " + password;
    const std::unique_ptr<CarrierSession> session = Opened(password);
    if (before == 0) session->Create(password, AnyOf(OfferedAlgorithms(), m_dice).algorithm);
    const auto compression =
        m_dice.OneIn(2) ? CarrierSession::Compression::On : CarrierSession::Compression::Off;
    const auto originals = m_dice.OneIn(4) ? Originals::Destroy : Originals::Keep;
    const Entries added(now.begin() + static_cast<std::ptrdiff_t>(before), now.end());
    if (session->Hide(added, compression, originals, m_sources.Where()) != HideEnding::Done) return;
    if (!now.empty()) m_model[password] = now;
  }

  void Delete() {
    const std::string password = AnyHideout();
    Entries now = m_model[password];
    std::vector<std::string> paths;
    const bool all = m_dice.OneIn(6);
    for (const Entry& entry : m_model[password])
      if (all || m_dice.OneIn(3)) paths.push_back(entry.path);
    m_doing = "delete " + std::to_string(paths.size()) + " under " + password;
    if (Opened(password)->Delete(paths) != RewriteEnding::Done) return;
    for (const std::string& path : paths)
      Erase(m_model[password], path);
    if (m_model[password].empty()) m_model.erase(password);
  }

  void Update() {
    const std::string password = AnyHideout();
    const Entry fresh{AnyOf(m_model[password], m_dice).path, Content()};
    m_doing = "update " + fresh.path + " under " + password;
    if (Opened(password)->Update(fresh, m_sources.Where()) != RewriteEnding::Done) return;
    Erase(m_model[password], fresh.path);
    m_model[password].push_back(fresh);
  }

  void ChangePassword() {
    const std::string from = AnyHideout();
    const std::string to = m_dice.OneIn(4) ? from : UnusedPassword();
    m_doing = "change " + from + " to " + to;
    if (to.empty() || Opened(from)->ChangePassword(from, to) != RewriteEnding::Done) return;
    Entries moved = std::move(m_model[from]);
    m_model.erase(from);
    m_model[to] = std::move(moved);
  }

  void ExtractOne() {
    const std::string password = AnyHideout();
    const std::string path = AnyOf(m_model[password], m_dice).path;
    m_doing = "extract " + path + " under " + password;
    const TempFolder scratch;
    const std::string content = Opened(password)->ExtractOne(path, scratch / "one");
    Must(content == Find(m_model[password], path).content, "the file extracted by itself is the one hidden");
  }

  void Check() {
    for (const std::string& password : kPasswords) {
      const Entries expected = m_model.contains(password) ? m_model[password] : Entries{};
      Must(ReadHideout(m_carrier, password, m_files) == expected, "all entries are there under " + password);
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

  /// The session with the hideout of `password` open, which may be cancelled at some yield.
  std::unique_ptr<CarrierSession> Opened(const std::string& password) {
    auto session = std::make_unique<CarrierSession>(m_carrier, m_files);
    Must(session->Open(password) == m_model.contains(password), "the password opens what it should");
    if (m_dice.OneIn(8)) session->CancelAtYield(1 + m_dice.Roll(30));
    return session;
  }

  unsigned m_seed;
  Dice m_dice;
  int m_step = 0;
  std::string m_doing;
  TempFolder m_folder;
  TempFolder m_sources;
  std::string m_body;
  Path m_carrier;
  PosixFiles m_files;
  Model m_model;
};

}  // namespace

void RandomSequence::Run(int steps) const {
  Sequence(m_seed).Run(steps);
}

}  // namespace tarnel::test
