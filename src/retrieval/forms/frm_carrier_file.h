#pragma once

#include <QDialog>
#include <functional>

#include "app/session.h"
#include "base/dialogue.h"
#include "formkit/file_dialogs.h"

class QLabel;
class QPushButton;

namespace tarnel {

class PathField;

/// Locates a carrier and hands it on.
class FrmCarrierFile : public QDialog {
  Q_OBJECT

 public:
  /// `open` goes on with the carrier and returns when that has come to its end.
  FrmCarrierFile(Session& session, Dialogue& dialogue, FileDialogs& fileDialogs,
                 std::function<void(const Path&)> open, QWidget* parent);

 private:
  QWidget* MakeFrame();
  void ShowKind();
  void Browse();
  Path StartFolder() const;
  void PressOk();
  bool IsFileLocated() const;

  Session& m_session;
  Dialogue& m_dialogue;
  FileDialogs& m_fileDialogs;
  std::function<void(const Path&)> m_open;

  PathField* m_carrier;
  QLabel* m_kind;
  QPushButton* m_browse;
  QPushButton* m_ok;
};

}  // namespace tarnel
