#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTabBar>
#include <QToolBar>
#include <QToolButton>
#include <set>

#include "app/forms/config_form.h"
#include "app/forms/info_box.h"
#include "app/forms/lock_forms.h"
#include "app/forms/step_by_step.h"
#include "carrier/forms/carrier_pass.h"
#include "formkit/fit_path_text.h"
#include "formkit/open_with.h"
#include "hiding/forms/file_properties.h"
#include "hiding/forms/frm_hide.h"
#include "retrieval/forms/frm_carrier_file.h"
#include "retrieval/forms/frm_delete.h"
#include "retrieval/forms/frm_extract.h"
#include "retrieval/forms/frm_extracting.h"
#include "retrieval/forms/frm_overwrite.h"
#include "retrieval/forms/frm_password.h"
#include "retrieval/forms/frm_properties.h"
#include "retrieval/forms/frm_view.h"
#include "retrieval/questions.h"
#include "search/forms/frm_find.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/forms/fixed_places.h"
#include "tests/forms/forms_bench.h"
#include "tests/support/held_key.h"
#include "tests/support/surroundings.h"

namespace tarnel::test {
namespace {

std::string NameOf(const QWidget& widget) {
  return std::string(widget.metaObject()->className()) + " " + widget.objectName().toStdString();
}

template <class... Classes>
bool IsOneOf(const QWidget* widget) {
  return (... || (qobject_cast<const Classes*>(widget) != nullptr));
}

/// What a person operates; not the parts that the toolkit makes its controls of.
bool IsControl(const QWidget& widget) {
  if (IsOneOf<QHeaderView, QScrollBar>(&widget) || widget.focusProxy() != nullptr) return false;
  if (IsOneOf<QToolBar, QMenuBar, QTabBar>(widget.parentWidget())) return false;  // commands of the menus
  if (IsOneOf<QComboBox>(widget.parentWidget())) return false;
  return IsOneOf<QAbstractButton, QLineEdit, QComboBox, QAbstractItemView, QTabBar, QAbstractSlider,
                 QPlainTextEdit>(&widget);
}

QStringList CaptionsOf(const QWidget& widget) {
  if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) return {button->text()};
  if (const auto* const box = qobject_cast<const QGroupBox*>(&widget)) return {box->title()};
  QStringList captions;
  if (const auto* const tabs = qobject_cast<const QTabBar*>(&widget))
    for (int tab = 0; tab < tabs->count(); ++tab)
      captions << tabs->tabText(tab);
  if (const auto* const bar = qobject_cast<const QMenuBar*>(&widget))
    for (const QAction* const action : bar->actions())
      captions << action->text();
  const auto* const label = qobject_cast<const QLabel*>(&widget);
  if (label != nullptr && label->buddy() != nullptr) captions << label->text();
  return captions;
}

bool IsHeaderClipped(const QHeaderView& header) {
  for (int section = 0; section < header.count(); ++section)
    if (!header.isSectionHidden(section) && header.sectionSizeHint(section) > header.sectionSize(section))
      return true;
  return false;
}

bool IsClipped(const QWidget& widget) {
  if (const auto* const header = qobject_cast<const QHeaderView*>(&widget)) return IsHeaderClipped(*header);
  if (qobject_cast<const PathLabel*>(&widget) != nullptr) return false;
  const auto* const label = qobject_cast<const QLabel*>(&widget);
  if (label != nullptr && label->wordWrap()) {
    constexpr int blank = 2;  // at the foot of the last line
    return label->heightForWidth(label->width()) > label->height() + blank;
  }
  const auto* const button = qobject_cast<const QAbstractButton*>(&widget);
  const bool hasText = label != nullptr || (button != nullptr && !button->text().isEmpty());
  const QSize wanted = widget.sizeHint();
  return hasText &&
         (wanted.width() > widget.width() || (label != nullptr && wanted.height() > widget.height()));
}

/// What Tab comes to, pressed more often than a window has controls; then the focus is back where it was.
std::set<const QWidget*> ReachedByTab(QWidget& window) {
  const QPointer<QWidget> before = window.focusWidget();
  std::set<const QWidget*> reached;
  for (int i = 0; i < 60; ++i) {
    QTest::keyClick(window.focusWidget() != nullptr ? window.focusWidget() : &window, Qt::Key_Tab);
    reached.insert(QApplication::focusWidget());
  }
  if (before != nullptr) before->setFocus();
  return reached;
}

/// Of options that exclude one another Tab comes to one, and the arrows lead on from there.
bool IsReached(const QWidget& control, const std::set<const QWidget*>& reached) {
  const auto isSame = [&](const QWidget* each) {
    const auto* const other = qobject_cast<const QRadioButton*>(each);
    const auto* const option = qobject_cast<const QRadioButton*>(&control);
    return each == &control || (other != nullptr && option != nullptr && other->group() == option->group() &&
                                (option->group() != nullptr || other->parent() == option->parent()));
  };
  return std::any_of(reached.begin(), reached.end(), isSame);
}

void ExpectMnemonicsOnce(const QStringList& captions) {
  std::set<std::string> mnemonics;
  for (const QString& caption : captions) {
    const std::string key = QKeySequence::mnemonic(caption).toString().toStdString();
    EXPECT_TRUE(key.empty() || mnemonics.insert(key).second)
        << key << " is taken twice: " << caption.toStdString();
  }
}

void ExaminePage(QWidget& window) {
  QCoreApplication::processEvents();  // a page that has just come is laid out
  const std::set<const QWidget*> reached = ReachedByTab(window);
  QStringList captions;
  for (const QWidget* const widget : window.findChildren<QWidget*>()) {
    SCOPED_TRACE(NameOf(*widget));
    if (const auto* const menu = qobject_cast<const QMenu*>(widget)) {
      QStringList entries;
      for (const QAction* const action : menu->actions())
        entries << action->text();
      ExpectMnemonicsOnce(entries);
    }
    if (!widget->isVisible() || widget->window() != &window) continue;
    EXPECT_FALSE(IsClipped(*widget)) << widget->width() << "x" << widget->height();
    captions << CaptionsOf(*widget);
    if (!IsControl(*widget)) continue;
    QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
    const bool isTabBar = qobject_cast<const QTabBar*>(widget) != nullptr;  // its tabs have names
    EXPECT_TRUE(isTabBar || (spoken != nullptr && !spoken->text(QAccessible::Name).isEmpty()))
        << "has no name";
    EXPECT_TRUE(!widget->isEnabled() || IsReached(*widget, reached)) << "is not reached by Tab";
    const auto* const button = qobject_cast<const QPushButton*>(widget);
    const bool hearsEnter = button == nullptr || button->autoDefault() || !window.inherits("QDialog");
    EXPECT_TRUE(hearsEnter) << "is not pressed by Enter";
  }
  ExpectMnemonicsOnce(captions);
}

/// Shows a window, tab by tab if it has tabs.
void Examine(QWidget& window) {
  SCOPED_TRACE(NameOf(window));
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  auto* const tabs = window.findChild<QTabBar*>();
  for (int tab = 0; tab < (tabs != nullptr ? tabs->count() : 1); ++tab) {
    if (tabs != nullptr) tabs->setCurrentIndex(tab);
    ExaminePage(window);
  }
}

class AllWindows : public testing::TestWithParam<int>, ConfigurableWindow {
 protected:
  AllWindows() : m_font(QApplication::font()) {
    QFont font = m_font;
    font.setPointSizeF(m_font.pointSizeF() * GetParam() / 100);
    QApplication::setFont(font);
    bench.emplace();
    bench->temp.Put("Desktop/a.txt", "x");
    Session().current.CurrentCarrierPath = bench->temp.Put("carrier.png", "x");
  }
  ~AllWindows() override {
    bench.reset();
    QApplication::setFont(m_font);
  }

  tarnel::Session& Session() { return *bench->session; }
  Dialogue& Person() { return bench->dialogue; }
  std::unique_ptr<Places> Folders() { return std::make_unique<FixedPlaces>(bench->temp); }

  void ExamineProgramWindows() {
    Examine(*bench->window);
    Config config(Session(), *this, Person(), bench->files, nullptr);
    Examine(config);
    FrmLock lock(Session().lock, Person(), nullptr);
    FrmUnlock unlock(Session().lock, Person(), nullptr);
    Info info([](const QUrl&) {}, nullptr);
    FileProperties file(Session().current.CurrentCarrierPath, bench->posix, nullptr);
    OpenWith with("/a", {{.id = "x", .name = "Editor", .exec = "x %f", .types = {}}}, nullptr);
    for (QWidget* const form : std::initializer_list<QWidget*>{&lock, &unlock, &info, &file, &with})
      Examine(*form);
    StepbyStep guide(Session(), nullptr);
    auto& pages = *guide.findChild<QStackedWidget*>();
    for (const QWidget* before = nullptr; before != pages.currentWidget();) {
      before = pages.currentWidget();
      Examine(guide);
      QTest::keyClick(&guide, Qt::Key_Right);
    }
  }
  void ExamineCarrierWindows() {
    CarrierPass pass(Session().current.CurrentCarrierPath, Session(), Person(), nullptr);
    Examine(pass);
    FrmCarrierFile open(
        Session(), Person(), bench->files, [](const Path&) {}, nullptr);
    Examine(open);
    FrmProperties properties(Session(), nullptr);
    Examine(properties);
  }
  void ExamineSessionWindows(const CarrierBench& carrier) {
    Session().current = carrier.current;
    Session().previewParcel = ParcelOf(carrier.catalogue.Rows().at(0));
    FrmView view(
        Session(), Person(), [](const Path&) {}, nullptr);
    Examine(view);
    view.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Find<QAbstractButton>(view, "Cmd_Ok").isEnabled(); }));
    Examine(view);
    FrmPassword password(Session(), Person(), nullptr);
    FrmDelete deletion(Session(), Person(), DeleteList({}, Session().catalogue, {}), nullptr);
    FrmExtract extract(Session(), Person(), {}, Folders(), std::make_unique<NoWatch>(), nullptr);
    const Path existing = bench->temp / "Desktop/a.txt";
    FrmOverwrite overwrite(questions::Overwrite(existing), *bench->posix.Stat(existing), {}, nullptr);
    const std::unique_ptr<FrmFind> find(new FrmFind(Session(), Person(), {.passGate = {}, .open = {}},
                                                    Folders(), std::make_unique<NoWatch>(), nullptr));
    for (QWidget* const form :
         std::initializer_list<QWidget*>{&password, &deletion, &extract, &overwrite, find.get()})
      Examine(*form);
  }
  void ExamineHide() {
    FrmHide hide(
        Session(), Person(), [](const Path&) {}, Folders(), std::make_unique<NoWatch>(), nullptr);
    hide.show();
    auto& next = Find<QAbstractButton>(hide, "Cmd_Hide");
    ASSERT_TRUE(QTest::qWaitFor([&] { return next.isEnabled(); }));
    Examine(hide);
    next.click();
    Examine(hide);
  }
  void ExamineExtracting() {
    const auto key = std::make_shared<HideoutKey>();
    key->password = HeldKey("secret");
    ExtractRequest request;
    key->carrier = request.carrier = Session().current.CurrentCarrierPath;
    request.target = bench->temp.Where();
    request.all = true;
    Session().catalogue.AddRow({.hideout = key, .record = {}, .start = {}, .tail = {}});
    FrmExtracting extracting(Session(), Person(), request, nullptr);
    bench->dialogue.script.Always("extract.name", Answer::Abort).onAsk = [&](const Question&) {
      Examine(extracting);
    };
    extracting.show();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return !bench->dialogue.script.Asked().empty() && !extracting.Running(); }));
  }

  std::optional<FormsBench> bench;

 private:
  void ShowStatusBar(bool) override {}
  void ShowFolders(bool) override {}

  const QFont m_font;
};

}  // namespace

TEST_P(AllWindows, CanBeHeardReachedByTabAndRead) {
  ExamineProgramWindows();
  ExamineCarrierWindows();
  CarrierBench carrier;
  const Variable ownTemp("TMPDIR", bench->temp.Where());
  carrier.Hide({.name = std::string(200, 'n') + ".txt"}).Load();
  ExamineSessionWindows(carrier);
  ExamineHide();
  ExamineExtracting();
}

INSTANTIATE_TEST_SUITE_P(Percent, AllWindows, testing::Values(100, 150, 200));

}  // namespace tarnel::test
