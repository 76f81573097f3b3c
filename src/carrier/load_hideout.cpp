#include "carrier/load_hideout.h"

#include <functional>
#include <memory>
#include <utility>

#include "base/attempt.h"
#include "carrier/busy_reading.h"
#include "carrier/questions.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"

namespace tarnel {

namespace {

/// One run: open, walk from the newest entry to the oldest, and whatever the end asks for.
class Loader {
 public:
  Loader(const LoadRequest& request, Reading& reading, ReadingScreen& screen)
      : m_request(request), m_reading(reading), m_screen(screen) {}

  LoadOutcome Run() {
    const LoadResult result = Load();
    return {.result = result, .faults = std::move(m_faults), .wasLeft = m_wasLeft};
  }

 private:
  enum class End { Normal, Aborted, KeptOpen, LeftAtError };
  enum class Step { GoOn, Done, KeepOpen };

  LoadResult Load() {
    BusyReading busy(m_reading.guards);
    const End end = ReadEntries();
    busy.End();
    switch (end) {
      case End::Normal:
        return EndNormally();
      case End::Aborted:
        return EndAborted();
      case End::KeptOpen:
        return LoadResult::KeptOpen;
      case End::LeftAtError:
        m_wasLeft = true;
    }
    return LoadResult::NotFound;
  }

  struct Entry {
    EntryPlace place;
    WipedText record;  ///< plain
    EntryTail tail;
  };

  End ReadEntries() {
    try {
      if (!m_walk.Open(m_reading.files, m_request.carrier)) return End::LeftAtError;
      for (;;) {
        m_screen.Yield();
        if (m_reading.guards.AbortReadingFlag) return End::Aborted;
        if (m_count > 0) m_screen.ShowReading(m_walk.Entries().Passed(), m_walk.Entries().CarrierSize());
        const Step step = ReadEntry();
        if (step == Step::Done) return End::Normal;
        if (step == Step::KeepOpen) return End::KeptOpen;
      }
    } catch (const Stop&) {
      return End::LeftAtError;
    }
  }

  Step ReadEntry() {
    const std::optional<EntryPlace> place = m_walk.Next();
    const Walk& walk = m_walk.Entries();
    m_faults.brokenAt = walk.BrokenAt();
    if (m_walk.WasIgnored() && m_lastError != ErrorNumber::BadRecordNumber)
      m_faults.Note({Position{} + walk.CarrierSize() - walk.Passed(), {}, "it cannot be read"});
    if (!place) return Step::Done;
    m_request.password.Prepare([this] { m_screen.Yield(); });  // not before there is something to open
    JudgedEntry judged;
    EntryTail tail;
    if (Try([&] { ReadTo(judged, tail, *place); }) == Outcome::Ignored) {
      m_faults.Note({place->start, {}, "its record cannot be read"});
      return PassOver();
    }
    switch (judged.state) {
      case JudgedEntry::State::Damaged:
        m_faults.Note({place->start, std::string(GetTag(judged.record, tag::kName)), judged.fault});
        return PassOver();
      case JudgedEntry::State::Closed:
        m_faults.closedBy = GetTag(judged.record, tag::kFormat);
        m_screen.Ask(VersionMessage(*m_faults.closedBy));
        return Step::Done;
      case JudgedEntry::State::Whole:
        return Take({.place = *place, .record = std::move(judged.record), .tail = tail});
      case JudgedEntry::State::Broken:
        m_faults.brokenAt = walk.BrokenAt();
        return Step::Done;
      case JudgedEntry::State::Foreign:
        break;
    }
    return PassOver();
  }

  void ReadTo(JudgedEntry& judged, EntryTail& tail, const EntryPlace& place) {
    m_reading.current.SecondKey.clear();
    JudgedEntry entry = Judge(m_walk.Entries(), place, m_request.algorithm, m_request.password);
    if (entry.state == JudgedEntry::State::Whole) tail = EntryTail(m_walk.Entries().ReadTail());
    judged = std::move(entry);
  }

  Step PassOver() const { return OnlyNewestCounts() ? Step::Done : Step::GoOn; }

  Step Take(Entry entry) {
    if (m_count == 0 && !SettleRoot(entry)) return Step::KeepOpen;
    AddEntry(std::move(entry));
    return Step::GoOn;
  }

  bool OnlyNewestCounts() const { return m_request.fit == LoadRequest::Fit::NewestEntry && m_count == 0; }

  /// Makes room for the hideout and adds its root. False if the person wants to keep what is open.
  bool SettleRoot(const Entry& newest) {
    const TreeNode* const open = m_reading.catalogue.FindRoot(m_request.carrier);
    if (open != nullptr && m_request.reload == LoadRequest::Reload::Ask &&
        open->hideout->password == m_request.password && m_screen.Ask(ReloadQuestion()) != Answer::Yes) {
      return false;
    }
    m_reading.catalogue.RemoveCarrier(m_request.carrier);
    m_root = &m_reading.catalogue.AddRoot(KeyOf(newest), std::string(kRootFolder));
    return true;
  }

  std::shared_ptr<const HideoutKey> KeyOf(const Entry& newest) const {
    return std::make_shared<const HideoutKey>(HideoutKey{
        .carrier = m_request.carrier,
        .carrierName = ToStored(m_request.carrier.filename().native(), TextKind::PathComponent),
        .password = m_request.password,
        .algorithm = m_request.algorithm,
        .title = WipedText(GetTag(newest.record, tag::kTitle)),
    });
  }

  void AddEntry(Entry entry) {
    MirrorRow row;
    row.hideout = m_root->hideout;
    row.record = std::move(entry.record);
    row.start = entry.place.start;
    row.size = entry.place.payload;
    row.tail = entry.tail;
    row.shownBelow = m_reading.catalogue.EnsureFolderNode(*m_root, row.Folder()).FolderPath().size();
    m_faults.hasMoreFolders |= row.shownBelow + 1 < row.Folder().size();
    m_reading.catalogue.AddRow(std::move(row));
    ++m_count;
  }

  LoadResult EndNormally() {
    if (m_count == 0) return LoadResult::NotFound;
    m_reading.catalogue.NoteRead(m_request.carrier, m_walk.Entries().Opened());
    m_screen.HideoutLoaded(*m_root, m_count);
    m_reading.current = CurrentOf(*m_root->hideout);
    return LoadResult::Loaded;
  }

  LoadResult EndAborted() {
    if (m_count > 0) m_reading.catalogue.RemoveCarrier(m_request.carrier);
    m_screen.HideoutGone();
    return m_count > 0 ? LoadResult::Aborted : LoadResult::NotFound;
  }

  Outcome Try(const std::function<void()>& statement) { return Attempt(m_screen, m_handler, statement); }

  const LoadRequest& m_request;
  Reading& m_reading;
  ReadingScreen& m_screen;
  ErrorNumber m_lastError = ErrorNumber::BadRecordNumber;
  const ErrorHandler m_handler{[this](const Error& error) {
    m_lastError = error.Number();
    return LoadErrorQuestion(error);
  }};
  GuardedWalk m_walk{[this](const std::function<void()>& step) { return Try(step); }, m_request.opened};
  TreeNode* m_root = nullptr;
  std::size_t m_count = 0;
  bool m_wasLeft = false;
  ChainFaults m_faults;
};

}  // namespace

LoadOutcome ReadHideout(const LoadRequest& request, Reading& reading, ReadingScreen& screen) {
  if (reading.guards.ReadingBusy) return {};
  return Loader(request, reading, screen).Run();
}

LoadResult LoadHideout(const LoadRequest& request, Reading& reading, ReadingScreen& screen) {
  const LoadOutcome outcome = ReadHideout(request, reading, screen);
  if (outcome.result == LoadResult::Loaded && request.reload == LoadRequest::Reload::Ask &&
      !outcome.faults.None())
    screen.ShowFaults(outcome.faults);
  return outcome.result;
}

}  // namespace tarnel
