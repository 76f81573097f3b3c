#include "retrieval/forms/frm_extract.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <set>
#include <utility>

#include "formkit/check_carrier.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/path_field.h"
#include "retrieval/extract_rules.h"
#include "retrieval/questions.h"
#include "retrieval/work_list.h"
#include "shellint/forms/uc_directory_tree.h"
#include "shellint/inotify_watch.h"

namespace tarnel {

namespace {

constexpr int kTypingPause = 400;  // milliseconds

}  // namespace

FrmExtract::FrmExtract(Session& session, Dialogue& dialogue, Choice choice, QWidget* parent)
    : FrmExtract(session, dialogue, std::move(choice), std::make_unique<MachinePlaces>(session.files),
                 std::make_unique<InotifyWatch>(), parent) {}

FrmExtract::FrmExtract(Session& session, Dialogue& dialogue, Choice choice, std::unique_ptr<Places> places,
                       std::unique_ptr<FolderWatch> watch, QWidget* parent)
    : WorkingForm(session, dialogue, parent), m_choice(std::move(choice)), m_desktop(places->Desktop()) {
  setObjectName(QStringLiteral("FrmExtract"));
  setWindowTitle(tr(" Extract Hidden Files & Folders"));
  m_afterTyping.setSingleShot(true);
  m_afterTyping.setInterval(kTypingPause);
  Build(std::move(places), std::move(watch));
  Connect();
  m_useFolder->setChecked(session.settings.userFolderNames);
  m_overwrite->setChecked(session.settings.extractOverwrite);
  ShowCount();
  TextChanged();
  StartWhenShown([this] { TreeActivate(); });
}

FrmExtract::~FrmExtract() = default;

void FrmExtract::Build(std::unique_ptr<Places> places, std::unique_ptr<FolderWatch> watch) {
  m_tree = Named(new ucDirectoryTree(GetSession().files, GetDialogue(), std::move(places), std::move(watch)),
                 "DirTree");
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(MakeFrame1(), 1);
  layout->addWidget(MakeFrame2());
  layout->addWidget(MakeButtons());
  m_extract->setDefault(true);  // now that it belongs to the dialog
  resize(fontMetrics().averageCharWidth() * 72, fontMetrics().lineSpacing() * 28);
}

QWidget* FrmExtract::MakeFrame1() {
  auto* const frame = Named(new QGroupBox(tr("Select the target folder")), "Frame1");
  m_newFolder = Named(new QPushButton(tr("&Folder...")), "Command1");
  m_newFolder->setToolTip(tr("Makes a folder in the selected one"));
  m_extractTo = Named(new PathField, "Txt_ExtractTo");
  auto* const form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  AddRow(*form, tr("Extract &to:"), m_extractTo);
  auto* const layout = new QVBoxLayout(frame);
  layout->addWidget(m_tree, 1);
  layout->addWidget(m_newFolder, 0, Qt::AlignLeft);
  layout->addLayout(form);
  return frame;
}

QWidget* FrmExtract::MakeFrame2() {
  auto* const frame = Named(new QGroupBox, "Frame2");
  m_all = Named(new QRadioButton(tr("&All files")), "Opt_All");
  m_selected = Named(new QRadioButton(tr("&Selected files")), "Opt_Selected");
  m_selected->setChecked(true);
  m_useFolder = Named(new QCheckBox(tr("&Use folder names")), "Chk_UseFolder");
  m_overwrite = Named(new QCheckBox(tr("&Overwrite existing files")), "Chk_Overwrite");
  auto* const grid = new QGridLayout(frame);
  grid->addWidget(m_all, 0, 0);
  grid->addWidget(m_selected, 1, 0);
  grid->addWidget(m_useFolder, 0, 1);
  grid->addWidget(m_overwrite, 1, 1);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(1, 1);
  return frame;
}

QWidget* FrmExtract::MakeButtons() {
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  m_extract = Named(buttons->button(QDialogButtonBox::Ok), "Cmd_Extract");
  m_extract->setText(tr("&Extract"));
  m_cancel = Named(buttons->button(QDialogButtonBox::Cancel), "Cmd_Cancel");
  m_cancel->setText(tr("Cancel"));
  return buttons;
}

void FrmExtract::Connect() {
  connect(m_tree, &ucDirectoryTree::OnDirClick, this, [this] {
    if (!m_isTreeMoved) TakeTreePath();
  });
  for (const auto signal : {&ucDirectoryTree::OnDirCreate, &ucDirectoryTree::OnDirRemove})
    connect(m_tree, signal, this, &FrmExtract::FollowTree);
  connect(m_tree, &ucDirectoryTree::OnDirRename, this, [this](const Path& from) {
    if (m_extractTo->EnteredPath() / "" == from) m_isTyped = false;
    FollowTree();
  });
  connect(m_extractTo, &QLineEdit::textEdited, this, [this] {
    m_isTyped = true;
    m_afterTyping.start();
    TextChanged();
  });
  connect(&m_afterTyping, &QTimer::timeout, this, &FrmExtract::ShowTyped);
  connect(m_newFolder, &QPushButton::clicked, this, &FrmExtract::MakeFolder);
  connect(m_extract, &QPushButton::clicked, this, [this] { RunWork([this] { PressExtract(); }); });
  connect(m_cancel, &QPushButton::clicked, this, [this] { done(QDialog::Rejected); });
}

/// Files that are chosen by themselves and through their folder count once.
void FrmExtract::ShowCount() {
  const Catalogue& catalogue = GetSession().catalogue;
  const auto countOf = [&](bool all) {
    ExtractRequest request = Request();
    request.all = all;
    const std::vector<std::size_t> rows = ExtractWorkList(request, catalogue);
    return tr("%1 File(s)").arg(std::set<std::size_t>(rows.begin(), rows.end()).size());
  };
  m_all->setToolTip(countOf(true));
  m_selected->setToolTip(countOf(false));
}

/// What the tree can't find or watch is told, and it works without.
void FrmExtract::TreeActivate() {
  Guarded(GetDialogue(), [this] { m_tree->Initialize(); });
  const Path start = GetSession().settings.extract.Start();
  ShowInTree(start.empty() ? m_desktop : start);
  if (!start.empty()) m_extractTo->SetPath(start);
  m_isTyped = !start.empty() && !FolderToShow(start, GetSession().files);
  TextChanged();
  m_tree->setFocus();
}

/// The computer itself is no folder.
void FrmExtract::TakeTreePath() {
  m_isTyped = false;
  m_afterTyping.stop();
  const Path path = m_tree->Path();
  m_extractTo->SetPath(CanExtractTo(path) ? path : Path());
  TextChanged();
}

/// Others' folders come and go without the selected one being another.
void FrmExtract::FollowTree() {
  if (!m_isTyped && m_extractTo->EnteredPath() / "" != m_tree->Path()) TakeTreePath();
}

void FrmExtract::ShowTyped() {
  m_afterTyping.stop();
  if (!m_isTyped) return;
  const auto folder = FolderToShow(m_extractTo->EnteredPath(), GetSession().files);
  if (!folder) return;
  m_isTreeMoved = true;
  ShowInTree(*folder);
  m_isTreeMoved = false;
  TextChanged();
}

/// Not every folder stands in the tree; the text tells the target without it.
void FrmExtract::ShowInTree(const Path& folder) {
  try {
    m_tree->SetPath(folder);
  } catch (const Error&) {
  }
}

void FrmExtract::TextChanged() {
  m_extract->setEnabled(CanExtractTo(m_extractTo->EnteredPath()));
  m_newFolder->setEnabled(CanExtractTo(m_tree->Path()));
}

void FrmExtract::MakeFolder() {
  ShowTyped();
  m_isTyped = false;
  m_tree->CreateFolder();
}

void FrmExtract::PressExtract() {
  ShowTyped();
  const CarrierCheck check = CheckCarrier(GetSession(), GetDialogue(), this);
  if (check == CarrierCheck::ReadAgain) return done(QDialog::Rejected);
  ExtractRequest request = Request();
  if (check == CarrierCheck::GaveUp || !MayExtract(request)) return;
  if (GetSession().settings.extract.mode == 2) {
    GetSession().Remember(section::kOptions, "Folder Extract Last", m_tree->Path().native());
    GetSession().ReloadSettings();
  }
  m_accepted = std::move(request);
  done(QDialog::Accepted);
}

bool FrmExtract::MayExtract(const ExtractRequest& request) {
  Session& session = GetSession();
  try {
    MustTakeFiles(request.target, session.files);
  } catch (const Error& error) {
    GetDialogue().Ask(questions::TargetRefused(error));
    return false;
  }
  const auto question = SpaceQuestion(request.target, PlainBytes(request, session.catalogue), session.files);
  return !question || GetDialogue().Ask(*question) == Answer::Yes;
}

ExtractRequest FrmExtract::Request() const {
  return {.carrier = m_choice.carrier,
          .target = m_extractTo->EnteredPath(),
          .all = m_all->isChecked(),
          .choices = m_choice.rows,
          .useFolderNames = m_useFolder->isChecked(),
          .overwriteAll = m_overwrite->isChecked(),
          .nodeItemFolder = m_choice.nodeItemFolder,
          .nodePath = m_choice.nodePath};
}

std::optional<ExtractRequest> FrmExtract::Ask() {
  exec();
  return m_accepted;
}

}  // namespace tarnel
