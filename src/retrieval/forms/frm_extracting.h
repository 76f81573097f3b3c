#pragma once

#include "formkit/working_form.h"
#include "retrieval/run_extract.h"

class QLabel;

namespace tarnel {

class PathLabel;
class WorkProgress;

/// Extracts as soon as it is shown, and closes when that is over. What was damaged, left out or kept is told
/// then; a run without such says nothing.
class FrmExtracting : public WorkingForm {
  Q_OBJECT

 public:
  FrmExtracting(Session& session, Dialogue& dialogue, ExtractRequest request, QWidget* parent);

 protected:
  QPushButton* CancelButton() const override { return m_cancel; }

 private:
  class Screen;

  void Build();
  void Extract();
  void PressCancel();

  ExtractRequest m_request;
  QLabel* m_fileNumber = nullptr;
  WorkProgress* m_progress = nullptr;
  PathLabel* m_file = nullptr;
  PathLabel* m_to = nullptr;
  QPushButton* m_cancel = nullptr;
};

}  // namespace tarnel
