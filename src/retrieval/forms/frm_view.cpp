#include "retrieval/forms/frm_view.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <utility>

#include "app/session_screen.h"
#include "base/attempt.h"
#include "carrier/leftovers.h"
#include "carrier/stored_text.h"
#include "formkit/busy_cursor.h"
#include "formkit/check_carrier.h"
#include "formkit/fit_path_text.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/text.h"
#include "formkit/type_icons.h"
#include "formkit/work_progress.h"
#include "retrieval/questions.h"

namespace tarnel {

namespace {

constexpr int kWatchInterval = 1000;
constexpr int kIconSize = 48;

}  // namespace

/// The extraction as the first frame shows it.
class FrmView::OpeningOnForm : public ForwardingScreen<ViewScreen> {
 public:
  explicit OpeningOnForm(FrmView& form)
      : ForwardingScreen(form.GetDialogue(), form.CancelFlag()), m_form(form) {}

  void ShowExtractingTo(const Path& previewFile) override {
    m_form.Lb_extractingTo->SetPath(ShownPath(previewFile));
  }
  void ShowProgress(Length value, Length maximum) override { m_form.ProgressBar->Show(value, maximum); }
  void OpenWithDesktop(const Path& path) override { m_form.m_open(path); }

 private:
  FrmView& m_form;
};

/// An update as the second frame shows it, from the person's Yes on. An update that is tried again asks for
/// none.
class FrmView::UpdatingOnForm : public RewritingSessionScreen<RewriteScreen> {
 public:
  explicit UpdatingOnForm(FrmView& form)
      : RewritingSessionScreen(form.GetSession(), form.GetDialogue(), form.CancelFlag()), m_form(form) {}

  Answer Ask(const Question& question) override {
    if (question.id != question_id::kUpdate) return RewritingSessionScreen::Ask(question);
    if (!m_isWanted) m_isWanted = RewritingSessionScreen::Ask(question) == Answer::Yes;
    return m_isWanted ? Answer::Yes : Answer::No;
  }
  void ShowProgress(Length value, Length maximum) override {
    if (m_form.m_step == ViewStep::Asking) Begin();
    m_form.ProgressBar1->Show(value, maximum);
  }
  void CarrierReplaced() override { m_form.ShowStep(ViewStep::Reading); }
  void ShowReading(Length, Length) override {}

 private:
  void Begin() {
    m_busy.emplace();
    m_form.ProgressBar1->Restart();
    m_form.ShowStep(ViewStep::Updating);
    m_form.Cmd_Cancel->setFocus();
  }

  FrmView& m_form;
  bool m_isWanted = false;
  std::optional<BusyCursor> m_busy;
};

/// Waits again at the end of the scope, whatever its end is.
class FrmView::Returning {
 public:
  explicit Returning(FrmView& form) : m_form(form) {}
  Returning(const Returning&) = delete;
  Returning& operator=(const Returning&) = delete;
  ~Returning() { m_form.ShowStep(ViewStep::Waiting); }

 private:
  FrmView& m_form;
};

FrmView::FrmView(Session& session, Dialogue& dialogue, ShellOpen open, QWidget* parent)
    : WorkingForm(session, dialogue, parent), m_open(std::move(open)), m_viewed(session.current) {
  setObjectName(QStringLiteral("FrmView"));
  setWindowTitle(tr(" View/Edit..."));
  m_frames = new QStackedWidget;
  m_frames->addWidget(MakeOpeningFrame());
  m_frames->addWidget(MakeWaitingFrame());
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(m_frames, 1);
  layout->addLayout(MakeButtons());
  const auto on = [this](QPushButton* button, void (FrmView::*slot)()) {
    connect(button, &QPushButton::clicked, this,
            [this, slot] { Guarded(GetDialogue(), [&] { (this->*slot)(); }); });
  };
  on(Cmd_Ok, &FrmView::PressOk);
  on(Cmd_Update, &FrmView::PressUpdate);
  on(Cmd_Cancel, &FrmView::PressCancel);
  connect(&m_watch, &QTimer::timeout, this, &FrmView::ShowChange);
  m_watch.start(kWatchInterval);
  setMinimumWidth(fontMetrics().averageCharWidth() * 64);
  ShowFileName();
  ShowStep(ViewStep::Opening);
  StartWhenShown([this] { Open(); });
}

FrmView::~FrmView() {
  GetSession().previewParcel = {};
}

QWidget* FrmView::MakeOpeningFrame() {
  auto* const frame = Named(new QWidget, "Frame_0");
  Lb_File = Named(new PathLabel, "Lb_File");
  Lb_extractingTo = Named(new PathLabel, "Lb_extractingTo");
  ProgressBar = new WorkProgress("ProgressBar", tr("Progress"));
  auto* const form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->addRow(tr("File:"), Lb_File);
  form->addRow(tr("Extracting to:"), Lb_extractingTo);
  auto* const layout = new QVBoxLayout(frame);
  layout->setContentsMargins({});
  layout->addLayout(form);
  layout->addStretch();
  layout->addWidget(ProgressBar);
  return frame;
}

QWidget* FrmView::MakeWaitingFrame() {
  auto* const frame = Named(new QWidget, "Frame_1");
  auto* const icon = Named(new QLabel, "Icon");
  const std::string name = ToPlatform(GetSession().previewParcel.ViewFileName);
  icon->setPixmap(IconOfName(name).pixmap(QSize(kIconSize, kIconSize), devicePixelRatioF()));
  Lb_Name = Named(new PathLabel, "Lb_Name");
  QFont large = Lb_Name->font();
  large.setPointSizeF(large.pointSizeF() * 1.4);
  Lb_Name->setFont(large);
  Lb_Change = Named(Hint({}), "Lb_Change");
  ProgressBar1 = new WorkProgress("ProgressBar1", tr("Progress"));
  KeepPlaceWhenHidden(*ProgressBar1);
  m_panel = Named(new QLabel, "Panel1");
  m_panel->setMinimumHeight(m_panel->fontMetrics().height());
  auto* const head = new QHBoxLayout;
  head->addWidget(icon);
  head->addWidget(Lb_Name, 1);
  auto* const layout = new QVBoxLayout(frame);
  layout->setContentsMargins({});
  layout->addLayout(head);
  layout->addWidget(Named(
      Explanation(tr("Click on the \"OK\" button to delete the temporally extracted file and return to "
                     "Tarnel. If you want to save changes made to the extracted file back to the carrier "
                     "file, then click on the \"Update\" button first.")),
      "Label2"));
  layout->addWidget(Lb_Change);
  layout->addStretch();
  layout->addWidget(m_panel);
  layout->addWidget(ProgressBar1);
  return frame;
}

/// The two that wait keep their places when the third comes.
QLayout* FrmView::MakeButtons() {
  Cmd_Cancel = Named(new QPushButton(tr("Cancel")), "Cmd_Cancel");
  Cmd_Update = Named(new QPushButton(tr("&Update...")), "Cmd_Update");
  Cmd_Ok = Named(new QPushButton(tr("&OK")), "Cmd_Ok");
  auto* const buttons = new QHBoxLayout;
  buttons->addStretch();
  for (QPushButton* const button : {Cmd_Cancel, Cmd_Update, Cmd_Ok})
    buttons->addWidget(button);
  return buttons;
}

void FrmView::ShowFileName() {
  const PreviewParcel& parcel = GetSession().previewParcel;
  const QString size = QString::fromStdString(SizeBehindName(parcel));
  for (PathLabel* const label : {Lb_File, Lb_Name})
    label->SetPath(ShownText(parcel.ViewFileName), size);
}

void FrmView::ShowStep(ViewStep step) {
  m_step = step;
  const ViewControls controls = ControlsOf(step);
  m_frames->setCurrentIndex(controls.isExtracting ? 0 : 1);
  Cmd_Ok->setEnabled(controls.Cmd_Ok);
  Cmd_Update->setEnabled(controls.Cmd_Update);
  Cmd_Cancel->setEnabled(controls.Cmd_Cancel);
  Cmd_Cancel->setVisible(controls.Cmd_Cancel);
  Cmd_Ok->setVisible(!controls.isExtracting);
  Cmd_Update->setVisible(!controls.isExtracting);
  ProgressBar1->setVisible(controls.isProgressShown);
  m_panel->setText(Translated(controls.panel));
  m_isUpdatePreset.reset();
  ShowChange();
}

/// Whoever comes back from the editor finds the button that is due.
void FrmView::ShowChange() {
  if (m_step != ViewStep::Waiting) return;
  const ChangeRemark remark = RemarkOn(ChangeOf(m_view, GetSession().files), m_wasUpdated);
  Lb_Change->setText(QString::fromStdString(remark.text));
  if (m_isUpdatePreset == remark.isUpdatePreset) return;
  m_isUpdatePreset = remark.isUpdatePreset;
  QPushButton* const preset = remark.isUpdatePreset ? Cmd_Update : Cmd_Ok;
  preset->setDefault(true);
  preset->setFocus();
}

Reading FrmView::ViewedReading() {
  Session& session = GetSession();
  return {session.files, session.catalogue, session.guards, m_viewed};
}

void FrmView::Open() {
  const BusyCursor busy;
  OpeningOnForm screen(*this);
  Reading reading = ViewedReading();
  m_view = RunView(GetSession().previewParcel, reading, screen);
  if (m_view.ending != ViewEnding::Shown) return done(QDialog::Rejected);
  ShowStep(ViewStep::Waiting);
}

void FrmView::PressUpdate() {
  const Returning waiting(*this);
  ShowStep(ViewStep::Asking);
  if (!FindEntryAgain()) return;
  const std::vector<Path> leftovers = LeftoversOfRewriting(m_viewed.CurrentCarrierPath, GetSession().files);
  if (!MayReplace(leftovers, GetDialogue())) return;
  Update(leftovers.empty() ? Leftover::Refuse : Leftover::Replace);
}

/// The record of an entry, as it is stored, stands in no other: after a reading it says which one it is.
bool FrmView::FindEntryAgain() {
  Session& session = GetSession();
  if (session.current.CurrentCarrierPath != m_viewed.CurrentCarrierPath) return true;  // the update looks too
  const CarrierCheck check = CheckCarrier(session, GetDialogue(), this);
  if (check != CarrierCheck::ReadAgain) return check == CarrierCheck::AsRead;
  for (const MirrorRow* const row : session.catalogue.RowsOf(m_viewed.CurrentCarrierPath)) {
    if (row->tail != session.previewParcel.ViewTail) continue;
    session.previewParcel = ParcelOf(*row);
    return true;
  }
  GetDialogue().Ask(questions::ViewedEntryGone());
  return false;
}

void FrmView::Update(Leftover leftover) {
  const UpdateRequest request{.parcel = GetSession().previewParcel,
                              .previewFile = m_view.PreviewFile,
                              .compressionLevel = GetSession().settings.compressLevel,
                              .leftover = leftover};
  std::optional<UpdateResult> result;
  RunWork([&] {
    UpdatingOnForm screen(*this);
    try {
      Attempt(GetDialogue(), {questions::UpdateError}, [&] {
        Reading reading = ViewedReading();
        result = RunUpdate(request, reading, screen);
      });
    } catch (const Stop&) {  // then nothing has changed
    }
  });
  const bool isDone =
      result && result->refused == UpdateResult::Refused::No && result->ending == RewriteEnding::Done;
  if (!isDone) return GetSession().CarrierKeptItsBytes();
  m_view.seen = result->taken;
  GetSession().previewParcel = std::move(result->parcel);
  m_wasUpdated = true;
  ShowFileName();
}

void FrmView::PressOk() {
  const Returning waiting(*this);
  ShowStep(ViewStep::Leaving);
  ViewReturn answer = ViewReturn::Stay;
  RunWork([&] {
    Reading reading = ViewedReading();
    answer = ReturnFromView(m_view, reading, GetDialogue());
  });
  if (answer == ViewReturn::Leave) done(QDialog::Accepted);
}

void FrmView::PressCancel() {
  const ViewCancel cancel = CancelOf(m_step);
  if (cancel == ViewCancel::WhenAsked)
    return AskToCancel(questions::ReallyCancel("update.cancel", questions::kUpdating));
  if (cancel == ViewCancel::Refused) return;
  RequestCancel();
  if (!Running()) done(QDialog::Rejected);
}

}  // namespace tarnel
