#include "search/forms/frm_find.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>
#include <utility>

#include "app/session_screen.h"
#include "formkit/file_table.h"
#include "formkit/fit_path_text.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/password_field.h"
#include "formkit/text.h"
#include "search/carrier_types.h"
#include "search/forms/found_rows_model.h"
#include "search/questions.h"
#include "shellint/forms/uc_directory_tree.h"
#include "shellint/inotify_watch.h"
#include "shellint/places.h"

namespace tarnel {

namespace {

/// The path of the directory tree's node for all drives.
constexpr const char* kMyComputerPath = "MyComputer";

QString Shown(std::string_view text) {
  return Translated(std::string(text).c_str());
}

QPushButton* Button(const QString& caption, const char* name) {
  return Named(new QPushButton(caption), name);
}

void ExplainDepth(QCheckBox& box) {
  const QString text = FrmFind::tr(
      "Looks at the newest hidden file of each carrier only, which is quicker, but a carrier whose newest "
      "hidden file has another password is not found.");
  box.setToolTip(QStringLiteral("<p>%1</p>").arg(text));  // as rich text it wraps
  box.setAccessibleDescription(text);
}

}  // namespace

/// What the search shows on the form.
class FrmFind::Screen : public ForwardingScreen<SearchScreen> {
 public:
  explicit Screen(FrmFind& form) : ForwardingScreen(form.GetDialogue(), form.CancelFlag()), m_form(form) {}

  Answer Ask(const Question& question) override {
    const Answer answer = ForwardingScreen::Ask(question);
    m_form.ReadControls();
    return answer;
  }
  void Yield() override {
    ForwardingScreen::Yield();
    m_form.ReadControls();
  }
  void ShowFolder(const Path& folder) override {
    m_form.m_folderPanel->SetPath(
        QString::fromStdString(SearchingText(Path(ShownPath(folder).toStdString()))));
  }
  void ShowFound(const SearchRow&) override {
    m_form.m_rows->TakeNewRows();
    m_form.ShowState();
  }
  void ShowNotSearched(const NotSearched& place) override {
    m_form.m_notSearched.push_back(place);
    m_form.m_state.CountNotSearched();
    m_form.ShowState();
  }

 private:
  FrmFind& m_form;
};

FrmFind::FrmFind(Session& session, Dialogue& dialogue, Ports ports, QWidget* parent)
    : FrmFind(session, dialogue, std::move(ports), std::make_unique<MachinePlaces>(session.files),
              std::make_unique<InotifyWatch>(), parent) {}

FrmFind::FrmFind(Session& session, Dialogue& dialogue, Ports ports, std::unique_ptr<Places> places,
                 std::unique_ptr<FolderWatch> watch, QWidget* parent)
    : WorkingForm(session, dialogue, parent),
      m_ports(std::move(ports)),
      m_state({.computer = kMyComputerPath, .desktop = places->Desktop(), .documents = places->Documents()}),
      m_rows(new FoundRowsModel(m_results, session.types, this)) {
  setObjectName(QStringLiteral("FrmFind"));
  setWindowTitle(tr("Find Carrier Files"));
  setAttribute(Qt::WA_DeleteOnClose);
  m_request.oddFiles = SearchRequest::OddFiles::PassOver;
  BuildTree(std::move(places), std::move(watch));
  BuildStatusBar();
  BuildMenu();
  auto* const upper = Named(new QSplitter(Qt::Horizontal), "Sizer");
  upper->setChildrenCollapsible(false);
  upper->addWidget(DirTree);
  upper->addWidget(BuildControls());
  upper->setStretchFactor(0, 1);
  upper->setStretchFactor(1, 2);
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(upper, 2);
  layout->addWidget(BuildResults(), 3);
  layout->addWidget(StatusBar);
  Cmd_Search->setDefault(true);  // now that it belongs to the window
  auto* const bar = new QMenuBar(this);
  bar->addMenu(Menu_Main);
  layout->setMenuBar(bar);
  ConnectAll();
  ReadControls();
  ShowState();
  resize(fontMetrics().averageCharWidth() * 100, fontMetrics().lineSpacing() * 27);
  txt_Pass->setFocus();
  StartWhenShown([this] { TreeActivate(); });
}

FrmFind::~FrmFind() = default;

void FrmFind::BuildTree(std::unique_ptr<Places> places, std::unique_ptr<FolderWatch> watch) {
  DirTree = Named(new ucDirectoryTree(GetSession().files, GetDialogue(), std::move(places), std::move(watch)),
                  "DirTree");
  DirTree->setMinimumWidth(fontMetrics().averageCharWidth() * 16);
}

QWidget* FrmFind::BuildControls() {
  auto* const side = new QWidget;
  Txt_SearchIn = Named(new QLineEdit, "Txt_SearchIn");
  Txt_SearchIn->setReadOnly(true);
  txt_Pass = Named(new PasswordField, "txt_Pass");
  Cmb_Encrypt = Named(new QComboBox, "Cmb_Encrypt");
  for (const std::string& each : SearchAlgorithms())
    Cmb_Encrypt->addItem(Shown(each));
  Cmb_Type = Named(new QComboBox, "Cmb_Type");
  for (const CarrierType& each : CarrierTypes())
    Cmb_Type->addItem(Shown(each.text));
  for (QComboBox* const box : {Cmb_Encrypt, Cmb_Type}) {
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(18);
  }
  Chk_Subfolders = Named(new QCheckBox(tr("Search including su&bfolders")), "Chk_Subfolders");
  Chk_Superficial = Named(new QCheckBox(tr("\"&Deep-search\" Mode (slowly...)")), "Chk_Superficial");
  ExplainDepth(*Chk_Superficial);
  Cmd_Search = Button(tr("&Search"), "Cmd_Search");
  Cmd_Cancel = Button(tr("Cancel"), "Cmd_Cancel");
  auto* const form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  AddRow(*form, tr("Search &in:"), Txt_SearchIn);
  AddRow(*form, tr("&Password:"), txt_Pass);
  AddRow(*form, tr("&Algorithm:"), Cmb_Encrypt);
  AddRow(*form, tr("Carrier &Type:"), Cmb_Type);
  form->addRow(Chk_Subfolders);
  form->addRow(Chk_Superficial);
  auto* const buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(Cmd_Search);
  buttons->addWidget(Cmd_Cancel);
  auto* const layout = new QVBoxLayout(side);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(form);
  layout->addStretch();
  layout->addLayout(buttons);
  return side;
}

QWidget* FrmFind::BuildResults() {
  auto* const frame = new QWidget;
  FileList = Named(new FileTable, "FileList");
  FileList->setModel(m_rows);
  FileList->setContextMenuPolicy(Qt::CustomContextMenu);
  FileList->setTextElideMode(Qt::ElideMiddle);
  FileList->setSelectionMode(QAbstractItemView::SingleSelection);
  FileList->SetFullRowSelect(GetSession().settings.fullRowSelect);
  FileList->SetGridLines(GetSession().settings.gridLines);
  m_rows->SetFullRowSelect(GetSession().settings.fullRowSelect);
  const int digit = fontMetrics().averageCharWidth();
  FileList->header()->setSectionsClickable(false);
  FileList->header()->setStretchLastSection(true);
  for (const auto& [column, width] : {std::pair{0, 26}, {1, 20}, {2, 18}})
    FileList->header()->resizeSection(column, digit * width);
  auto* const label = new QLabel(tr("Search &results:"));
  label->setBuddy(FileList);
  FileList->setAccessibleName(tr("Search results"));
  auto* const layout = new QVBoxLayout(frame);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(label);
  layout->addWidget(FileList, 1);
  return frame;
}

void FrmFind::BuildStatusBar() {
  StatusBar = Named(new QStatusBar, "StatusBar");
  StatusBar->setSizeGripEnabled(false);
  m_countPanel = Named(new QLabel, "Panel1");
  m_folderPanel = Named(new PathLabel, "Panel2");
  m_notSearchedPanel = Button({}, "NotSearched");
  m_notSearchedPanel->setFlat(true);
  m_notSearchedPanel->setToolTip(tr("Shows what could not be read"));
  m_notSearchedPanel->hide();
  StatusBar->addWidget(m_countPanel);
  StatusBar->addWidget(m_folderPanel, 1);
  StatusBar->addWidget(m_notSearchedPanel);
}

void FrmFind::BuildMenu() {
  Menu_Main = Named(new QMenu(tr("&Carrier File"), this), "Menu_Main");
  menu_search = Named(Menu_Main->addAction(tr("Search")), "menu_search");
  menu_cancel = Named(Menu_Main->addAction(tr("Cancel")), "menu_cancel");
  menu_open = Named(Menu_Main->addAction(tr("Open")), "menu_open");
}

void FrmFind::ConnectAll() {
  const auto guarded = [this](void (FrmFind::*slot)()) {
    return [this, slot] { Guarded(GetDialogue(), [&] { (this->*slot)(); }); };
  };
  connect(DirTree, &ucDirectoryTree::OnDirClick, this, [this](const Path& path) {
    m_state.Select(path);
    ShowState();
  });
  connect(Cmd_Search, &QPushButton::clicked, this, guarded(&FrmFind::PressSearch));
  connect(Cmd_Cancel, &QPushButton::clicked, this, guarded(&FrmFind::PressCancel));
  connect(m_notSearchedPanel, &QPushButton::clicked, this, guarded(&FrmFind::ListNotSearched));
  connect(FileList, &FileTable::RowOpened, this, guarded(&FrmFind::OpenRow));
  connect(FileList->selectionModel(), &QItemSelectionModel::currentChanged, this, &FrmFind::ShowState);
  connect(FileList, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& at) { Menu_Main->popup(FileList->viewport()->mapToGlobal(at)); });
  connect(menu_search, &QAction::triggered, Cmd_Search, &QPushButton::click);
  connect(menu_cancel, &QAction::triggered, Cmd_Cancel, &QPushButton::click);
  connect(menu_open, &QAction::triggered, this, guarded(&FrmFind::OpenRow));
}

/// What the tree can't find or watch is told, and it works without.
void FrmFind::TreeActivate() {
  Guarded(GetDialogue(), [this] { DirTree->Initialize(); });
  DirTree->ClickNodeIndex(1);
}

void FrmFind::ShowState() {
  const FindState::Enabled can = m_state.CanPress(FileList->currentIndex().isValid());
  Cmd_Search->setEnabled(can.Cmd_Search);
  menu_search->setEnabled(can.Cmd_Search);
  Cmd_Cancel->setEnabled(can.Cmd_Cancel);
  menu_cancel->setEnabled(can.Cmd_Cancel);
  menu_open->setEnabled(can.menu_open);
  Txt_SearchIn->setText(ShownPath(m_state.Txt_SearchIn()));
  m_countPanel->setText(QString::fromStdString(m_results.CountText()));
  m_notSearchedPanel->setText(QString::fromStdString(m_state.NotSearchedText()));
  m_notSearchedPanel->setVisible(!m_notSearchedPanel->text().isEmpty());
  FileList->SetEmptyText(Shown(m_state.EmptyText()));
}

void FrmFind::ReadControls() {
  m_request.password = txt_Pass->Password();
  m_request.type = static_cast<std::size_t>(std::max(0, Cmb_Type->currentIndex()));
  const auto algorithm = static_cast<std::size_t>(std::max(0, Cmb_Encrypt->currentIndex()));
  std::string name = SearchAlgorithms().at(algorithm);
  m_request.algorithm = algorithm == 0 ? std::nullopt : std::optional(AlgorithmId(name));
  m_request.subfolders = Chk_Subfolders->isChecked();
  m_request.depth =
      Chk_Superficial->isChecked() ? ProbeRequest::Depth::NewestEntry : ProbeRequest::Depth::WholeChain;
}

void FrmFind::PressSearch() {
  if (!m_ports.passGate()) return;
  RunWork([this] { Search(); });
  if (txt_Pass->IsEmpty()) txt_Pass->setFocus();
}

void FrmFind::Search() {
  class Searching {
   public:
    explicit Searching(FrmFind& form) : m_form(form) {
      m_form.m_notSearched.clear();
      m_form.m_state.Begin();
      m_form.ShowState();
    }
    Searching(const Searching&) = delete;
    Searching& operator=(const Searching&) = delete;
    ~Searching() {
      m_form.m_state.End(ending);
      m_form.m_folderPanel->SetPath({});
      m_form.ShowState();
    }

    SearchEnding ending = SearchEnding::Cancelled;

   private:
    FrmFind& m_form;
  } searching(*this);
  ReadControls();
  Screen screen(*this);
  Reading reading = GetSession().MakeReading();
  m_request.folder = m_state.Selected();
  searching.ending = SearchFolder(m_request, m_results, reading, screen).ending;
}

void FrmFind::PressCancel() {
  if (m_state.CurrentStage() == FindState::Stage::Idle) {
    done(Rejected);
    return;
  }
  m_state.Cancel();
  RequestCancel();
  ShowState();
}

void FrmFind::Leave() {
  m_state.Cancel();
  RequestCancel();
  hide();
  done(Rejected);
}

void FrmFind::OpenRow() {
  const auto at = static_cast<std::size_t>(FileList->currentIndex().row());
  if (!FileList->currentIndex().isValid() || at >= m_results.Rows().size()) return;
  const Path carrier = m_results.Rows()[at].carrier;
  if (m_ports.passGate()) m_ports.open(carrier);
}

void FrmFind::ListNotSearched() {
  GetDialogue().Ask(NotSearchedMessage(m_notSearched));
}

}  // namespace tarnel
