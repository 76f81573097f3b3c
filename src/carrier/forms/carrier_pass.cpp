#include "carrier/forms/carrier_pass.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFocusEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "app/session_screen.h"
#include "carrier/open_hideout.h"
#include "carrier/questions.h"
#include "formkit/busy_cursor.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/password_field.h"
#include "formkit/strength_bar.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

constexpr int kTries = 20;
constexpr int kPresetAlgorithm = 4;

/// The opening as the form shows it.
class LoadingScreen : public SessionScreen<OpeningScreen> {
 public:
  LoadingScreen(Session& session, Dialogue& dialogue, QProgressBar& progress)
      : SessionScreen(session, dialogue, session.guards.AbortReadingFlag), m_progress(progress) {}

  void ShowReading(Length passed, Length size) override {
    if (m_progress.maximum() != size) m_progress.setMaximum(static_cast<int>(size));
    m_progress.setValue(static_cast<int>(passed));
  }
  void ShowTry(int number) override { m_progress.setValue(number); }

 private:
  QProgressBar& m_progress;
};

}  // namespace

CarrierPass::CarrierPass(Path carrier, Session& session, Dialogue& dialogue, QWidget* parent)
    : QDialog(parent), m_carrier(std::move(carrier)), m_session(session), m_dialogue(dialogue) {
  setObjectName(QStringLiteral("CarrierPass"));
  setWindowTitle(tr(" Open Carrier File"));
  m_tabs = Named(new QTabWidget(this), "TabStrip");
  m_tabs->setAccessibleName(tr("Open or create a hideout"));
  m_tabs->addTab(MakeOpenSide(), tr("Open Existing Hideout   "));
  m_tabs->addTab(MakeCreateSide(), tr("Create New Hideout   "));
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  m_ok = Named(buttons->button(QDialogButtonBox::Ok), "Cmd_Ok");
  m_ok->setText(tr("OK"));
  m_cancel = Named(buttons->button(QDialogButtonBox::Cancel), "Cmd_Cancel");
  m_cancel->setText(tr("Cancel"));
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(m_tabs);
  layout->addWidget(buttons);

  const bool startsWithCreating =
      m_session.HideOpenRequested || m_session.settingsFile.Number(section::kOpening, "Tabs", "2") == 2;
  m_tabs->setCurrentIndex(static_cast<int>(startsWithCreating ? Side::Create : Side::Open));
  ConnectAll();
}

QWidget* CarrierPass::MakeOpenSide() {
  auto* const side = Named(new QWidget(m_tabs), "Frame_1");
  m_password = Named(new PasswordField(side), "txt_Pass");
  auto* const show = Named(new QCheckBox(tr("Show password"), side), "Check1");
  connect(show, &QCheckBox::toggled, m_password, &PasswordField::SetShown);
  m_progress = Named(new QProgressBar, "ProgressBar");
  m_progress->setAccessibleName(tr("Loading Status"));
  m_progress->setTextVisible(false);
  m_progress->setRange(0, kTries);
  m_status = Named(new QGroupBox(tr("Loading Status"), side), "StatusContainer");
  (new QVBoxLayout(m_status))->addWidget(m_progress);
  KeepPlaceWhenHidden(*m_status);
  m_status->hide();

  auto* const form = new QFormLayout;
  AddRow(*form, tr("Password:"), m_password);
  form->addRow(QString(), Hint(tr("Be aware of upper-/lowercase!")));
  form->addRow(QString(), show);
  auto* const layout = new QVBoxLayout(side);
  layout->addWidget(
      Explanation(tr("Please enter the password to have an access to hidden files which are "
                     "hidden within the carrier file.")));
  layout->addLayout(form);
  layout->addStretch();
  layout->addWidget(m_status);
  return side;
}

QWidget* CarrierPass::MakeCreateSide() {
  auto* const side = Named(new QWidget(m_tabs), "Frame_2");
  m_title = Named(new QLineEdit(tr(kPresetTitle), side), "txt_hideout_titel");
  m_title->setMinimumWidth(fontMetrics().averageCharWidth() * 28);
  m_title->setValidator(
      new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[^/\\\\<>]*")), m_title));
  m_title->installEventFilter(this);
  m_newPassword = Named(new PasswordField(side), "txt_pass2");
  m_newPassword->SetRefused(NewPasswordRefuses);
  m_confirmation = Named(new PasswordField(side), "txt_confirm");

  auto* const form = new QFormLayout;
  AddRow(*form, tr("Hideout Titel:"), m_title);
  AddRow(*form, tr("Password:"), m_newPassword);
  form->addRow(QString(), Named(new StrengthBar(*m_newPassword, m_dialogue), "Strength"));
  AddRow(*form, tr("Retype Password for Confirmation:"), m_confirmation);
  form->setRowWrapPolicy(QFormLayout::WrapLongRows);
  auto* const layout = new QVBoxLayout(side);
  layout->addWidget(Explanation(
      tr("Enter a password that will be used to encrypt and protect hidden files within the carrier file.")));
  layout->addLayout(form);
  layout->addWidget(MakeAlgorithmBox());
  layout->addStretch();
  return side;
}

QWidget* CarrierPass::MakeAlgorithmBox() {
  auto* const box = new QGroupBox(tr("Encryption Algorithm"));
  m_algorithm = Named(new QComboBox(box), "Cmb_Encrypt");
  m_algorithm->setAccessibleName(tr("Encryption Algorithm"));
  for (const OfferedAlgorithm& each : OfferedAlgorithms()) {
    m_algorithm->addItem(QString::fromLatin1(each.name.data(), static_cast<qsizetype>(each.name.size())));
  }
  m_algorithm->setCurrentIndex(kPresetAlgorithm);
  m_algorithmText = Named(new QLabel(box), "txt_Algorithm");
  m_algorithmText->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_algorithmText->setAccessibleName(tr("Properties of the algorithm"));
  ShowAlgorithm();
  auto* const layout = new QVBoxLayout(box);
  layout->addWidget(m_algorithm);
  layout->addWidget(m_algorithmText);
  return box;
}

void CarrierPass::ConnectAll() {
  connect(m_tabs, &QTabWidget::currentChanged, this, &CarrierPass::FocusSide);
  connect(m_algorithm, &QComboBox::currentIndexChanged, this, &CarrierPass::ShowAlgorithm);
  connect(m_cancel, &QPushButton::clicked, this, &CarrierPass::reject);
  connect(m_ok, &QPushButton::clicked, this, [this] { Guarded(m_dialogue, [this] { PressOk(); }); });
}

void CarrierPass::showEvent(QShowEvent* event) {
  FitPages(*m_tabs);
  layout()->activate();
  resize(size().expandedTo(sizeHint()));
  QDialog::showEvent(event);
  FocusSide();
}

void CarrierPass::FocusSide() {
  if (m_tabs->currentIndex() == static_cast<int>(Side::Open)) {
    m_password->setFocus();
  } else {
    m_title->setFocus();
    m_title->selectAll();
  }
}

void CarrierPass::ShowAlgorithm() {
  const OfferedAlgorithm& chosen =
      OfferedAlgorithms()[static_cast<std::size_t>(std::max(0, m_algorithm->currentIndex()))];
  m_algorithmText->setText(BoxText(std::string(chosen.blockText) + "\r\n" + std::string(chosen.keyText)));
}

bool CarrierPass::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_title && event->type() == QEvent::FocusOut) {
    const auto reason = static_cast<QFocusEvent*>(event)->reason();
    const bool hasUserLeft =
        reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::MouseFocusReason;
    if (hasUserLeft) QTimer::singleShot(0, this, &CarrierPass::FocusPasswordAfterTitle);
  }
  return QDialog::eventFilter(watched, event);
}

void CarrierPass::FocusPasswordAfterTitle() {
  if (m_newPassword->isVisible() && m_newPassword->IsEmpty()) m_newPassword->setFocus();
}

void CarrierPass::PressOk() {
  m_session.Remember(section::kOpening, "Tabs", "1");
  if (m_tabs->currentIndex() == static_cast<int>(Side::Open)) {
    OpenHideout();
  } else {
    CreateHideout();
  }
}

void CarrierPass::OpenHideout() {
  if (m_password->IsEmpty()) {
    m_dialogue.Ask(NoPasswordMessage());
    return;
  }
  ShowTrying(true);
  LoadingScreen screen(m_session, m_dialogue, *m_progress);
  Reading reading = m_session.MakeReading();
  const LoadResult result = [&] {
    const BusyCursor busy;
    return TryPassword(m_carrier, Key(m_password->Password()), reading, screen);
  }();
  m_session.SettleTree();
  if (IsFinal(result)) {
    accept();
    return;
  }
  m_password->Clear();
  ShowTrying(false);
  AskForNewHideout();
}

void CarrierPass::ShowTrying(bool isTrying) {
  m_ok->setEnabled(!isTrying);
  m_tabs->tabBar()->setEnabled(!isTrying);
  m_tabs->setTabEnabled(static_cast<int>(Side::Create), !isTrying);  // Ctrl+Tab passes the tab bar by
  m_progress->setRange(0, kTries);
  m_progress->setValue(0);
  m_status->setVisible(isTrying);
}

void CarrierPass::AskForNewHideout() {
  if (m_dialogue.Ask(AccessDeniedQuestion()) == Answer::Yes) {
    m_tabs->setCurrentIndex(static_cast<int>(Side::Create));
  } else {
    m_password->setFocus();
  }
}

void CarrierPass::CreateHideout() {
  const Secret password = m_newPassword->Password();
  const std::string title = m_title->text().toStdString();
  if (const auto fault =
          CheckNewHideout(m_carrier, password, m_confirmation->Password(), title, m_session.files)) {
    m_dialogue.Ask(NewHideoutMessage(*fault));
    return;
  }
  const OfferedAlgorithm& chosen = OfferedAlgorithms()[static_cast<std::size_t>(m_algorithm->currentIndex())];
  Reading reading = m_session.MakeReading();
  TreeNode& root = tarnel::CreateHideout(m_carrier, Key(password), title, chosen.algorithm, reading);
  m_session.HideoutCreated(root, chosen.name);
  accept();
}

void CarrierPass::reject() {
  if (m_session.guards.ReadingBusy) {
    m_session.guards.AbortReadingFlag = true;
    return;
  }
  m_session.guards.AbortReadingFlag = false;
  m_isCanceled = true;
  QDialog::reject();
}

}  // namespace tarnel
