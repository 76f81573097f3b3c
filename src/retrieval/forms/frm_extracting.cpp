#include "retrieval/forms/frm_extracting.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "app/session_screen.h"
#include "base/formats.h"
#include "formkit/busy_cursor.h"
#include "formkit/fit_path_text.h"
#include "formkit/layouts.h"
#include "formkit/text.h"
#include "formkit/work_progress.h"
#include "retrieval/extract_rules.h"
#include "retrieval/forms/frm_overwrite.h"
#include "retrieval/questions.h"
#include "retrieval/work_list.h"

namespace tarnel {

/// What the run shows on the form: the bar for the file, and below it the line for all files.
class FrmExtracting::Screen : public ForwardingScreen<ExtractScreen> {
 public:
  explicit Screen(FrmExtracting& form)
      : ForwardingScreen(form.GetDialogue(), form.CancelFlag()), m_form(form) {
    const Catalogue& catalogue = form.GetSession().catalogue;
    for (const std::size_t row : ExtractWorkList(form.m_request, catalogue))
      m_total += catalogue.Rows().at(row).size;
  }

  Answer AskToOverwrite(const Question& question, const FileStat& existing,
                        const MirrorRow& hidden) override {
    return FrmOverwrite(question, existing, hidden, &m_form).Ask();
  }
  void ShowFile(std::size_t number, std::size_t count, std::string_view storedName, Length size) override {
    m_total -= m_size - m_value;  // what was not read of the one before won't be
    m_done += m_value;
    m_size = size;
    m_value = 0;
    m_isLast = number == count;
    m_form.m_fileNumber->setText(QStringLiteral("[%1/%2]").arg(number).arg(count));
    m_form.m_file->SetPath(
        ShownText(storedName),
        QString::fromStdString(" (" + GroupedKilobytes(static_cast<double>(size)) + " KB)"));
    m_form.m_to->SetPath({});
    m_form.m_progress->RestartBar();
  }
  void ShowTarget(const Path& target) override { m_form.m_to->SetPath(ShownPath(target)); }
  void ShowProgress(Length value, Length maximum) override {
    m_value = value;
    m_form.m_progress->ShowPart(value, maximum, m_done + m_value, m_total);
    m_form.m_cancel->setEnabled(!m_isLast || value < maximum);  // then there is nothing left to cancel
  }

 private:
  FrmExtracting& m_form;
  Length m_total = 0;  ///< of the files that are read or may be
  Length m_done = 0;   ///< of the files before
  Length m_size = 0;
  Length m_value = 0;
  bool m_isLast = false;
};

FrmExtracting::FrmExtracting(Session& session, Dialogue& dialogue, ExtractRequest request, QWidget* parent)
    : WorkingForm(session, dialogue, parent), m_request(std::move(request)) {
  setObjectName(QStringLiteral("FrmExtracting"));
  setWindowTitle(tr(" Extracting..."));
  Build();
  connect(m_cancel, &QPushButton::clicked, this, &FrmExtracting::PressCancel);
  StartWhenShown([this] { Extract(); });
}

void FrmExtracting::Build() {
  m_fileNumber = Named(new QLabel, "Lb_FileNumber");
  m_progress = new WorkProgress("ProgressBar1", tr("Progress"));
  m_file = Named(new PathLabel, "Lb_File");
  m_to = Named(new PathLabel, "Lb_to");
  auto* const form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->addRow(tr("File:"), m_file);
  form->addRow(tr("Extract to:"), m_to);
  form->addRow(tr("Progress:"), m_fileNumber);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
  m_cancel = Named(buttons->button(QDialogButtonBox::Cancel), "Cmd_Cancel");
  m_cancel->setText(tr("Cancel"));
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(m_progress);
  layout->addStretch();
  layout->addWidget(buttons);
  resize(fontMetrics().averageCharWidth() * 72, sizeHint().height());
}

void FrmExtracting::Extract() {
  done(QDialog::Accepted);  // when it is over, whatever its end
  ExtractResult result;
  {
    const BusyCursor busy;
    Screen screen(*this);
    Reading reading = GetSession().MakeReading();
    result = RunExtract(m_request, reading, screen);
  }
  if (const auto report = questions::ExtractReport(result)) GetDialogue().Ask(*report);
}

void FrmExtracting::PressCancel() {
  if (!Running()) return done(QDialog::Rejected);
  AskToCancel(questions::ReallyCancel("extract.cancel", questions::kExtracting));
}

}  // namespace tarnel
