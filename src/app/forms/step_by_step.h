#pragma once

#include <QDialog>
#include <QTimer>

#include "app/session.h"
#include "app/step_by_step.h"

class QCheckBox;
class QLabel;
class QPushButton;
class QStackedWidget;

namespace tarnel {

/// The step by step guide as a window that stands beside the others. Left and Right turn its pages. It writes
/// nothing but, on OK with the box ticked, that it isn't to come by itself any more.
class StepbyStep : public QDialog {
  Q_OBJECT

 public:
  StepbyStep(Session& session, QWidget* parent);

  /// Unticks the box and puts the window in front.
  void ShowAgain();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QWidget* MakeFoot();
  void Turn(const GuideControl* control);
  void ShowPage();
  void ShowControl(QPushButton& button, const GuideControl* control);
  void KeepFocus(bool hadFocus);
  void StartBlinking();
  void ShowBlink();
  void PressOk();

  Session& m_session;
  StepbyStepGuide m_guide;
  QLabel* m_title;
  QStackedWidget* m_pages;
  QPushButton* m_back;
  QPushButton* m_forward;
  QPushButton* m_link;
  QLabel* m_number;
  QCheckBox* m_notAgain;
  QTimer m_arrBlink;
  bool m_mayBlink = true;
};

}  // namespace tarnel
