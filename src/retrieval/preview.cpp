#include "retrieval/preview.h"

#include <algorithm>
#include <cassert>
#include <memory>
#include <string>

#include "base/attempt.h"
#include "base/destruction.h"
#include "base/destruction_questions.h"
#include "base/file_streams.h"
#include "base/pace.h"
#include "base/printable.h"
#include "base/temp_names.h"
#include "carrier/format.h"
#include "carrier/payload.h"
#include "carrier/stored_text.h"
#include "crypto/keys.h"
#include "retrieval/block_source.h"
#include "retrieval/left_previews.h"
#include "retrieval/questions.h"

namespace tarnel {
namespace {

class Viewing {
 public:
  Viewing(const PreviewParcel& parcel, Reading& reading, ViewScreen& screen)
      : m_parcel(parcel), m_reading(reading), m_screen(screen), m_name(ToPlatform(parcel.ViewFileName)) {}

  ViewResult Run();

 private:
  void MakeFolder();
  void Extract();
  Length TakeOut(File& plain);
  void Close();
  void CleanUp(ViewEnding ending);
  bool DestroyPlain();
  void OverwritePlain();
  std::unique_ptr<File> OpenMade();

  template <class Statement>
  Outcome Try(Statement&& statement) {
    return Attempt(m_screen, {questions::ViewError}, std::forward<Statement>(statement));
  }
  template <class Statement>
  void Must(Statement&& statement) {
    if (Try(std::forward<Statement>(statement)) == Outcome::Ignored) throw Stop{StopReason::Aborted};
  }

  const PreviewParcel& m_parcel;
  Reading& m_reading;
  ViewScreen& m_screen;
  const std::string m_name;
  std::unique_ptr<File> m_plain;  ///< until an application may open it
  ViewResult m_result;
};

ViewResult Viewing::Run() {
  try {
    m_reading.current.CurrentPassword.Prepare([this] { m_screen.Yield(); });
    Must([this] { MakeFolder(); });
    m_screen.ShowExtractingTo(m_result.folder->Where() / m_name);
    m_screen.Yield();
    Must([this] { Extract(); });
    Must([this] { Close(); });
    if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
    Try([this] { m_screen.OpenWithDesktop(m_result.PreviewFolder); });
    Try([this] { m_screen.OpenWithDesktop(m_result.PreviewFile); });
    m_screen.ShowProgress(m_parcel.ViewSize, m_parcel.ViewSize);
  } catch (const Stop& stop) {
    CleanUp(stop.reason == StopReason::Cancelled ? ViewEnding::Cancelled : ViewEnding::Aborted);
  }
  return m_result;
}

void Viewing::MakeFolder() {
  if (m_result.PreviewFolder.empty())
    m_result.PreviewFolder = MakeTempFolder(m_reading.files, kPreviewPrefix);
  m_result.folder = m_reading.files.OpenFolder(m_result.PreviewFolder);
  m_result.folder->Lock();
  m_result.folder->Stat(m_name);  // refuses a name that isn't one
}

/// Tried again, it writes over what it has written.
void Viewing::Extract() {
  if (!m_plain) {
    m_plain = m_result.folder->CreateNew(m_name, 0600);
    m_result.PreviewFile = m_result.folder->Where() / m_name;
  }
  m_plain->Truncate(TakeOut(*m_plain));
  m_result.seen = m_plain->Stat();
}

Length Viewing::TakeOut(File& plain) {
  const CurrentHideout& current = m_reading.current;
  const std::unique_ptr<File> carrier = m_reading.files.OpenToRead(current.CurrentCarrierPath);
  MustStillStand(*carrier, m_parcel.ViewStart, m_parcel.ViewSize, m_parcel.ViewTail,
                 current.CurrentCarrierPath);
  FileSource stretch(*carrier, current.CurrentCarrierPath, m_parcel.ViewStart, m_parcel.ViewSize);
  Length passed = 0;
  BlockSource payload(stretch,
                      BlockCount(m_parcel.ViewSize, CancelLook::BehindFullBlock, m_screen,
                                 [&](Length n) { m_screen.ShowProgress(passed += n, m_parcel.ViewSize); }));
  FileSink sink(plain, Position{1});
  const std::string fault = TakeOutPayload(
      payload,
      {.plainSize = m_parcel.ViewPlainSize, .compressed = m_parcel.ViewCompressed, .seal = m_parcel.ViewSeal},
      current.CurrentAlgorithmId, current.CurrentPassword, sink);
  if (!fault.empty()) throw DamagedPayload("view", m_parcel.ViewFileName, fault);
  return sink.Written();
}

/// Before an application opens the file: some refuse one that is open for writing.
void Viewing::Close() {
  if (const std::unique_ptr<File> closing = std::move(m_plain)) closing->Close();
}

void Viewing::CleanUp(ViewEnding ending) {
  m_result.ending = ending;
  if (!m_result.PreviewFile.empty() && !DestroyPlain()) {
    m_screen.Ask(questions::PreviewStays());
    return;
  }
  m_result.PreviewFile.clear();
  if (ending == ViewEnding::Aborted && !m_result.PreviewFolder.empty())
    RemovePath(m_result.PreviewFolder, m_screen, m_reading.files);
}

bool Viewing::DestroyPlain() {
  try {
    Attempt(m_screen, {OverwriteError}, [this] { OverwritePlain(); });
    return Attempt(m_screen, {OverwriteError}, [this] { m_result.folder->Remove(m_name); }) == Outcome::Done;
  } catch (const Stop&) {
    return false;
  }
}

void Viewing::OverwritePlain() {
  if (!m_plain) m_plain = OpenMade();
  const std::string blanks(65536, ' ');
  const Length size = m_plain->Size();
  Pace pace(m_screen);
  for (Length done = 0; done < size; done += static_cast<Length>(blanks.size())) {
    const std::size_t left = static_cast<std::size_t>(size - done);
    m_plain->WriteAt(Position{} + done, AsBytes(blanks).first(std::min(left, blanks.size())));
    pace.Step();
  }
  RunYielding(m_screen, [this] { m_plain->Sync(); });
}

std::unique_ptr<File> Viewing::OpenMade() {
  std::unique_ptr<File> file = m_reading.files.OpenToChange(m_result.PreviewFile);
  if (file->Stat().IsSameFile(m_result.seen)) return file;
  throw Error(
      ErrorNumber::PathFileAccess,
      "cannot overwrite " + Printable(m_result.PreviewFile.native()) + ": another file has taken its place",
      m_result.PreviewFile);
}

/// Answers for the person where leaving a view has its own words for an error.
class ReturnDialogue : public Dialogue {
 public:
  explicit ReturnDialogue(Dialogue& person) : m_person(person) {}

  Answer Ask(const Question& question) override {
    if (!question.cause) return m_person.Ask(question);
    const Answer answer = AnswerTo(*question.cause);
    if (answer == Answer::Abort) m_person.Ask(questions::PreviewStays());
    return answer;
  }
  void Yield() override { m_person.Yield(); }
  bool CancelRequested() const override { return m_person.CancelRequested(); }

 private:
  Answer AnswerTo(const Error& error) {
    if (error.Number() == ErrorNumber::PermissionDenied) return Answer::Abort;
    if (error.Number() == ErrorNumber::PathFileAccess)
      return m_person.Ask(questions::PreviewLocked()) == Answer::Retry ? Answer::Retry : Answer::Abort;
    return m_person.Ask(questions::ViewError(error));
  }

  Dialogue& m_person;
};

bool WantsToLeave(PreviewChange change, Dialogue& dialogue) {
  return dialogue.Ask(questions::ReturnFromView(change)) == Answer::Yes ||
         dialogue.Ask(questions::ReturnWithoutDeletion()) == Answer::Yes;
}

/// Stop where the person has been told that it can't be said. What can't be said and was ignored is there.
bool IsThere(const Path& file, Dialogue& person, Files& files) {
  bool isThere = true;
  const auto look = [&] { isThere = files.Stat(file, Files::Links::DontFollow).has_value(); };
  return Attempt(person, {questions::ViewError}, look) == Outcome::Ignored || isThere;
}

ViewReturn Return(const ViewResult& view, Dialogue& dialogue, Files& files) {
  ReturnDialogue person(dialogue);
  const PreviewChange change = ChangeOf(view, files);
  for (;;) {
    if (!WantsToLeave(change, dialogue)) return ViewReturn::Stay;
    if (!IsThere(view.PreviewFile, person, files)) {
      OfferLeftPreview(view.PreviewFolder, dialogue, files);
      return ViewReturn::Leave;
    }
    if (OverwriteAndKill(view.PreviewFile, dialogue, files)) break;
    if (dialogue.Ask(questions::PreviewLocked()) != Answer::Retry) break;
  }
  RemovePath(view.PreviewFolder, person, files);
  return ViewReturn::Leave;
}

}  // namespace

PreviewParcel ParcelOf(const MirrorRow& row) {
  return {.ViewFileName = WipedText(row.Name()),
          .ViewPlainSize = std::string(row.Field(tag::kPlainSize)),
          .ViewCompressed = std::string(row.Field(tag::kCompressed)),
          .ViewAttr = std::string(row.Field(tag::kAttributes)),
          .ViewFolder = WipedText(row.Folder()),
          .ViewMode = std::string(row.Field(tag::kMode)),
          .ViewMtime = std::string(row.Field(tag::kMtime)),
          .ViewSeal = std::string(row.Field(tag::kSeal)),
          .ViewStart = row.start,
          .ViewSize = row.size,
          .ViewTail = row.tail};
}

PreviewChange ChangeOf(const ViewResult& view, Files& files) {
  try {
    const std::optional<FileStat> now = files.Stat(view.PreviewFile);
    if (!now) return PreviewChange::Gone;
    const bool isSame =
        now->size == view.seen.size && now->modifiedNanoseconds == view.seen.modifiedNanoseconds;
    return isSame ? PreviewChange::None : PreviewChange::Changed;
  } catch (const Error&) {
    return PreviewChange::Changed;
  }
}

ViewResult RunView(const PreviewParcel& parcel, Reading& reading, ViewScreen& screen) {
  if (reading.guards.ViewBusy)
    return {.ending = ViewEnding::Busy, .PreviewFolder = {}, .PreviewFile = {}, .seen = {}};
  const BusyView busy(reading.guards);
  return Viewing(parcel, reading, screen).Run();
}

ViewReturn ReturnFromView(const ViewResult& view, Reading& reading, Dialogue& dialogue) {
  assert(view.PreviewFile.parent_path() == view.PreviewFolder);
  if (reading.guards.ViewBusy) return ViewReturn::Stay;
  const BusyView busy(reading.guards);
  try {
    return Return(view, dialogue, reading.files);
  } catch (const Stop&) {
    return ViewReturn::Leave;
  }
}

}  // namespace tarnel
