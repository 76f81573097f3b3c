#include "retrieval/forms/frm_carrier_file.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "carrier/carrier_kind.h"
#include "formkit/guarded.h"
#include "formkit/icons.h"
#include "formkit/layouts.h"
#include "formkit/path_field.h"
#include "formkit/text.h"
#include "retrieval/forms/questions.h"

namespace tarnel {

namespace {

/// So long after the last key a path is looked at, in milliseconds.
constexpr int kTypingPause = 200;

}  // namespace

FrmCarrierFile::FrmCarrierFile(Session& session, Dialogue& dialogue, FileDialogs& fileDialogs,
                               std::function<void(const Path&)> open, QWidget* parent)
    : QDialog(parent),
      m_session(session),
      m_dialogue(dialogue),
      m_fileDialogs(fileDialogs),
      m_open(std::move(open)) {
  setObjectName(QStringLiteral("FrmCarrierFile"));
  setWindowTitle(tr(" Carrier File - Hiding Place"));
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(MakeFrame());
  layout->addStretch();
  layout->addWidget(buttons);
  m_ok = Named(buttons->button(QDialogButtonBox::Ok), "Command2");
  m_ok->setText(tr("OK"));
  QPushButton* const cancel = Named(buttons->button(QDialogButtonBox::Cancel), "Command1");
  cancel->setText(tr("Cancel"));
  m_browse->setFocus();
  auto* const pause = new QTimer(this);
  pause->setSingleShot(true);
  pause->setInterval(kTypingPause);
  connect(m_carrier, &QLineEdit::textChanged, pause, qOverload<>(&QTimer::start));
  connect(pause, &QTimer::timeout, this, &FrmCarrierFile::ShowKind);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(m_ok, &QPushButton::clicked, this, [this] { Guarded(m_dialogue, [this] { PressOk(); }); });
  connect(m_browse, &QPushButton::clicked, this, [this] { Guarded(m_dialogue, [this] { Browse(); }); });
}

QWidget* FrmCarrierFile::MakeFrame() {
  auto* const frame = Named(new QGroupBox(this), "Frame1");
  auto* const picture = Named(new QLabel, "Picture1");
  picture->setPixmap(OwnIcon("carrier").pixmap(QSize(48, 48), devicePixelRatioF()));
  auto* const locate = Named(new QLabel(tr("Locate the carrier file:")), "Label8");
  m_carrier = Named(new PathField, "CarrierTxt");
  m_carrier->setAccessibleName(tr("Carrier file"));
  m_carrier->setMinimumWidth(fontMetrics().averageCharWidth() * 36);
  m_browse = Named(new QPushButton(tr("Browse")), "BrowseCmd");

  auto* const grid = new QGridLayout(frame);
  grid->addWidget(picture, 0, 0, 2, 1, Qt::AlignTop);
  grid->addWidget(
      Named(Explanation(tr("The files and folders will be hidden inside of the carrier file.")), "Label1"), 0,
      1, 1, 3);
  grid->addWidget(
      Named(Explanation(tr("Carrier files are: pictures, videos, programs and sound files.")), "Label3"), 1,
      1, 1, 3);
  grid->addWidget(locate, 2, 1, 1, 3);
  grid->addWidget(Named(new QLabel(QStringLiteral(">>")), "Label2"), 3, 0, Qt::AlignRight);
  grid->addWidget(m_carrier, 3, 1, 1, 2);
  grid->addWidget(m_browse, 3, 3);
  m_kind = Named(Hint({}), "lb_kind");
  m_kind->setMinimumHeight(fontMetrics().lineSpacing() * 2);  // nothing jumps when it comes
  m_kind->setAlignment(Qt::AlignTop);
  grid->addWidget(m_kind, 4, 1, 1, 3);
  grid->setColumnStretch(1, 1);
  return frame;
}

void FrmCarrierFile::ShowKind() {
  const Path carrier = m_carrier->EnteredPath();
  m_kind->setText(carrier.empty() ? QString()
                                  : Translated(CarrierAdviceFor(carrier, m_session.files).c_str()));
}

Path FrmCarrierFile::StartFolder() const {
  const Path folder = m_session.settings.open.Start();
  if (folder.empty()) return {};
  const auto stat = m_session.files.Stat(folder);
  return stat && stat->kind == FileKind::Folder ? folder : Path();
}

void FrmCarrierFile::Browse() {
  const auto chosen =
      m_fileDialogs.OpenFile(this, tr("Open carrier file..."), StartFolder(), CarrierFilters());
  if (!chosen) return;
  m_session.CarrierDialogPath = *chosen;
  m_session.Remember(section::kOptions, "Folder Open Last", chosen->parent_path().native());
  m_session.ReloadSettings();
  m_carrier->SetPath(*chosen);
  m_ok->setFocus();
}

bool FrmCarrierFile::IsFileLocated() const {
  if (m_carrier->text().isEmpty()) return false;
  const auto stat = m_session.files.Stat(m_carrier->EnteredPath());
  return stat && stat->kind != FileKind::Folder;
}

void FrmCarrierFile::PressOk() {
  if (!IsFileLocated()) {
    m_dialogue.Ask(LocateCarrierMessage());
    return;
  }
  m_open(m_session.CarrierDialogPath);
  accept();
}

}  // namespace tarnel
