#include "formkit/open_with.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "formkit/fit_path_text.h"
#include "formkit/layouts.h"
#include "formkit/text.h"

namespace tarnel {

OpenWith::OpenWith(const Path& file, std::vector<DesktopApplication> applications, QWidget* parent)
    : QDialog(parent), m_applications(std::move(applications)) {
  setObjectName(QStringLiteral("OpenWith"));
  setWindowTitle(tr("Open With"));
  auto* const name = Named(new PathLabel(this), "Lb_File");
  name->SetPath(ShownPath(file));
  m_list = Named(new QListWidget(this), "Applications");
  m_list->setAccessibleName(tr("Applications"));
  for (const DesktopApplication& each : m_applications)
    m_list->addItem(QString::fromStdString(each.name));
  m_list->setCurrentRow(0);
  m_list->setMinimumSize(fontMetrics().averageCharWidth() * 40, fontMetrics().lineSpacing() * 12);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel, this);
  m_ok = Named(buttons->button(QDialogButtonBox::Open), "Cmd_Ok");
  Named(buttons->button(QDialogButtonBox::Cancel), "Cmd_Cancel");
  m_ok->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(m_list, &QListWidget::itemActivated, this, &QDialog::accept);
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(
      Explanation(tr("No application is set for this kind of file. Choose one to open it with:")));
  layout->addWidget(name);
  layout->addWidget(m_list, 1);
  layout->addWidget(buttons);
}

std::optional<DesktopApplication> OpenWith::Chosen() const {
  const auto row = static_cast<std::size_t>(m_list->currentRow());
  if (result() != QDialog::Accepted || row >= m_applications.size()) return std::nullopt;
  return m_applications[row];
}

}  // namespace tarnel
