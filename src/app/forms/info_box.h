#pragma once

#include <QDialog>

#include "app/forms/manual.h"

namespace tarnel {

/// The about box.
class Info : public QDialog {
  Q_OBJECT

 public:
  Info(const OutsideOpener& open, QWidget* parent);
};

}  // namespace tarnel
