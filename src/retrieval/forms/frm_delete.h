#pragma once

#include "formkit/working_form.h"
#include "retrieval/delete_list.h"
#include "retrieval/run_delete.h"

class QLabel;

namespace tarnel {

class DeleteOnForm;
class DeleteRowsModel;
class FileTable;
class WorkProgress;

/// Shows what is to be deleted from the session's current carrier, lets rows be taken off the list, and
/// deletes the others. It closes when that is over, when its last row is unchecked, and when the carrier
/// turns out to have been changed since `list` was made: then the list means nothing any more.
class FrmDelete : public WorkingForm {
  Q_OBJECT

 public:
  FrmDelete(Session& session, Dialogue& dialogue, DeleteList list, QWidget* parent);

 protected:
  QPushButton* CancelButton() const override { return Cmd_Cancel; }

 private:
  friend class DeleteOnForm;

  void Build();
  void MakeList();
  void Connect();
  void ShowState();

  void RowUnchecked(int row);
  void RemoveSelected();
  void SelectRow(int row);
  void PressDelete();
  void PressCancel();
  void Delete();
  std::optional<DeleteResult> RunDeleteAsking();

  DeleteRowsModel* m_rows;
  FileTable* m_fileList = nullptr;
  WorkProgress* m_progress = nullptr;
  QLabel* m_panel = nullptr;
  QPushButton* Cmd_Delete = nullptr;
  QPushButton* Cmd_Cancel = nullptr;
};

}  // namespace tarnel
