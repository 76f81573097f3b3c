#include "retrieval/run_password.h"

#include <string>
#include <utility>

#include "carrier/format.h"
#include "carrier/payload.h"
#include "carrier/record.h"
#include "crypto/cipher.h"
#include "crypto/keys.h"
#include "retrieval/questions.h"

namespace tarnel {
namespace {

RewriteManner Manner(const bool& isDamaged) {
  return {.savedAttributes = RewriteManner::SavedAttributes::ReadLast,
          .handler = {[&isDamaged](const Error& error) {
            return isDamaged ? questions::PasswordDamaged(error) : questions::PasswordError(error);
          }},
          .notReplaced = questions::PasswordNotReplaced};
}

/// The walk lists the newest entry first, so the reverse is file order.
std::vector<const MirrorRow*> RowsInFileOrder(const Reading& reading) {
  std::vector<const MirrorRow*> rows = reading.catalogue.RowsOf(reading.current.CurrentCarrierPath);
  std::reverse(rows.begin(), rows.end());
  return rows;
}

KnownEntry EntryOf(const MirrorRow& row) {
  return {.start = row.start, .size = row.size, .tail = row.tail};
}

std::vector<KnownEntry> EntriesOf(const std::vector<const MirrorRow*>& rows) {
  std::vector<KnownEntry> entries;
  entries.reserve(rows.size());
  for (const MirrorRow* row : rows)
    entries.push_back(EntryOf(*row));
  return entries;
}

/// Hands the parts of a small entry on in one piece.
class GatheringSink : public ByteSink {
 public:
  explicit GatheringSink(ByteSink& inner) : m_inner(inner) {}

  void Write(Bytes bytes) override {
    m_gathered.append(AsText(bytes));
    if (m_gathered.size() >= kCopyBlock) HandOn();
  }
  /// To be called behind the last Write.
  void HandOn() {
    m_inner.Write(AsBytes(m_gathered));
    m_gathered.clear();
  }

 private:
  ByteSink& m_inner;
  std::string m_gathered;
};

class PasswordChange {
 public:
  PasswordChange(const PasswordRequest& request, Reading& reading, RewriteScreen& screen)
      : m_newPassword(request.newPassword),
        m_reading(reading),
        m_screen(screen),
        m_carrier(reading.current.CurrentCarrierPath),
        m_rows(RowsInFileOrder(reading)),
        m_rewrite(m_carrier, EntriesOf(m_rows), Manner(m_isDamaged), request.leftover, reading.files,
                  screen) {}

  PasswordResult Run();

 private:
  enum class Damage { Refused, Accepted };

  void AskAboutLeftBehind();
  void WriteAnew(const MirrorRow& row);
  void WriteEntry(const MirrorRow& row, Damage damage, ByteSink& sink);
  void Reencrypt(const MirrorRow& row, Damage damage, PayloadSink& sink);
  void ReloadHideout();

  const Key m_newPassword;
  Reading& m_reading;
  RewriteScreen& m_screen;
  const Path m_carrier;
  const std::vector<const MirrorRow*> m_rows;
  bool m_isDamaged = false;  ///< the payload that has just been read is
  CarrierRewrite m_rewrite;
  PasswordResult m_result;
};

PasswordResult PasswordChange::Run() {
  try {
    m_reading.current.CurrentPassword.Prepare([this] { m_screen.Yield(); });
    AskAboutLeftBehind();
    m_newPassword.Prepare([this] { m_screen.Yield(); });
    for (const MirrorRow* row : m_rows) {
      m_rewrite.KeepUntil(row->start);
      WriteAnew(*row);
      m_rewrite.PassOver(row->End());
      m_screen.Yield();
    }
    m_rewrite.KeepRest();
    if (!m_rewrite.Replace()) {
      m_result.ending = RewriteEnding::NotReplaced;
      m_result.temporary = m_rewrite.TemporaryPath();
      return std::move(m_result);
    }
  } catch (const Stop& stop) {
    return {.refused = {}, .ending = EndingOf(stop), .damaged = {}, .leftBehind = {}, .temporary = {}};
  }
  m_result.changed = m_rows.size();
  ReloadHideout();
  return std::move(m_result);
}

void PasswordChange::AskAboutLeftBehind() {
  const CurrentHideout& current = m_reading.current;
  m_rewrite.Must([&] {
    m_result.leftBehind = ExamineChain(m_rewrite.Carrier(), m_carrier, current.CurrentAlgorithmId,
                                       current.CurrentPassword, m_screen);
  });
  if (m_result.leftBehind.None()) return;
  const Question question = questions::PasswordLeavesBehind(m_result.leftBehind, m_carrier);
  if (m_screen.Ask(question) != Answer::Ignore) throw Stop{StopReason::Aborted};
}

void PasswordChange::WriteAnew(const MirrorRow& row) {
  const Outcome outcome =
      m_rewrite.TryAppend([&](ByteSink& sink) { WriteEntry(row, Damage::Refused, sink); });
  if (outcome == Outcome::Done) return;
  m_result.damaged.emplace_back(row.Name());
  m_rewrite.Append([&](ByteSink& sink) { WriteEntry(row, Damage::Accepted, sink); });
}

void PasswordChange::WriteEntry(const MirrorRow& row, Damage damage, ByteSink& sink) {
  GatheringSink gathered(sink);
  PayloadSink payload(gathered);
  Reencrypt(row, damage, payload);
  RecordFields fields = ReadRecord(row.record);
  fields.storedSize = std::to_string(payload.Written());
  fields.seal = payload.SealText();
  gathered.Write(AsBytes(SealEntry(BuildRecord(fields, RecordWriter::Rewrite), payload.Written(),
                                   row.hideout->algorithm, m_newPassword, m_reading.current.SecondKey)));
  gathered.HandOn();
}

/// The decrypted bytes go into the encryption before it is known whether they are authentic. What turns out
/// to be damaged stays so: its new tag is wrong, or whoever altered it would get an authentic file.
void PasswordChange::Reencrypt(const MirrorRow& row, Damage damage, PayloadSink& sink) {
  m_isDamaged = false;
  EncryptingSink encrypting(row.hideout->algorithm, sink, m_newPassword, m_reading.current.SecondKey);
  const std::string fault = TakeOutStored(*m_rewrite.Stretch(row.start, row.size), ClaimsOf(row.record),
                                          row.hideout->algorithm, row.hideout->password, encrypting);
  m_isDamaged = !fault.empty() && damage == Damage::Refused;
  if (m_isDamaged) throw DamagedPayload("re-encrypt", row.Name(), fault);
  encrypting.Finish(fault.empty() ? FileEnd::Authentic : FileEnd::Damaged);
}

void PasswordChange::ReloadHideout() {
  if (Reload(m_newPassword, m_reading, m_screen) != LoadResult::NotFound) return;
  m_reading.catalogue.RemoveCarrier(m_carrier);
  m_screen.HideoutEmptied();
}

}  // namespace

std::optional<PasswordFault> FaultOf(const PasswordRequest& request, const Key& current) {
  if (!(request.oldPassword == current)) return PasswordFault::OldDiffers;
  if (request.newPassword.IsOf(Secret())) return PasswordFault::NewIsEmpty;
  if (!request.newPassword.IsOf(request.confirmation)) return PasswordFault::ConfirmationDiffers;
  return std::nullopt;
}

PasswordResult RunPassword(const PasswordRequest& request, Reading& reading, RewriteScreen& screen) {
  if (const std::optional<PasswordFault> fault = FaultOf(request, reading.current.CurrentPassword)) {
    screen.Ask(questions::PasswordRefused(*fault));
    return {.refused = fault, .damaged = {}, .leftBehind = {}, .temporary = {}};
  }
  return PasswordChange(request, reading, screen).Run();
}

}  // namespace tarnel
