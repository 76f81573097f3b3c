#include "hiding/forms/hide_screens.h"

#include <QLabel>
#include <QProgressBar>
#include <utility>

#include "base/formats.h"
#include "formkit/file_table.h"
#include "formkit/fit_path_text.h"
#include "formkit/text.h"
#include "formkit/work_progress.h"
#include "hiding/forms/hide_rows_model.h"

namespace tarnel {

CollectingOnForm::CollectingOnForm(Dialogue& dialogue, const bool& isCancelled, const HideWizard& wizard,
                                   CollectingPanel& panel)
    : ForwardingScreen(dialogue, isCancelled), m_wizard(wizard), m_panel(panel) {}

bool CollectingOnForm::CancelRequested() const {
  return m_wizard.StopSelecting() || ForwardingScreen::CancelRequested();
}

void CollectingOnForm::ShowFolder(const Path& folder, std::size_t entries) {
  m_panel.Lb_DirSelect->SetPath(ShownPath(folder));
  m_panel.ProgressBar2->setRange(0, static_cast<int>(entries) + 1);
  m_panel.ProgressBar2->setValue(0);
}

void CollectingOnForm::EntryPassed() {
  m_panel.ProgressBar2->setValue(m_panel.ProgressBar2->value() + 1);
}

void CollectingOnForm::ShowAdded(const Path& file, std::size_t found) {
  m_panel.Lb_FileSelect->SetPath(ShownPath(file));
  m_panel.Lb_Found->setText(QString::number(found) + CollectingPanel::tr(" Files"));
}

HideOnForm::HideOnForm(Session& session, Dialogue& dialogue, const bool& isCancelled, FilesFrame& frame,
                       HideRowsModel& rows, std::function<void()> loadingBegins)
    : SessionScreen(session, dialogue, isCancelled),
      m_list(*frame.Files),
      m_rows(rows),
      m_frame(*frame.Hiding),
      m_loadingBegins(std::move(loadingBegins)) {}

void HideOnForm::ShowStage(HideStage stage) {
  m_frame.Lb_Act->setText(Translated(StageText(stage)) + QStringLiteral("..."));
  if (stage == HideStage::Loading) {
    m_frame.Lb_FileName->SetPath({});
    m_frame.Lb_Filesize->clear();
    m_loadingBegins();
  }
  if (stage == HideStage::Deleting || stage == HideStage::Loading) m_frame.Progress->Restart();
}

void HideOnForm::ShowFile(std::size_t number, std::size_t count, const Path& source, Length size) {
  if (number == 1) m_frame.Progress->Restart();
  ShowNumber(number, count);
  m_frame.Lb_FileName->SetPath(ShownPath(source));
  m_frame.Lb_Filesize->setText(QString::fromStdString(GroupedKilobytes(static_cast<double>(size)) + " KB"));
  m_list.setCurrentIndex(m_rows.index(static_cast<int>(number) - 1, 0));
}

void HideOnForm::FileDone(std::size_t number) {
  m_rows.SetDone(number);
  m_list.scrollTo(m_rows.index(static_cast<int>(number) - 1, 0));
}

void HideOnForm::ShowProgress(Length value, Length maximum) {
  m_frame.Progress->Show(value, maximum);
}

void HideOnForm::ShowBackup(Length copied, Length size) {
  m_frame.Progress->Show(copied, size);
}

void HideOnForm::ShowOriginal(OriginalStep step, const Path& original, std::size_t number,
                              std::size_t count) {
  if (step != m_step) m_frame.Progress->Restart();
  m_step = step;
  m_frame.Lb_FileName->SetPath(ShownPath(original));
  m_frame.Lb_Filesize->clear();
  if (number == 0) return;
  ShowNumber(number, count);
  m_frame.Progress->ShowCount(number, count);
}

void HideOnForm::ShowReading(Length passed, Length size) {
  m_frame.Progress->ShowCount(static_cast<std::size_t>(passed), static_cast<std::size_t>(size));
}

void HideOnForm::ShowNumber(std::size_t number, std::size_t count) {
  m_frame.Lb_FileNumber->setText(HideFrame::tr("Progress: [%1/%2]").arg(number).arg(count));
}

}  // namespace tarnel
