#pragma once

#include <QDialog>

#include "app/session.h"

class QFormLayout;
class QLabel;

namespace tarnel {

/// What is known of the carrier of the current hideout. Throws Error if the file can't be looked at.
class FrmProperties : public QDialog {
  Q_OBJECT

 public:
  FrmProperties(Session& session, QWidget* parent);

 private:
  QFormLayout* AddFrame(const char* name, const QString& caption);
  QLabel* AddText(QFormLayout& form, const QString& label, const char* name, const QString& text);
  void AddPath(QFormLayout& form, const QString& label, const char* name, const QString& path);
};

}  // namespace tarnel
