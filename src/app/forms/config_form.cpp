#include "app/forms/config_form.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/forms/config_password_page.h"
#include "app/questions.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/path_field.h"

namespace tarnel {

namespace {

enum Group : std::size_t { kMouse, kOpen, kHide, kExtract };

std::size_t FlagIndex(std::string_view control) {
  const auto& flags = ConfigFlags();
  const auto found = std::find_if(flags.begin(), flags.end(),
                                  [control](const ConfigFlag& flag) { return flag.control == control; });
  return static_cast<std::size_t>(found - flags.begin());
}

QWidget* Box(const QString& caption, std::initializer_list<QWidget*> contents, const char* name = "") {
  auto* const box = Named(new QGroupBox(caption), name);
  auto* const layout = new QVBoxLayout(box);
  for (QWidget* const each : contents)
    layout->addWidget(each);
  return box;
}

QWidget* SideBySide(QWidget* left, QWidget* right) {
  auto* const row = new QWidget;
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(left);
  layout->addWidget(right, 1);
  return row;
}

/// A widget under another one's mark.
QWidget* Indented(QWidget* widget) {
  auto* const place = new QWidget;
  auto* const layout = new QHBoxLayout(place);
  layout->setContentsMargins(24, 0, 0, 0);
  layout->addWidget(widget);
  return place;
}

}  // namespace

Config::Config(Session& session, ConfigurableWindow& window, Dialogue& dialogue, FileDialogs& fileDialogs,
               QWidget* parent)
    : QDialog(parent),
      m_session(session),
      m_window(window),
      m_dialogue(dialogue),
      m_fileDialogs(fileDialogs),
      m_flags(ConfigFlags().size()),
      m_folders(ConfigGroups().size()) {
  setObjectName(QStringLiteral("Config"));
  setWindowTitle(tr("Configuration"));
  for (std::size_t i = 0; i < ConfigGroups().size(); ++i)
    m_groups.push_back(new QButtonGroup(this));
  m_tabs = Named(new QTabBar, "TabStrip");
  m_tabs->setExpanding(false);
  m_pages = new QStackedWidget;
  m_passwordPage = new ConfigPasswordPage;
  m_pages->addWidget(Named(MakeGeneralPage(), "Frame_1"));
  m_pages->addWidget(Named(MakeFoldersPage(), "Frame_2"));
  m_pages->addWidget(Named(MakeOptionsPage(), "Frame_3"));
  m_pages->addWidget(m_passwordPage);
  for (const QString& tab : {tr("General"), tr("Folders"), tr("Options")})
    m_tabs->addTab(tab);

  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  QPushButton* const ok = Named(buttons->button(QDialogButtonBox::Ok), "Cmd_Ok");
  ok->setText(tr("OK"));
  QPushButton* const cancel = Named(buttons->button(QDialogButtonBox::Cancel), "Cmd_Cancel");
  cancel->setText(tr("Cancel"));
  QPushButton* const defaults =
      Named(buttons->addButton(tr("Load default settings"), QDialogButtonBox::ResetRole), "Command1");
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(m_tabs);
  layout->addWidget(m_pages, 1);
  layout->addWidget(buttons);
  setTabOrder(defaults, ok);  // adding a button has taken these two out of it
  setTabOrder(ok, cancel);
  connect(m_tabs, &QTabBar::currentChanged, this, &Config::ChangeTab);
  connect(ok, &QPushButton::clicked, this, [this] { Guarded(m_dialogue, [this] { PressOk(); }); });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(defaults, &QPushButton::clicked, this, [this] { Guarded(m_dialogue, [this] { LoadDefaults(); }); });
  ShowValues(ReadConfig(m_session.settingsFile));
}

QCheckBox* Config::MakeFlag(const char* control, const QString& caption) {
  auto* const box = Named(new QCheckBox(caption), control);
  m_flags[FlagIndex(control)] = box;
  return box;
}

QAbstractButton* Config::MakeOption(std::size_t group, std::size_t option, const QString& caption) {
  auto* const button = Named(new QRadioButton(caption), ConfigGroups()[group].options[option].control);
  m_groups[group]->addButton(button, static_cast<int>(option));
  return button;
}

PathField* Config::MakeFolderText(const char* name) {
  auto* const text = Named(new PathField, name);
  text->setAccessibleName(tr("Specified folder"));
  text->installEventFilter(this);
  return text;
}

QWidget* Config::MakeGeneralPage() {
  auto* const page = new QFrame;
  auto* const left = new QVBoxLayout;
  left->addWidget(MakeFlag("Chk_SaveSettingsExit", tr("Save settings on exit")));
  left->addWidget(MakeFlag("Chk_StatusBar", tr("Show status bar")));
  left->addWidget(MakeListingBox());
  left->addWidget(MakeMouseBox());
  left->addStretch();
  auto* const layout = new QHBoxLayout(page);
  layout->addLayout(left, 3);
  layout->addWidget(MakeColumnsBox(), 2);
  return page;
}

QWidget* Config::MakeListingBox() {
  return Box(tr("File listing properties"), {MakeFlag("Chk_View_Fullrow", tr("Full row select")),
                                             MakeFlag("Chk_View_Gridlines", tr("Grid lines")),
                                             MakeFlag("Chk_View_FlatScroll", tr("Flat Scrollbar"))});
}

QWidget* Config::MakeMouseBox() {
  return Box(tr("Mouse double click"),
             {Explanation(tr("Double click on a file in the file listing will execute following event:")),
              MakeOption(kMouse, 0, tr("None events")), MakeOption(kMouse, 1, tr("Delete...")),
              MakeOption(kMouse, 2, tr("View...")), MakeOption(kMouse, 3, tr("Extract..."))});
}

QWidget* Config::MakeColumnsBox() {
  QWidget* const box =
      Box(tr("Columns"),
          {Explanation(tr("Select the columns that you want to appear in the file listing.")),
           MakeFlag("Chk_Clmn_Name", tr("Name")), MakeFlag("Chk_Clmn_Size", tr("Size")),
           MakeFlag("Chk_Clmn_Type", tr("Type")), MakeFlag("Chk_Clmn_Date", tr("Date")),
           MakeFlag("Chk_Clmn_Attr", tr("Attribute")), MakeFlag("Chk_Clmn_Subfolder", tr("Subfolder")),
           MakeFlag("Chk_Clmn_Compr", tr("Compressed"))});
  static_cast<QVBoxLayout*>(box->layout())->addStretch();
  return box;
}

QWidget* Config::MakeFoldersPage() {
  auto* const page = new QFrame;
  auto* const layout = new QVBoxLayout(page);
  layout->addWidget(MakeFolderBox(kHide, "Frm_HideFolder", tr("\"Hide\" folder"), tr("Last hide folder")));
  layout->addWidget(
      MakeFolderBox(kExtract, "Frame_ExtrFolder", tr("\"Extract\" folder"), tr("Last extract folder")));
  layout->addWidget(MakeFolderBox(kOpen, "Frm_TempFolder", tr("\"Open\" folder"), tr("Last open folder")));
  layout->addStretch();
  return page;
}

QWidget* Config::MakeFolderBox(std::size_t group, const char* name, const QString& caption,
                               const QString& last) {
  QAbstractButton* const specified = MakeOption(group, 2, tr("Specified folder:"));
  PathField* const text = MakeFolderText(ConfigGroups()[group].folderControl);
  m_folders[group] = text;
  connect(specified, &QAbstractButton::clicked, this, [this, text] { AskForFolderIfEmpty(text); });
  return Box(
      caption,
      {MakeOption(group, 0, tr("System default")), MakeOption(group, 1, last), SideBySide(specified, text)},
      name);
}

QWidget* Config::MakeOptionsPage() {
  auto* const page = new QFrame;
  auto* const layout = new QGridLayout(page);
  layout->addWidget(MakeHideBox(), 0, 0, 2, 1);
  layout->addWidget(MakeExtractBox(), 0, 1);
  layout->addWidget(MakeViewBox(), 1, 1);
  layout->setRowStretch(2, 1);
  layout->setColumnStretch(0, 3);
  layout->setColumnStretch(1, 2);
  return page;
}

QWidget* Config::MakeHideBox() {
  QWidget* const compress = MakeFlag("Chk_Compress", tr("Compress hidden data"));
  QWidget* const protect = MakeFlag("Chk_WriteProtection", tr("Write-Protection!"));
  return Box(
      tr("\"Hide\" options"),
      {compress, Indented(HintOf(compress, tr("Reduces carrier file size."))), Indented(MakeLevelRow()),
       protect, Indented(HintOf(protect, tr("Protect carrier file from any manipulations..."))),
       Indented(HintOf(protect, tr("Protects carrier file from being altered or damaged."))),
       MakeFlag("Chk_FolderInfo", tr("Save folder structure"))},
      "Frame5");
}

QWidget* Config::MakeLevelRow() {
  auto* const row = new QWidget;
  m_level = Named(new QSlider(Qt::Horizontal), "CompressLevel");
  m_level->setRange(1, 9);
  m_level->setMinimumWidth(fontMetrics().averageCharWidth() * 18);
  m_level->setPageStep(1);
  m_level->setTickPosition(QSlider::TicksBelow);
  m_level->setAccessibleName(tr("Compression level"));
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(new QLabel(tr("Compression level:")));
  layout->addWidget(new QLabel(tr("min.")));
  layout->addWidget(m_level, 1);
  layout->addWidget(new QLabel(tr("max.")));
  return row;
}

QWidget* Config::MakeExtractBox() {
  return Box(tr("\"Extract\" options"),
             {MakeFlag("Chk_Overwrite", tr("Overwrite existing files")),
              MakeFlag("Chk_UseFolder", tr("Use folder names"))},
             "Frame4");
}

QWidget* Config::MakeViewBox() {
  auto* const temporary = Named(new QRadioButton(tr("Extract to temp folder")), "Opt_viewtempfolder");
  m_extractTo = Named(new QRadioButton(tr("Extract to:")), "opt_viewfolder");
  m_flags[FlagIndex("Opt_viewtempfolder")] = temporary;
  m_viewFolder = MakeFolderText("txt_viewfolder");
  for (QAbstractButton* const each : {static_cast<QAbstractButton*>(temporary), m_extractTo}) {
    connect(each, &QAbstractButton::clicked, this, [this] { AskForFolderIfEmpty(m_viewFolder); });
  }
  return Box(tr("View/Edit Options"), {temporary, m_extractTo, Indented(m_viewFolder)});
}

void Config::ShowValues(const ConfigValues& values) {
  for (std::size_t i = 0; i < m_flags.size(); ++i)
    m_flags[i]->setChecked(values.flags[i]);
  m_extractTo->setChecked(!values.flags[FlagIndex("Opt_viewtempfolder")]);
  for (std::size_t i = 0; i < m_groups.size(); ++i) {
    m_groups[i]->setExclusive(false);
    for (QAbstractButton* const button : m_groups[i]->buttons())
      button->setChecked(false);
    m_groups[i]->setExclusive(true);
    if (values.chosen[i]) m_groups[i]->button(static_cast<int>(*values.chosen[i]))->setChecked(true);
    if (m_folders[i] != nullptr) m_folders[i]->SetPath(values.folders[i]);
  }
  m_level->setValue(values.compressLevel);
  m_viewFolder->SetPath(values.previewTempFolder);
}

ConfigValues Config::Values() const {
  ConfigValues values;
  for (const QAbstractButton* const flag : m_flags)
    values.flags.push_back(flag->isChecked());
  for (std::size_t i = 0; i < m_groups.size(); ++i) {
    const int chosen = m_groups[i]->checkedId();
    values.chosen.push_back(chosen < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(chosen)));
    values.folders.push_back(m_folders[i] == nullptr ? std::string() : m_folders[i]->EnteredPath().native());
  }
  values.compressLevel = m_level->value();
  values.previewTempFolder = m_viewFolder->EnteredPath().native();
  return values;
}

void Config::ChangeTab(int tab) {
  if (m_passwordPage->IsPasswordMissing()) {
    m_dialogue.Ask(ProtectionPasswordMessage());
    m_passwordPage->FocusPassword();
    const QSignalBlocker quiet(m_tabs);
    m_tabs->setCurrentIndex(m_pages->currentIndex());
    return;
  }
  m_pages->setCurrentIndex(tab);
}

bool Config::eventFilter(QObject* watched, QEvent* event) {
  auto* const text = qobject_cast<PathField*>(watched);
  if (text != nullptr && event->type() == QEvent::MouseButtonRelease) {
    AskForFolderIfEmpty(text);
  } else if (text != nullptr && event->type() == QEvent::MouseButtonDblClick) {
    AskForFolder(text);
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

void Config::AskForFolderIfEmpty(PathField* text) {
  if (text->text().isEmpty()) AskForFolder(text);
}

void Config::AskForFolder(PathField* text) {
  Guarded(m_dialogue, [this, text] {
    const auto folder = m_fileDialogs.ChooseFolder(this, tr("Select the default folder."),
                                                   tr("Specified folder:"), text->EnteredPath());
    if (folder) {
      text->SetPath(*folder);
    } else if (text->text().isEmpty()) {
      FallBack(text);
    }
  });
}

/// The group of an empty folder box goes back to the system's folder.
void Config::FallBack(const PathField* text) {
  for (std::size_t i = 0; i < m_folders.size(); ++i) {
    if (m_folders[i] == text) m_groups[i]->button(0)->setChecked(true);
  }
  if (text == m_viewFolder) m_flags[FlagIndex("Opt_viewtempfolder")]->setChecked(true);
}

/// Nothing changes before everything is on disk, so that Cancel still leaves all as it was.
void Config::PressOk() {
  SettingsFile changed = m_session.settingsFile;
  WriteConfig(Values(), changed);
  changed.Save();
  m_session.settingsFile = std::move(changed);
  m_window.ShowStatusBar(m_flags[FlagIndex("Chk_StatusBar")]->isChecked());
  accept();
}

/// A disk that keeps the old settings changes nothing about the defaults of this run.
void Config::LoadDefaults() {
  DeleteConfig(m_session.settingsFile);
  try {
    m_session.settingsFile.Save();
  } catch (const Error&) {  // as above
  }
  m_session.ReloadSettings();
  ShowValues(ReadConfig(m_session.settingsFile));
  m_window.ShowFolders(true);
}

}  // namespace tarnel
