#include "retrieval/preview.h"

#include <memory>

#include "base/attempt.h"
#include "base/destruction.h"
#include "base/file_streams.h"
#include "base/temp_names.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "crypto/keys.h"
#include "retrieval/block_source.h"
#include "retrieval/payload.h"
#include "retrieval/questions.h"

namespace tarnel {
namespace {

class Viewing {
 public:
  Viewing(const PreviewParcel& parcel, const Reading& reading, ViewScreen& screen, const ShellOpen& shellOpen)
      : m_parcel(parcel), m_reading(reading), m_screen(screen), m_shellOpen(shellOpen) {}

  ViewResult Run();

 private:
  void MakeFolder();
  void Extract();
  void TakeOut(File& plain);
  void CleanUp(ViewEnding ending);

  template <class Statement>
  Outcome Try(Statement&& statement) {
    return Attempt(m_screen, {questions::ViewError}, std::forward<Statement>(statement));
  }
  template <class Statement>
  void Must(Statement&& statement) {
    if (Try(std::forward<Statement>(statement)) == Outcome::Ignored) throw Stop{StopReason::Aborted};
  }

  const PreviewParcel& m_parcel;
  const Reading& m_reading;
  ViewScreen& m_screen;
  const ShellOpen& m_shellOpen;
  ViewResult m_result;
};

ViewResult Viewing::Run() {
  try {
    PrepareKey(m_reading.current.CurrentPassword, [this] { m_screen.Yield(); });
    Must([this] { MakeFolder(); });
    m_screen.ShowExtractingTo(m_result.PreviewFile);
    m_screen.Yield();
    Must([this] { Extract(); });
    Try([this] { m_shellOpen(m_result.PreviewFolder); });
    Try([this] { m_shellOpen(m_result.PreviewFile); });
    m_screen.ShowProgress(m_parcel.ViewSize, m_parcel.ViewSize);
  } catch (const Stop& stop) {
    CleanUp(stop.reason == StopReason::Cancelled ? ViewEnding::Cancelled : ViewEnding::Aborted);
  }
  return m_result;
}

void Viewing::MakeFolder() {
  m_result.PreviewFolder = MakeTempFolder(m_reading.files);
  m_result.PreviewFile = m_result.PreviewFolder / ToPlatform(m_parcel.ViewFileName);
}

void Viewing::Extract() {
  const std::unique_ptr<Folder> folder = m_reading.files.OpenFolder(m_result.PreviewFolder);
  const std::string name = ToPlatform(m_parcel.ViewFileName);
  if (folder->Stat(name)) folder->Remove(name);
  const std::unique_ptr<File> plain = folder->CreateNew(name, 0600);
  TakeOut(*plain);
  plain->Close();
}

void Viewing::TakeOut(File& plain) {
  const CurrentHideout& current = m_reading.current;
  const std::unique_ptr<File> carrier = m_reading.files.OpenToRead(current.CurrentCarrierPath);
  MustLieInside(m_parcel.ViewStart, m_parcel.ViewSize, carrier->Size(), current.CurrentCarrierPath);
  FileSource stretch(*carrier, current.CurrentCarrierPath, m_parcel.ViewStart, m_parcel.ViewSize);
  Length passed = 0;
  BlockSource payload(stretch,
                      BlockCount(m_parcel.ViewSize, CancelLook::BehindFullBlock, m_screen,
                                 [&](Length n) { m_screen.ShowProgress(passed += n, m_parcel.ViewSize); }));
  FileSink sink(plain, Position{1});
  if (!TakeOutPayload(payload, m_parcel.ViewCompressed, current.CurrentAlgorithmId, current.CurrentPassword,
                      sink))
    throw DamagedPayload("view", m_parcel.ViewFileName);
}

void Viewing::CleanUp(ViewEnding ending) {
  m_result.ending = ending;
  if (m_result.PreviewFolder.empty()) return;
  OverwriteAndKill(m_result.PreviewFile, m_screen, m_reading.files);
  if (ending == ViewEnding::Aborted) RemovePath(m_result.PreviewFolder, m_screen, m_reading.files);
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

bool WantsToLeave(Dialogue& dialogue) {
  return dialogue.Ask(questions::ReturnFromView()) == Answer::Yes ||
         dialogue.Ask(questions::ReturnWithoutDeletion()) == Answer::Yes;
}

}  // namespace

PreviewParcel ParcelOf(const MirrorRow& row) {
  return {.ViewFileName = WipedText(row.Name()),
          .ViewPlainSize = std::string(row.Field(tag::kPlainSize)),
          .ViewCompressed = std::string(row.Field(tag::kCompressed)),
          .ViewAttr = std::string(row.Field(tag::kAttributes)),
          .ViewFolder = WipedText(row.Folder()),
          .ViewMode = std::string(row.Field(tag::kMode)),
          .ViewStart = row.start,
          .ViewSize = row.size,
          .ViewTail = row.tail};
}

ViewResult RunView(const PreviewParcel& parcel, const Reading& reading, ViewScreen& screen,
                   const ShellOpen& shellOpen) {
  return Viewing(parcel, reading, screen, shellOpen).Run();
}

ViewReturn ReturnFromView(const Path& previewFile, const Path& previewFolder, Dialogue& dialogue,
                          Files& files) {
  for (;;) {
    if (!WantsToLeave(dialogue)) return ViewReturn::Stay;
    if (!files.Stat(previewFile, Files::Links::DontFollow)) return ViewReturn::Leave;
    if (OverwriteAndKill(previewFile, dialogue, files)) break;
    if (dialogue.Ask(questions::PreviewLocked()) != Answer::Retry) break;
  }
  ReturnDialogue person(dialogue);
  RemovePath(previewFolder, person, files);
  return ViewReturn::Leave;
}

}  // namespace tarnel
