#include "app/forms/status_panels.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QTime>

#include "formkit/icons.h"

namespace tarnel {

namespace {

constexpr int kPictureSize = 16;

}  // namespace

StatusPanel::StatusPanel(const char* name, const QString& accessibleName, QWidget* parent)
    : QFrame(parent),
      m_accessibleName(accessibleName),
      m_picture(new QLabel(this)),
      m_text(new QLabel(this)) {
  setObjectName(QLatin1String(name));
  setAccessibleName(accessibleName);
  m_text->setTextFormat(Qt::PlainText);
  m_picture->hide();
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(4, 0, 4, 0);
  layout->addWidget(m_picture);
  layout->addWidget(m_text);
}

void StatusPanel::SetText(const QString& text) {
  if (m_text->text() == text) return;
  m_text->setText(text);
  setAccessibleDescription(text.trimmed());
}

QString StatusPanel::Text() const {
  return m_text->text();
}

void StatusPanel::SetPicture(const char* icon) {
  m_picture->setVisible(icon != nullptr);
  if (icon == nullptr) {
    m_picture->setPixmap({});
  } else {
    m_picture->setPixmap(OwnIcon(icon).pixmap(QSize(kPictureSize, kPictureSize), devicePixelRatioF()));
  }
}

bool StatusPanel::HasPicture() const {
  return !m_picture->pixmap(Qt::ReturnByValue).isNull();
}

void StatusPanel::mouseDoubleClickEvent(QMouseEvent*) {
  emit DoubleClicked();
}

StatusPanels::StatusPanels(QWidget* parent) : QStatusBar(parent) {
  setObjectName(QStringLiteral("StatusBar"));
  info = new StatusPanel("Info", tr("Info"), this);
  files = new StatusPanel("Files", tr("Number of files"), this);
  algorithm = new StatusPanel("Algorithm", tr("Algorithm"), this);
  carrierFile = new StatusPanel("CarrierFile", tr("Carrier file"), this);
  lock = new StatusPanel("Lock", tr("Lock"), this);
  time = new StatusPanel("Time", tr("Time"), this);
  info->setMinimumWidth(kPictureSize + 12);
  info->setToolTip(tr("Info"));
  lock->setToolTip(tr("Lock/Unlock..."));
  addWidget(info);
  addWidget(files);
  addWidget(algorithm);
  addWidget(carrierFile, 1);
  addPermanentWidget(lock);
  addPermanentWidget(time);
  setContextMenuPolicy(Qt::CustomContextMenu);
  ShowLock(false);
  ShowTime();
  connect(&m_clock, &QTimer::timeout, this, &StatusPanels::ShowTime);
  m_clock.start(1000);
}

void StatusPanels::ShowInfo(bool isOn) {
  info->setEnabled(isOn);
  if (info->HasPicture() != isOn) info->SetPicture(isOn ? "crypt" : nullptr);
}

void StatusPanels::ShowLock(bool isLocked) {
  lock->SetText(isLocked ? tr("Locked ") : tr("Unlocked "));
  lock->SetPicture(isLocked ? "locked" : "unlocked");
}

void StatusPanels::ShowTime() {
  time->SetText(QLocale().toString(QTime::currentTime(), QLocale::ShortFormat));
}

}  // namespace tarnel
