#include "formkit/check_carrier.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/session_screen.h"
#include "formkit/fit_path_text.h"
#include "formkit/layouts.h"
#include "formkit/text.h"
#include "formkit/work_progress.h"
#include "formkit/working_form.h"

namespace tarnel {

namespace {

/// Shows how far the reading has come.
class ReadingAgain : public WorkingForm {
 public:
  ReadingAgain(Session& session, Dialogue& dialogue, QWidget* parent)
      : WorkingForm(session, dialogue, parent) {
    setObjectName(QStringLiteral("FrmReading"));
    setWindowTitle(tr(" Open Carrier File"));
    auto* const path = Named(new PathLabel, "Lb_File");
    path->SetPath(ShownPath(session.current.CurrentCarrierPath));
    m_progress = new WorkProgress("ProgressBar", tr("Loading Status"));
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    m_cancel = Named(buttons->button(QDialogButtonBox::Cancel), "Cmd_Cancel");
    m_cancel->setText(tr("Cancel"));
    connect(m_cancel, &QPushButton::clicked, this, [this] { GetSession().guards.AbortReadingFlag = true; });
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(path);
    layout->addWidget(m_progress);
    layout->addStretch();
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 64, sizeHint().height());
    StartWhenShown([this] {
      Screen screen(*this);
      m_check = ReadCarrierAgain(GetSession(), screen);
      done(QDialog::Accepted);
    });
  }

  CarrierCheck Check() const { return m_check; }

 protected:
  QPushButton* CancelButton() const override { return m_cancel; }

 private:
  class Screen : public SessionScreen<ReadingScreen> {
   public:
    explicit Screen(ReadingAgain& form)
        : SessionScreen(form.GetSession(), form.GetDialogue(), form.CancelFlag()), m_form(form) {}
    void ShowReading(Length passed, Length size) override {
      m_form.m_progress->ShowCount(static_cast<std::size_t>(passed), static_cast<std::size_t>(size));
    }

   private:
    ReadingAgain& m_form;
  };

  WorkProgress* m_progress;
  QPushButton* m_cancel;
  CarrierCheck m_check = CarrierCheck::GaveUp;
};

}  // namespace

CarrierCheck CheckCarrier(Session& session, Dialogue& dialogue, QWidget* parent) {
  const CarrierCheck look = LookAtCarrier(session, dialogue);
  if (look != CarrierCheck::ReadAgain) return look;
  ReadingAgain form(session, dialogue, parent);
  form.exec();
  return form.Check();
}

}  // namespace tarnel
