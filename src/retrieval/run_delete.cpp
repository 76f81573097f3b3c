#include "retrieval/run_delete.h"

#include <algorithm>

#include "retrieval/questions.h"

namespace tarnel {
namespace {

RewriteManner Manner() {
  return {.savedAttributes = RewriteManner::SavedAttributes::ReadLast,
          .handler = {questions::DeleteError},
          .notReplaced = questions::DeleteNotReplaced};
}

/// In file order, each once.
std::vector<KnownEntry> Entries(const std::vector<std::size_t>& rows, const Catalogue& catalogue) {
  std::vector<KnownEntry> entries;
  for (const std::size_t index : rows) {
    const MirrorRow& row = catalogue.Rows().at(index);
    entries.push_back({.start = row.start, .size = row.size, .tail = row.tail});
  }
  const auto byStart = [](const KnownEntry& a, const KnownEntry& b) { return a.start < b.start; };
  const auto samePlace = [](const KnownEntry& a, const KnownEntry& b) { return a.start == b.start; };
  std::sort(entries.begin(), entries.end(), byStart);
  entries.erase(std::unique(entries.begin(), entries.end(), samePlace), entries.end());
  return entries;
}

class Deletion {
 public:
  Deletion(const DeleteRequest& request, Reading& reading, RewriteScreen& screen)
      : m_reading(reading),
        m_screen(screen),
        m_carrier(reading.current.CurrentCarrierPath),
        m_entries(Entries(request.rows, reading.catalogue)),
        m_rewrite(m_carrier, m_entries, Manner(), request.leftover, reading.files, screen) {}

  DeleteResult Run();

 private:
  void CopyWhatStays();
  void BeginRound(Position keep);
  void ReloadHideout();

  Reading& m_reading;
  RewriteScreen& m_screen;
  const Path m_carrier;
  const std::vector<KnownEntry> m_entries;
  CarrierRewrite m_rewrite;
};

DeleteResult Deletion::Run() {
  try {
    CopyWhatStays();
    if (!m_rewrite.Replace())
      return {.ending = RewriteEnding::NotReplaced, .temporary = m_rewrite.TemporaryPath()};
  } catch (const Stop& stop) {
    return {.ending = EndingOf(stop), .temporary = {}};
  }
  const std::size_t deleted = m_entries.size();
  ReloadHideout();
  return {.deleted = deleted, .temporary = {}};
}

void Deletion::CopyWhatStays() {
  Position keep;
  for (const KnownEntry& entry : m_entries) {
    BeginRound(keep);
    m_rewrite.KeepUntil(entry.start);
    m_rewrite.PassOver(entry.End());
    keep = entry.End();
  }
  if (keep.value > m_rewrite.CarrierSize()) return;
  BeginRound(keep);
  m_rewrite.KeepRest();
}

void Deletion::BeginRound(Position keep) {
  if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
  m_screen.Yield();
  m_rewrite.SetProgress(keep.value, m_rewrite.CarrierSize() + 1);
}

void Deletion::ReloadHideout() {
  if (Reload(m_reading.current.CurrentPassword, m_reading, m_screen) != LoadResult::NotFound) return;
  m_reading.catalogue.RemoveRows(m_carrier);
  m_reading.catalogue.RemoveFolderNodes(m_carrier);
  m_screen.HideoutEmptied();
}

}  // namespace

DeleteResult RunDelete(const DeleteRequest& request, Reading& reading, RewriteScreen& screen) {
  if (request.rows.empty()) return {};
  return Deletion(request, reading, screen).Run();
}

}  // namespace tarnel
