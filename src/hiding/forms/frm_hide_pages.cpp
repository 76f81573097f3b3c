#include "hiding/forms/frm_hide_pages.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "formkit/file_table.h"
#include "formkit/fit_path_text.h"
#include "formkit/layouts.h"
#include "formkit/work_progress.h"
#include "shellint/forms/uc_directory_tree.h"

namespace tarnel {

namespace {

/// Units of the limits that panes have.
constexpr int kTwips = 15;
constexpr int kLeastTree = 1000 / kTwips;
constexpr int kLeastList = 500 / kTwips;

QPushButton* Button(const QString& caption, const char* name) {
  return Named(new QPushButton(caption), name);
}

void AddLabelled(QFormLayout& form, const QString& caption, QLabel* value, const char* name) {
  Named(value, name)->setTextFormat(Qt::PlainText);
  form.addRow(caption, value);
}

}  // namespace

ExplorerFrame::ExplorerFrame(ucDirectoryTree* tree) : QGroupBox(tr("Select the files you want to hide")) {
  setObjectName(QStringLiteral("ExplorerFrame"));
  ExplSizer = Named(new QSplitter(Qt::Horizontal), "ExplSizer");
  ExplSizer->setChildrenCollapsible(false);
  tree->setMinimumWidth(kLeastTree);
  ExplSizer->addWidget(tree);
  ExplorerFile = Named(new FileTable, "ExplorerFile");
  ExplorerFile->setAccessibleName(tr("Files of the folder"));
  ExplorerFile->setMinimumWidth(kLeastList);
  ExplSizer->addWidget(ExplorerFile);
  ExplSizer->setStretchFactor(0, 1);
  ExplSizer->setStretchFactor(1, 2);
  Cmd_Hide = Button(tr("&Next >>"), "Cmd_Hide");
  Cmd_Cancel1 = Button(tr("Cancel"), "Cmd_Cancel1");
  auto* const buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(Cmd_Hide);
  buttons->addWidget(Cmd_Cancel1);
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(ExplSizer, 1);
  layout->addLayout(buttons);
}

CollectingPanel::CollectingPanel() {
  setObjectName(QStringLiteral("Anzeige_Pic"));
  auto* const action = Named(new QLabel(tr("Selecting... Please wait a moment!")), "LB_Action");
  ProgressBar2 = Named(new QProgressBar, "ProgressBar2");
  ProgressBar2->setAccessibleName(tr("Files of the folder"));
  ProgressBar2->setTextVisible(false);
  Lb_FileSelect = new PathLabel;
  Lb_DirSelect = new PathLabel;
  Lb_Found = new QLabel(tr("0 Files"));
  Cmd_StopSearch = Button(tr("&Stop"), "Cmd_StopSearch");
  auto* const form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  AddLabelled(*form, tr("File Path:"), Lb_FileSelect, "Lb_FileSelect");
  AddLabelled(*form, tr("Directory:"), Lb_DirSelect, "Lb_DirSelect");
  AddLabelled(*form, tr("Selected:"), Lb_Found, "Lb_Found");
  auto* const layout = new QVBoxLayout(this);
  layout->addStretch();
  layout->addWidget(action);
  layout->addWidget(ProgressBar2);
  layout->addLayout(form);
  layout->addWidget(Cmd_StopSearch, 0, Qt::AlignRight);
  layout->addStretch();
}

HideOptionsPanel::HideOptionsPanel() {
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(MakeChecks(), 1);
  layout->addWidget(MakeOriginals(), 1);
}

QWidget* HideOptionsPanel::MakeChecks() {
  auto* const side = new QWidget;
  Chk_Compress = Named(new QCheckBox(tr("&Compress Hidden Data")), "Chk_Compress");
  Chk_FolderInfo = Named(new QCheckBox(tr("Save &Folder Structure")), "Chk_FolderInfo");
  Chk_Subfolders = Named(new QCheckBox(tr("&Include Subfolders")), "Chk_Subfolders");
  Chk_Subfolders->setChecked(true);
  Chk_WriteProtection = Named(new QCheckBox(tr("&Write-Protection!")), "Chk_WriteProtection");
  Chk_WriteProtection->setToolTip(tr("Protect carrier file from any manipulations..."));
  auto* const layout = new QVBoxLayout(side);
  layout->setContentsMargins({});
  for (QCheckBox* const box : {Chk_Compress, Chk_FolderInfo, Chk_Subfolders, Chk_WriteProtection})
    layout->addWidget(box);
  layout->addWidget(HintOf(Chk_WriteProtection, tr("Protects carrier file from being altered or damaged.")));
  layout->addStretch();
  return side;
}

QWidget* HideOptionsPanel::MakeOriginals() {
  auto* const side = new QWidget;
  QLabel* const question =
      Named(Explanation(tr("The copy of original files will be hidden within the carrier file. "
                           "What do you want to do with original files?")),
            "Label1");
  opt_deletion = Named(new QRadioButton(tr("&Delete. Recovery is not possible!")), "opt_deletion");
  opt_recyclebin = Named(new QRadioButton(tr("&Move to Recycle Bin.")), "opt_recyclebin");
  opt_nodeletion =
      Named(new QRadioButton(tr("No Deletion! &Keep Files on their Locations.")), "opt_nodeletion");
  opt_nodeletion->setChecked(true);
  auto* const layout = new QVBoxLayout(side);
  layout->setContentsMargins({});
  layout->addWidget(question);
  for (QRadioButton* const option : {opt_deletion, opt_recyclebin, opt_nodeletion})
    layout->addWidget(option);
  layout->addStretch();
  return side;
}

HideFrame::HideFrame() {
  setObjectName(QStringLiteral("HideFrame"));
  Lb_Act = new QLabel;
  Lb_FileName = new PathLabel;
  Lb_Filesize = new QLabel;
  Lb_FileNumber = Named(new QLabel(tr("Progress:")), "Lb_FileNumber");
  Progress = new WorkProgress("ProgressBar1", tr("Progress"));
  auto* const form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  AddLabelled(*form, tr("Action:"), Lb_Act, "Lb_Act");
  AddLabelled(*form, tr("File:"), Lb_FileName, "Lb_FileName");
  AddLabelled(*form, tr("File Size:"), Lb_Filesize, "Lb_Filesize");
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(Lb_FileNumber);
  layout->addWidget(Progress);
  layout->addStretch();
}

FilesFrame::FilesFrame() {
  setObjectName(QStringLiteral("Frame1"));
  Files = Named(new FileTable, "Files");
  Files->setAccessibleName(tr("Selected files"));
  Anzeige_Pic = new CollectingPanel;
  Options = new HideOptionsPanel;
  Hiding = new HideFrame;
  m_upper = new QStackedWidget;
  m_upper->addWidget(Files);
  m_upper->addWidget(Anzeige_Pic);
  m_lower = new QStackedWidget;
  m_lower->addWidget(Options);
  m_lower->addWidget(Hiding);
  m_lower->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  Cmd_Addmore = Button(tr("&Add more files..."), "Cmd_Addmore");
  Cmd_Back = Button(tr("<< &Back"), "Cmd_Back");
  Cmd_Next = Button(tr("&Hide!"), "Cmd_Next");
  Cmd_Cancel = Button(tr("Cancel"), "Cmd_Cancel");
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(m_upper, 1);
  layout->addWidget(Cmd_Addmore, 0, Qt::AlignLeft);
  layout->addWidget(m_lower);
  layout->addLayout(MakeButtons());
}

QHBoxLayout* FilesFrame::MakeButtons() {
  auto* const buttons = new QHBoxLayout;
  buttons->addStretch();
  for (QPushButton* const button : {Cmd_Back, Cmd_Next, Cmd_Cancel})
    buttons->addWidget(button);
  return buttons;
}

void FilesFrame::ShowCollecting(bool isCollecting) {
  m_upper->setCurrentIndex(isCollecting ? 1 : 0);
}

void FilesFrame::ShowHiding(bool isHiding) {
  setTitle(isHiding ? tr("Hidden Files") : tr("Selected files"));
  m_lower->setCurrentIndex(isHiding ? 1 : 0);
}

}  // namespace tarnel
