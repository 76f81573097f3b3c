#include "retrieval/forms/frm_delete.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/session_screen.h"
#include "base/attempt.h"
#include "carrier/leftovers.h"
#include "formkit/busy_cursor.h"
#include "formkit/check_carrier.h"
#include "formkit/file_table.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/work_progress.h"
#include "retrieval/forms/delete_rows_model.h"
#include "retrieval/questions.h"

namespace tarnel {

/// What the deletion shows on the form.
class DeleteOnForm : public RewritingSessionScreen<RewriteScreen> {
 public:
  explicit DeleteOnForm(FrmDelete& form)
      : RewritingSessionScreen(form.GetSession(), form.GetDialogue(), form.CancelFlag()), m_form(form) {}

  void ShowProgress(Length value, Length maximum) override { m_form.m_progress->Show(value, maximum); }
  void CarrierReplaced() override {
    m_form.Cmd_Cancel->setEnabled(false);
    m_form.m_panel->setText(FrmDelete::tr("Loading..."));
    m_form.m_progress->Restart();
  }
  void ShowReading(Length passed, Length size) override {
    m_form.m_progress->ShowCount(static_cast<std::size_t>(passed), static_cast<std::size_t>(size));
  }

 private:
  FrmDelete& m_form;
};

FrmDelete::FrmDelete(Session& session, Dialogue& dialogue, DeleteList list, QWidget* parent)
    : WorkingForm(session, dialogue, parent), m_rows(new DeleteRowsModel(std::move(list), this)) {
  setObjectName(QStringLiteral("FrmDelete"));
  setWindowTitle(tr(" Delete Hidden Files"));
  Build();
  Connect();
  ShowState();
  SelectRow(0);
  m_fileList->setFocus();
}

void FrmDelete::Build() {
  MakeList();
  auto* const caption = Named(new QLabel(tr("&Selected files:")), "Label1");
  caption->setBuddy(m_fileList);
  m_progress = new WorkProgress("ProgressBar", tr("Progress"));
  auto* const buttons = new QDialogButtonBox;
  Cmd_Delete = Named(buttons->addButton(tr("&Delete!"), QDialogButtonBox::AcceptRole), "Cmd_Delete");
  Cmd_Cancel = Named(buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole), "Cmd_Cancel");
  auto* const bar = Named(new QStatusBar, "StatusBar");
  bar->setSizeGripEnabled(false);
  m_panel = Named(new QLabel, "Panel1");
  bar->addWidget(m_panel, 1);
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(caption);
  layout->addWidget(m_fileList, 1);
  layout->addWidget(m_progress);
  layout->addWidget(buttons);
  layout->addWidget(bar);
  Cmd_Cancel->setDefault(true);  // known to the window only once it stands in it
  const QSize wanted(fontMetrics().averageCharWidth() * 104, fontMetrics().lineSpacing() * 28);
  resize(wanted.boundedTo(screen()->availableSize() * 9 / 10));
}

void FrmDelete::MakeList() {
  m_fileList = Named(new FileTable, "FileList");
  m_fileList->setAccessibleName(tr("Selected files"));
  m_fileList->SetFullRowSelect(true);
  m_fileList->SetGridLines(GetSession().settings.gridLines);
  m_fileList->SetEmptyText(tr("No files selected"));
  m_fileList->setModel(m_rows);
  QHeaderView* const header = m_fileList->header();
  header->setSectionsClickable(false);
  for (const int names : {0, 2})
    header->setSectionResizeMode(names, QHeaderView::Stretch);
  header->resizeSection(1, fontMetrics().averageCharWidth() * 14);
}

void FrmDelete::Connect() {
  connect(m_rows, &DeleteRowsModel::RowUnchecked, this, &FrmDelete::RowUnchecked);
  connect(m_fileList, &FileTable::DeletePressed, this, &FrmDelete::RemoveSelected);
  connect(Cmd_Delete, &QPushButton::clicked, this,
          [this] { Guarded(GetDialogue(), [this] { PressDelete(); }); });
  connect(Cmd_Cancel, &QPushButton::clicked, this,
          [this] { Guarded(GetDialogue(), [this] { PressCancel(); }); });
}

void FrmDelete::ShowState() {
  Cmd_Delete->setEnabled(!m_rows->List().Running());
  Cmd_Cancel->setEnabled(true);
  m_panel->setText(m_rows->List().Running() ? tr("Deleting...")
                                            : tr("Files: %1").arg(m_rows->List().Rows().size()));
}

void FrmDelete::RowUnchecked(int row) {
  if (m_rows->List().Rows().empty()) return done(QDialog::Rejected);
  SelectRow(row);
  ShowState();
}

void FrmDelete::RemoveSelected() {
  const std::vector<std::size_t> selected = m_fileList->SelectedRows();
  if (m_rows->List().Running() || selected.empty()) return;
  m_rows->RemoveSelected(selected);
  SelectRow(static_cast<int>(selected.front()));
  ShowState();
}

/// The last row if there is none of that number.
void FrmDelete::SelectRow(int row) {
  m_fileList->setCurrentIndex(m_rows->index(std::min(row, m_rows->rowCount() - 1), 0));
}

void FrmDelete::PressDelete() {
  if (m_rows->List().Rows().empty()) return done(QDialog::Rejected);
  const CarrierCheck check = CheckCarrier(GetSession(), GetDialogue(), this);
  if (check == CarrierCheck::ReadAgain) return done(QDialog::Rejected);
  if (check == CarrierCheck::AsRead) Delete();
}

void FrmDelete::PressCancel() {
  if (Running()) return AskToCancel(questions::ReallyCancel("delete.cancel", questions::kDeleting));
  done(QDialog::Rejected);
}

/// Closes the form when the deletion is over; what was refused before anything was done leads back to the
/// list.
void FrmDelete::Delete() {
  const Path carrier = GetSession().current.CurrentCarrierPath;
  if (!MayReplace(LeftoversOfRewriting(carrier, GetSession().files), GetDialogue())) return;
  std::optional<DeleteResult> result;
  m_rows->SetRunning(true);
  ShowState();
  m_progress->Restart();
  Cmd_Cancel->setFocus();
  RunWork([&] {
    const BusyCursor busy;
    result = RunDeleteAsking();
  });
  m_rows->SetRunning(false);
  if (!result) return ShowState();
  if (result->ending != RewriteEnding::Done) GetSession().CarrierKeptItsBytes();
  done(result->ending == RewriteEnding::Done ? QDialog::Accepted : QDialog::Rejected);
}

/// Nothing if the person gave up at what made the deletion impossible.
std::optional<DeleteResult> FrmDelete::RunDeleteAsking() {
  DeleteOnForm screen(*this);
  std::optional<DeleteResult> result;
  try {
    Attempt(GetDialogue(), {questions::DeleteError}, [&] {
      Reading reading = GetSession().MakeReading();
      result =
          RunDelete({.rows = m_rows->List().MirrorRows(), .leftover = Leftover::Replace}, reading, screen);
    });
  } catch (const Stop&) {  // then nothing has changed
  }
  return result;
}

}  // namespace tarnel
