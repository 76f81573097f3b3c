#include "retrieval/forms/frm_properties.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/formats.h"
#include "carrier/carrier_kind.h"
#include "formkit/fit_path_text.h"
#include "formkit/layouts.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

FileStat StatOf(const Path& carrier, Files& files) {
  const auto stat = files.Stat(carrier);
  if (!stat) throw ErrnoError(ENOENT, "look at", carrier);
  return *stat;
}

}  // namespace

FrmProperties::FrmProperties(Session& session, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("FrmProperties"));
  setWindowTitle(tr(" Carrier File Info"));
  new QVBoxLayout(this);
  const CurrentHideout& current = session.current;
  const FileStat stat = StatOf(current.CurrentCarrierPath, session.files);

  QFormLayout* form = AddFrame("Frame1", tr("Carrier File"));
  AddPath(*form, tr("Name:"), "lb_name", ShownText(current.CurrentCarrierName));
  AddPath(*form, tr("Path:"), "lb_path", ShownPath(current.CurrentCarrierPath.parent_path()));
  const std::string size = GroupedKilobytes(static_cast<double>(stat.size)) + " KB";
  AddText(*form, tr("Size:"), "lb_size", QString::fromStdString(size));
  AddText(*form, tr("Kind:"), "lb_kind",
          Translated(CarrierAdviceFor(current.CurrentCarrierPath, session.files).c_str()))
      ->setWordWrap(true);

  form = AddFrame("Frame2", tr("Date/Time"));
  const auto date = [](std::time_t moment) { return QString::fromStdString(DateAndTime(moment)); };
  AddText(*form, tr("Last Accessed:"), "lb_lastaccessed", date(stat.accessed));
  AddText(*form, tr("Last Modified:"), "lb_lastmodified", date(stat.modified));

  form = AddFrame("Frame3", tr("Hideout Properties"));
  AddText(*form, tr("Total Files:"), "lb_files",
          QString::number(session.FilesOf(current.CurrentCarrierPath)));
  AddText(*form, tr("Algorithm:"), "lb_algorithm",
          QString::fromStdString(AlgorithmName(current.CurrentAlgorithmId)));

  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
  QPushButton* const close = Named(buttons->button(QDialogButtonBox::Ok), "Command1");
  close->setText(tr("OK"));
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  layout()->addWidget(buttons);
  setMinimumWidth(fontMetrics().averageCharWidth() * 48);
}

QFormLayout* FrmProperties::AddFrame(const char* name, const QString& caption) {
  auto* const frame = Named(new QGroupBox(caption), name);
  layout()->addWidget(frame);
  auto* const form = new QFormLayout(frame);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  return form;
}

QLabel* FrmProperties::AddText(QFormLayout& form, const QString& label, const char* name,
                               const QString& text) {
  auto* const value = Named(new QLabel(text), name);
  value->setTextFormat(Qt::PlainText);
  value->setTextInteractionFlags(Qt::TextSelectableByMouse);
  form.addRow(label, value);
  return value;
}

void FrmProperties::AddPath(QFormLayout& form, const QString& label, const char* name, const QString& path) {
  auto* const value = Named(new PathLabel, name);
  value->SetPath(path);
  form.addRow(label, value);
}

}  // namespace tarnel
