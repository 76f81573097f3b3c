#include "app/forms/info_box.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "app/forms/manual.h"
#include "formkit/icons.h"
#include "formkit/layouts.h"

namespace tarnel {

namespace {

QLabel* Link(const char* name, const QString& text, const QUrl& url, const OutsideOpener& open) {
  auto* const label = Named(new QLabel, name);
  label->setText(
      QStringLiteral("<a href=\"%1\">%2</a>").arg(url.toString(QUrl::FullyEncoded), text.toHtmlEscaped()));
  label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  QObject::connect(label, &QLabel::linkActivated, label, [open](const QString& link) { open(QUrl(link)); });
  return label;
}

/// Debian keeps the licences of its packages under a name of their own.
QUrl LicenseUrl() {
  const QUrl license = DocumentationUrl(QStringLiteral("LICENSE"));
  return QFileInfo::exists(license.toLocalFile()) ? license : DocumentationUrl(QStringLiteral("copyright"));
}

}  // namespace

Info::Info(const OutsideOpener& open, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("Info"));
  setWindowTitle(tr(" Tarnel 7.0 Info"));
  auto* const picture = new QLabel;
  picture->setPixmap(OwnIcon("tarnel").pixmap(QSize(64, 64), devicePixelRatioF()));
  auto* const name = new QLabel(tr("Tarnel 7.0"));
  QFont font = name->font();
  font.setPointSizeF(font.pointSizeF() * 1.5);
  font.setBold(true);
  name->setFont(font);
  auto* const head = new QHBoxLayout;
  head->addWidget(picture);
  head->addWidget(name, 1);
  auto* const contact = new QGroupBox(tr("Contact"));
  auto* const links = new QVBoxLayout(contact);
  links->addWidget(Link("Link_Guide", tr("What Tarnel is and how it is used"), ManualUrl(), open));
  links->addWidget(Link("Link_License", tr("Licence and makers"), LicenseUrl(), open));
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  Named(buttons->button(QDialogButtonBox::Close), "Command1")->setText(tr("Close"));
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(head);
  layout->addWidget(contact);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

}  // namespace tarnel
