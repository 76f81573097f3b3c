#include "tests/proof/damage.h"

#include <algorithm>

namespace tarnel::test {

namespace {

constexpr const char* kMine = "one";
constexpr const char* kTheirs = "two words";
constexpr const char* kFresh = "4";
constexpr int kDamaged = 7;
constexpr int kNoHideout = 12;

/// Salt and key check of a record. Altered there, it can't be told from somebody else's.
constexpr std::size_t kRecordFront = 24;

std::string Flipped(std::string bytes, std::size_t at, unsigned bit) {
  bytes.at(at) = static_cast<char>(bytes.at(at) ^ (1 << bit));
  return bytes;
}

/// The byte at which a chain is said to break; empty if nothing is said of that.
std::string BreakIn(const Said& said) {
  constexpr std::string_view words = "is broken at byte ";
  const std::size_t at = said.err.find(words);
  if (at == std::string::npos) return {};
  const std::size_t begin = at + words.size();
  return said.err.substr(begin, said.err.find(':', begin) - begin);
}

/// Bytes that look like the text of a record.
std::string Lines(std::size_t count) {
  std::string lines;
  while (lines.size() < count)
    lines += std::string(76, 'Q') + "\r\n";
  return lines.substr(0, count);
}

bool Mentions(const Said& said, const std::string& text) {
  return said.err.find(text) != std::string::npos || said.out.find(text) != std::string::npos;
}

bool Holds(const std::map<std::string, std::string>& all, const std::map<std::string, std::string>& part) {
  return std::all_of(part.begin(), part.end(), [&](const auto& file) { return all.contains(file.first); });
}

}  // namespace

DamageCampaign::DamageCampaign() : m_carrier(m_folder.Put("carrier", Pattern(150))) {
  Hide(kMine, {}, "a.txt", Pattern(60, 2));
  Hide(kTheirs, {"--algorithm", "TWOFISH"}, "x.txt", Pattern(40, 3));
  Hide(kMine, {"--compress=9"}, "b.txt", std::string(500, 'b'));
  Hide(kTheirs, {}, "y.txt", Pattern(10, 4));
  Hide(kMine, {}, "c.txt", Pattern(90, 5));
  m_sources.Put("new.txt", m_contents["new.txt"] = "new");
  m_whole = ReadAll(m_carrier);
  FindPlaces();
  for (const char* password : {kMine, kTheirs})
    MustBeWhole(password);
}

void DamageCampaign::Hide(const std::string& password, const std::vector<std::string>& options,
                          const std::string& name, const std::string& content) {
  std::vector<std::string> words = {"hide", m_carrier, m_sources.Put(name, content)};
  words.insert(words.end(), options.begin(), options.end());
  Must(m_person.Says(password, words).code == 0, "hides " + name);
  m_contents[name] = content;
  m_places.push_back({name, password, 0, 0, 0, 0});
}

void DamageCampaign::FindPlaces() {
  const auto file = m_files.OpenToRead(m_carrier);
  Walk walk(*file);
  for (auto place = m_places.rbegin(); place != m_places.rend(); ++place) {
    const EntryPlace found = walk.Next().value();
    const auto offset = [](Position position) { return static_cast<std::size_t>(position - Position{}); };
    place->start = offset(found.start);
    place->record = offset(found.Record());
    place->trailer = offset(found.Trailer());
    place->end = offset(found.End());
  }
}

const DamageCampaign::Place* DamageCampaign::PlaceAt(std::size_t at) const {
  const auto place = std::find_if(m_places.begin(), m_places.end(),
                                  [at](const Place& p) { return at >= p.start && at < p.end; });
  return place == m_places.end() ? nullptr : &*place;
}

DamageCampaign::Part DamageCampaign::PartAt(const Place& place, std::size_t at) {
  if (at < place.record) return Part::Payload;
  if (at < place.record + kRecordFront) return Part::RecordFront;
  return at < place.trailer ? Part::Record : Part::Lengths;
}

void DamageCampaign::FlipBits(std::size_t every, std::size_t first) {
  for (std::size_t bit = first; bit < m_whole.size() * 8; bit += every)
    FlipBit(bit / 8, bit % 8);
}

void DamageCampaign::FlipLengthBits(std::size_t every) {
  std::size_t count = 0;
  for (const Place& place : m_places)
    for (std::size_t at = place.trailer; at < place.end; ++at)
      for (unsigned bit = 0; bit < 8; ++bit) {
        if (count++ % every != 0) continue;
        for (const std::string password : {kMine, kTheirs}) {
          Damage("bit " + std::to_string(bit) + " of byte " + std::to_string(at + 1) + " turned",
                 Flipped(m_whole, at, bit));
          Mend(password);
          // Nothing tells where somebody else's oldest entry begins.
          if (&place == &m_places.front() && password != place.password) MendAgain(place.password);
          for (const char* reader : {kMine, kTheirs})
            MustBeWhole(reader);
        }
      }
}

void DamageCampaign::Cut(std::size_t every) {
  for (std::size_t length = 0; length < m_whole.size(); length += every) {
    for (const char* password : {kMine, kTheirs}) {
      Damage("cut to " + std::to_string(length), m_whole.substr(0, length));
      const Sight sight = LookAndJudge(password);
      for (const Place& place : m_places)
        if (place.password == password && place.end <= length)
          Must(Has(sight.salvaged, place), "salvage brings " + place.name);
      Mend(password);
    }
  }
}

void DamageCampaign::Append() {
  for (const std::size_t count : {1U, 79U, 80U, 128U, 65536U})
    for (const std::string& bytes :
         {Pattern(count, 9), std::string(count, '\0'), std::string(count, 'A'), Lines(count)})
      for (const char* password : {kMine, kTheirs}) {
        Damage(std::to_string(count) + " bytes appended", m_whole + bytes);
        const Sight sight = LookAndJudge(password);
        Must(sight.verify.code == kNoHideout || sight.verify.code == kDamaged, "verify says it");
        Must(Mentions(sight.verify, "salvage") || Mentions(sight.verify, "recover"), "and what helps");
        Must(sight.salvage.code == 0, "salvage brings everything");
        Mend(password);
        for (const char* reader : {kMine, kTheirs})
          MustBeWhole(reader);
      }
}

void DamageCampaign::CutOutAndInsert(std::size_t every) {
  for (const Place& place : m_places) {
    // What is left of the trailer looks like four characters more of the record.
    CutOut(place, place.trailer + 3, kTrailerSize);
    for (std::size_t at = place.start + 1; at < place.end - 1; at += every)
      for (const std::size_t count : {1U, 7U, 30U, 500U}) {
        CutOut(place, at, count);
        PutIn(place, at, count);
      }
  }
}

void DamageCampaign::CutOut(const Place& place, std::size_t at, std::size_t count) {
  const std::size_t end = std::min(at + count, place.end - 1);
  MendUnderEach(place,
                std::to_string(count) + " bytes cut out of " + place.name + " at " + std::to_string(at),
                m_whole.substr(0, at) + m_whole.substr(end));
}

void DamageCampaign::PutIn(const Place& place, std::size_t at, std::size_t count) {
  MendUnderEach(place, std::to_string(count) + " bytes put into " + place.name + " at " + std::to_string(at),
                m_whole.substr(0, at) + Pattern(count, 8) + m_whole.substr(at));
}

void DamageCampaign::MendUnderEach(const Place& hit, const std::string& what, const std::string& bytes) {
  for (const std::string password : {kMine, kTheirs}) {
    Damage(what + " (from " + std::to_string(hit.start) + " record " + std::to_string(hit.record) +
               " trailer " + std::to_string(hit.trailer) + ")",
           bytes);
    LookAndJudge(password);
    Mend(password);
    MustBeWhole(password, hit.name);
    MendAgain(password == kMine ? kTheirs : kMine);
    for (const char* reader : {kMine, kTheirs})
      MustBeWhole(reader, hit.name);
  }
}

void DamageCampaign::Damage(const std::string& what, std::string bytes) {
  m_what = what;
  m_damaged = std::move(bytes);
  ++m_carriers;
  for (const std::string& name : m_folder.Names())
    std::filesystem::remove(m_folder / name);
  WriteAll(m_carrier, m_damaged);
}

DamageCampaign::Sight DamageCampaign::Look(const std::string& password) {
  Sight sight;
  const Path extracted = m_out / "extracted";
  const Path salvaged = m_out / "salvaged";
  sight.list = m_person.Says(password, {"list", m_carrier});
  sight.extract = m_person.Says(password, {"extract", m_carrier, "--to", extracted, "--on-error", "ignore"});
  sight.verify = m_person.Says(password, {"verify", m_carrier});
  sight.salvage = m_person.Says(password, {"salvage", m_carrier, "--to", salvaged, "--on-error", "ignore"});
  sight.extracted = FilesBelow(extracted);
  sight.salvaged = FilesBelow(salvaged);
  std::filesystem::remove_all(extracted);
  std::filesystem::remove_all(salvaged);
  return sight;
}

DamageCampaign::Sight DamageCampaign::LookAndJudge(const std::string& password) {
  Sight sight = Look(password);
  const int code = sight.verify.code;
  Must(ReadAll(m_carrier) == m_damaged && m_folder.Names().size() == 1, "looking changes nothing");
  for (const auto* files : {&sight.extracted, &sight.salvaged})
    for (const auto& [name, content] : *files)
      Must(m_contents.contains(name) && m_contents.at(name) == content, "what comes out is right");
  Must(code == 0 || code == kDamaged || code == kNoHideout, "verify ends with " + std::to_string(code));
  Must(sight.extract.code == code, "extract ends with " + std::to_string(sight.extract.code) +
                                       " and verify with " + std::to_string(code));
  Must(sight.list.code == code || (code == kDamaged && sight.list.code == 0), "list and verify agree");
  Must(BreakIn(sight.list) == BreakIn(sight.verify) && BreakIn(sight.extract) == BreakIn(sight.verify),
       "all tell the same of the chain");
  Must(code != kNoHideout || Mentions(sight.verify, "salvage"), "where nothing opens salvage is named");
  Must(Holds(sight.salvaged, sight.extracted), "salvage brings what extract brings");
  return sight;
}

/// A file more in a carrier that is damaged: nothing is lost, and no second hideout is made beside a damaged
/// one.
void DamageCampaign::JudgeHide(const std::string& password, const Sight& before) {
  WriteAll(m_carrier, m_damaged);
  const Said said = m_person.Says(password, {"hide", m_carrier, m_sources / "new.txt"});
  if (before.list.code == kDamaged && before.list.out.empty()) {
    Must(said.code == kDamaged && ReadAll(m_carrier) == m_damaged, "hide refuses");
    return;
  }
  Must(said.code == 0, "hide hides, code " + std::to_string(said.code));
  const Sight after = Look(password);
  Must(after.extracted.contains("new.txt") && Holds(after.extracted, before.extracted), "hide loses nothing");
  Must(BreakIn(said) == BreakIn(before.list) || before.list.code == kNoHideout, "hide tells of the chain");
}

void DamageCampaign::JudgePasswd(const std::string& password, const Sight& before) {
  WriteAll(m_carrier, m_damaged);
  const Said said = m_person.Says(
      password, {"passwd", m_carrier, "--new-password-file", m_person.PasswordFile(kFresh), "--no-input"});
  Must(said.code == before.verify.code, "passwd ends with " + std::to_string(said.code));
  if (said.code != 0)
    Must(ReadAll(m_carrier) == m_damaged && m_folder.Names().size() == 1, "passwd refuses");
  else
    Must(Look(kFresh).extracted == before.extracted, "passwd loses nothing");
}

void DamageCampaign::Mend(const std::string& password) {
  std::map<std::string, Sight> before;
  for (const char* reader : {kMine, kTheirs})
    before[reader] = Look(reader);
  const Said said = m_person.Says(password, {"recover", "--yes", m_carrier});
  m_what += "; recover under " + password;
  const bool isChanged = ReadAll(m_carrier) != m_damaged;
  Must(said.code == 0 || said.code == kDamaged || (said.code == kNoHideout && !isChanged),
       "recover ends with " + std::to_string(said.code) + ": " + said.err);
  Must(isChanged == (m_folder.Names().size() == 2), "the old carrier is kept");
  if (isChanged) Must(ReadAll(m_folder / "carrier.old") == m_damaged, "the old carrier is kept whole");
  for (const char* reader : {kMine, kTheirs}) {
    const Sight after = Look(reader);
    // What is somebody else's may have to be mended once more under its own password.
    const auto& brought = reader == password ? after.extracted : after.salvaged;
    Must(Holds(brought, before[reader].extracted), "what could be extracted still can");
    Must(Holds(after.salvaged, before[reader].salvaged), "what could be salvaged still can");
    if (reader == password && isChanged)
      Must(Holds(after.extracted, before[reader].salvaged), "what can be salvaged can be extracted");
  }
}

void DamageCampaign::MendAgain(const std::string& password) {
  const std::string bytes = ReadAll(m_carrier);
  Damage(m_what, bytes);
  Mend(password);
}

void DamageCampaign::FlipBit(std::size_t at, unsigned bit) {
  const Place* const hit = PlaceAt(at);
  const Part part = hit ? PartAt(*hit, at) : Part::Own;
  for (const char* password : {kMine, kTheirs}) {
    Damage("bit " + std::to_string(bit) + " of byte " + std::to_string(at + 1) + " turned, read under " +
               password,
           Flipped(m_whole, at, bit));
    const Sight sight = LookAndJudge(password);
    JudgeFlip(hit, part, password, sight);
    if (bit != at % 8) continue;
    JudgeHide(password, sight);
    JudgePasswd(password, sight);
    Damage(m_what, m_damaged);
    Mend(password);
  }
}

void DamageCampaign::JudgeFlip(const Place* hit, Part part, const std::string& password, const Sight& sight) {
  const bool isOwn = hit && hit->password == password;
  for (const Place& place : m_places)
    if (place.password == password && (&place != hit || part == Part::Lengths))
      Must(Has(sight.salvaged, place), "salvage brings " + place.name);
  const auto entries = static_cast<std::size_t>(std::count_if(
      m_places.begin(), m_places.end(), [&](const Place& place) { return place.password == password; }));
  if (sight.verify.code == 0 && sight.extracted.size() == entries) return;
  switch (part) {
    case Part::Own:
      return Must(false, "the carrier's own bytes say nothing");
    case Part::Payload:
      Must(isOwn && sight.list.code == 0 && sight.verify.code == kDamaged, "the payload is damaged");
      return Must(sight.extracted.size() == entries - 1 && Mentions(sight.verify, hit->name) &&
                      Mentions(sight.extract, hit->name),
                  "and the other entries come");
    case Part::RecordFront:
    case Part::Record: {
      Must(isOwn && sight.extracted.size() == entries - 1, "the other entries come");
      if (part == Part::RecordFront && sight.verify.code == 0) return;
      const std::string at = "at byte " + std::to_string(hit->start + 1);
      Must(sight.list.code == kDamaged && sight.verify.code == kDamaged, "a damaged record is told");
      return Must(Mentions(sight.list, at) && Mentions(sight.extract, at) && Mentions(sight.verify, at),
                  "and where it is");
    }
    case Part::Lengths:
      Must(sight.list.code == kDamaged && sight.verify.code == kDamaged, "a damaged length is told");
      return Must(BreakIn(sight.list) == std::to_string(hit->trailer + 1) && Mentions(sight.list, "recover"),
                  "and where it is");
  }
}

void DamageCampaign::MustBeWhole(const std::string& password, const std::string& without) {
  const Sight sight = Look(password);
  for (const Place& place : m_places)
    if (place.password == password && place.name != without)
      Must(Has(sight.extracted, place), "extract brings " + place.name + " under " + password);
  if (without.empty()) Must(sight.list.code == 0 && sight.verify.code == 0, "all is well under " + password);
}

bool DamageCampaign::Has(const std::map<std::string, std::string>& files, const Place& place) const {
  return files.contains(place.name) && files.at(place.name) == m_contents.at(place.name);
}

void DamageCampaign::Must(bool holds, const std::string& what) {
  if (!holds) m_findings.push_back(m_what + ": not so: " + what);
}

}  // namespace tarnel::test
