#include "hiding/forms/file_properties.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "base/closing_separator.h"
#include "base/formats.h"
#include "base/printable.h"
#include "formkit/fit_path_text.h"
#include "formkit/layouts.h"
#include "formkit/text.h"
#include "formkit/type_icons.h"

namespace tarnel {

namespace {

FileStat StatOf(const Path& path, Files& files) {
  if (const auto stat = files.Stat(path, Files::Links::DontFollow)) return *stat;
  throw Error(ErrorNumber::FileNotFound, "cannot look at " + Printable(path.native()) + ": not found", path);
}

QString KindOf(const FileStat& stat, const Path& path) {
  switch (stat.kind) {
    case FileKind::Folder:
      return QObject::tr("Folder");
    case FileKind::SymbolicLink:
      return QObject::tr("Symbolic link");
    case FileKind::Other:
      return QObject::tr("Pipe, socket or device");
    case FileKind::Regular:
      break;
  }
  const std::string type = TypeTextOf(path.filename().native());
  return type.empty() ? QObject::tr("File") : QString::fromStdString(type);
}

/// "rw-r--r-- (644)".
QString Permissions(mode_t mode) {
  QString text;
  for (int bit = 8; bit >= 0; --bit)
    text += QLatin1Char((mode >> bit & 1U) != 0 ? "xwr"[bit % 3] : '-');
  return text + QStringLiteral(" (%1)").arg(mode, 3, 8, QLatin1Char('0'));
}

}  // namespace

FileProperties::FileProperties(const Path& path, Files& files, QWidget* parent) : QDialog(parent) {
  const FileStat stat = StatOf(path, files);
  const Path whole = WithoutClosingSeparator(path);
  setObjectName(QStringLiteral("FileProperties"));
  setWindowTitle(tr("Properties"));
  auto* const form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  const auto add = [form](const QString& caption, QLabel* value, const QString& text) {
    value->setTextFormat(Qt::PlainText);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (auto* const label = qobject_cast<PathLabel*>(value))
      label->SetPath(text);
    else
      value->setText(text);
    form->addRow(caption, value);
  };
  const auto date = [](std::time_t moment) { return QString::fromStdString(DateAndTime(moment)); };
  add(tr("Name:"), new PathLabel, ShownPath(whole.filename()));
  add(tr("Path:"), new PathLabel, ShownPath(whole.parent_path()));
  add(tr("Type:"), new QLabel, KindOf(stat, whole));
  if (stat.kind == FileKind::Regular)
    add(tr("Size:"), new QLabel,
        tr("%1 (%2 bytes)").arg(QString::fromStdString(HumanSize(stat.size))).arg(stat.size));
  add(tr("Created:"), new QLabel, date(stat.created));
  add(tr("Last Modified:"), new QLabel, date(stat.modified));
  add(tr("Last Accessed:"), new QLabel, date(stat.accessed));
  add(tr("Permissions:"), new QLabel, Permissions(stat.mode));
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addStretch();
  layout->addWidget(buttons);
  setMinimumWidth(fontMetrics().averageCharWidth() * 56);
}

}  // namespace tarnel
