#include "retrieval/recover.h"

#include <algorithm>
#include <memory>

#include "base/attempt.h"
#include "base/pace.h"
#include "base/partial_file.h"
#include "base/permissions.h"
#include "base/printable.h"
#include "carrier/catalogue.h"
#include "carrier/companions.h"
#include "carrier/walk.h"
#include "crypto/keys.h"
#include "retrieval/verify.h"

namespace tarnel {
namespace {

constexpr std::size_t kCompared = std::size_t{64} * 1024;

/// Verifies in the name of a plan: shows nothing.
class QuietScreen : public VerifyScreen {
 public:
  explicit QuietScreen(Dialogue& person) : m_person(person) {}

  Answer Ask(const Question& question) override { return m_person.Ask(question); }
  void Yield() override { m_person.Yield(); }
  bool CancelRequested() const override { return m_person.CancelRequested(); }
  void ShowProgress(Length, Length) override {}

 private:
  Dialogue& m_person;
};

class Planning {
 public:
  Planning(const Path& carrier, const Key& password, Files& files, Dialogue& dialogue)
      : m_carrier(carrier), m_password(password), m_files(files), m_dialogue(dialogue), m_pace(dialogue) {}

  RecoverPlan Run();

 private:
  CarrierCopy Examine(const Path& path);
  std::optional<Algorithm> FittingAlgorithm(const Path& path);
  void CountEntries(CarrierCopy& copy);
  CarrierCopy::Relation RelationOf(const CarrierCopy& copy);
  bool WalkMisses(Position end);

  const Path& m_carrier;
  const Key& m_password;
  Files& m_files;
  Dialogue& m_dialogue;
  Pace m_pace;
};

std::size_t WholeEntries(const CarrierCopy& copy) {
  return copy.entries - copy.damaged;
}

/// In a carrier whose front shows more entries than itself, what a hide has written keeps the walk from them.
std::size_t Worth(const CarrierCopy& copy) {
  return copy.hidesItsFront ? 0 : WholeEntries(copy);
}

std::optional<std::size_t> Best(const std::vector<CarrierCopy>& copies) {
  const auto worse = [](const CarrierCopy& a, const CarrierCopy& b) {
    return Worth(a) != Worth(b) ? Worth(a) < Worth(b) : a.damaged > b.damaged;
  };
  const auto best = std::max_element(copies.begin(), copies.end(), worse);
  if (best == copies.end() || Worth(*best) == 0) return std::nullopt;
  return static_cast<std::size_t>(best - copies.begin());
}

RecoverPlan Planning::Run() {
  m_password.Prepare([this] { m_dialogue.Yield(); });
  RecoverPlan plan{.carrier = m_carrier, .copies = {}, .best = {}, .cancelled = false};
  for (const Path& path : {m_carrier, BackupPath(m_carrier), TemporaryCarrierPath(m_carrier)})
    if (m_files.Stat(path, Files::Links::DontFollow)) plan.copies.push_back(Examine(path));
  for (const CarrierCopy& copy : plan.copies)
    if (copy.relation == CarrierCopy::Relation::Front && WholeEntries(copy) > 0)
      plan.copies.front().hidesItsFront |= WalkMisses(Position{copy.size + 1});
  plan.best = Best(plan.copies);
  return plan;
}

CarrierCopy Planning::Examine(const Path& path) {
  CarrierCopy copy;
  copy.path = path;
  try {
    copy.size = m_files.OpenToRead(path)->Size();
    copy.relation = RelationOf(copy);
    copy.algorithm = FittingAlgorithm(path);
    if (copy.algorithm) CountEntries(copy);
  } catch (const Error& error) {
    copy.fault = error.Description();
  }
  return copy;
}

/// Of the newest entry that fits at all.
std::optional<Algorithm> Planning::FittingAlgorithm(const Path& path) {
  const std::unique_ptr<File> file = m_files.OpenToRead(path);
  Walk walk(*file, path);
  while (walk.Next()) {
    m_pace.Step();
    if (m_dialogue.CancelRequested()) throw Stop{StopReason::Cancelled};
    for (const OfferedAlgorithm& offered : OfferedAlgorithms())
      if (walk.KeyFits(offered.algorithm, m_password)) return offered.algorithm;
  }
  return std::nullopt;
}

void Planning::CountEntries(CarrierCopy& copy) {
  QuietScreen screen(m_dialogue);
  const VerifyRequest request{.carrier = copy.path, .password = m_password, .algorithm = *copy.algorithm};
  const VerifyResult result = RunVerify(request, m_files, screen);
  if (result.ending == VerifyEnding::Cancelled) throw Stop{StopReason::Cancelled};
  copy.entries = result.entries.size();
  for (const VerifiedEntry& entry : result.entries)
    if (entry.verdict != Verdict::Intact) ++copy.damaged;
}

CarrierCopy::Relation Planning::RelationOf(const CarrierCopy& copy) {
  if (copy.path == m_carrier || !m_files.Stat(m_carrier)) return CarrierCopy::Relation::Itself;
  const std::unique_ptr<File> carrier = m_files.OpenToRead(m_carrier);
  const std::unique_ptr<File> file = m_files.OpenToRead(copy.path);
  const Length carrierSize = carrier->Size();
  if (copy.size > carrierSize) return CarrierCopy::Relation::Different;
  std::vector<std::uint8_t> ours(kCompared);
  std::vector<std::uint8_t> theirs(kCompared);
  for (Position at; at.value <= copy.size; at = at + static_cast<Length>(kCompared)) {
    m_pace.Step();
    const std::size_t got = file->ReadAt(at, theirs);
    carrier->ReadAt(at, MutableBytes(ours).first(got));
    if (!std::equal(theirs.begin(), theirs.begin() + static_cast<std::ptrdiff_t>(got), ours.begin()))
      return CarrierCopy::Relation::Different;
  }
  return copy.size == carrierSize ? CarrierCopy::Relation::Identical : CarrierCopy::Relation::Front;
}

/// True if no entry of the carrier begins at `end`, where those of its front end.
bool Planning::WalkMisses(Position end) {
  const std::unique_ptr<File> file = m_files.OpenToRead(m_carrier);
  Walk walk(*file, m_carrier);
  try {
    while (const std::optional<EntryPlace> place = walk.Next()) {
      m_pace.Step();
      if (place->start <= end) return place->start < end;
    }
  } catch (const Error&) {  // the walk breaks off
  }
  return true;
}

/// Renames `copy` to a name that nothing has. The name is taken first, so that nobody else gets it meanwhile.
Path KeepAsOld(const Path& copy, const Path& carrier, Files& files) {
  Path name;
  int number = 1;
  do {
    name = carrier;
    name += number == 1 ? ".old" : ".old" + std::to_string(number);
    ++number;
  } while (files.Stat(name, Files::Links::DontFollow));
  const std::unique_ptr<File> holder = files.CreateNew(name, 0600);
  PartialFile taken(files, name);
  holder->Close();
  files.Rename(copy, name);
  taken.Keep();
  return name;
}

void GiveAccessOf(const Path& carrier, const Path& fresh, Files& files) {
  const std::unique_ptr<File> model = files.OpenToRead(carrier);
  TakeAccessOf(*model, *files.OpenToChange(fresh), model->Stat().mode);
}

}  // namespace

RecoverPlan PlanRecovery(const Path& carrier, const Key& password, Files& files, Dialogue& dialogue) {
  try {
    return Planning(carrier, password, files, dialogue).Run();
  } catch (const Stop&) {
    return {.carrier = carrier, .copies = {}, .best = {}, .cancelled = true};
  }
}

std::vector<Path> ApplyRecovery(const RecoverPlan& plan, std::size_t choice, Files& files) {
  const std::unique_ptr<File> locked =
      files.Stat(plan.carrier) ? OpenLocked(plan.carrier, files, LockAccess::Read) : nullptr;
  const CarrierCopy& chosen = plan.copies.at(choice);
  files.OpenToRead(chosen.path)->Sync();
  // Whatever interrupted the run may have left the temporary carrier for the user alone.
  if (locked && chosen.path == TemporaryCarrierPath(plan.carrier))
    GiveAccessOf(plan.carrier, chosen.path, files);
  std::vector<Path> kept;
  for (const CarrierCopy& copy : plan.copies)
    if (copy.path != chosen.path) kept.push_back(KeepAsOld(copy.path, plan.carrier, files));
  if (chosen.path != plan.carrier) files.Rename(chosen.path, plan.carrier);
  files.SyncFolder(plan.carrier.parent_path());
  return kept;
}

Path PutInPlace(const Path& fresh, const Path& carrier, Files& files) {
  GiveAccessOf(carrier, fresh, files);
  const Path kept = KeepAsOld(carrier, carrier, files);
  files.Rename(fresh, carrier);
  files.SyncFolder(carrier.parent_path());
  return kept;
}

}  // namespace tarnel
