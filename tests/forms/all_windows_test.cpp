#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QRadioButton>
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

/// What a person operates; not the parts that the toolkit makes its controls of.
bool IsControl(const QWidget& widget) {
  if (qobject_cast<const QHeaderView*>(&widget) != nullptr) return false;
  if (qobject_cast<const QToolButton*>(&widget) != nullptr) return false;  // their commands are in the menus
  if (qobject_cast<const QComboBox*>(widget.parentWidget()) != nullptr) return false;
  return qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
         qobject_cast<const QLineEdit*>(&widget) != nullptr ||
         qobject_cast<const QComboBox*>(&widget) != nullptr ||
         qobject_cast<const QAbstractItemView*>(&widget) != nullptr ||
         qobject_cast<const QTabBar*>(&widget) != nullptr;
}

QString CaptionOf(const QWidget& widget) {
  if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) return button->text();
  const auto* const label = qobject_cast<const QLabel*>(&widget);
  return label != nullptr && label->buddy() != nullptr ? label->text() : QString();
}

std::string TextOf(const QWidget& widget) {
  const auto* const label = qobject_cast<const QLabel*>(&widget);
  return (label != nullptr ? label->text() : CaptionOf(widget)).toStdString() + " ";
}

bool IsClipped(const QWidget& widget) {
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

void Examine(QWidget& window) {
  SCOPED_TRACE(NameOf(window));
  window.show();
  EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
  std::set<std::string> mnemonics;
  const auto take = [&mnemonics](const QString& caption) {
    const std::string key = QKeySequence::mnemonic(caption).toString().toStdString();
    EXPECT_TRUE(key.empty() || mnemonics.insert(key).second) << key << " is taken twice";
  };
  if (const auto* const bar = window.findChild<QMenuBar*>()) {
    for (const QAction* const action : bar->actions())
      take(action->text());
  }
  for (const QWidget* const widget : window.findChildren<QWidget*>()) {
    if (!widget->isVisible()) continue;
    SCOPED_TRACE(NameOf(*widget));
    EXPECT_FALSE(IsClipped(*widget)) << TextOf(*widget) << widget->width() << "x" << widget->height();
    take(CaptionOf(*widget));
    if (!IsControl(*widget)) continue;
    QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
    const bool isTabBar = qobject_cast<const QTabBar*>(widget) != nullptr;  // its tabs have names
    EXPECT_TRUE(isTabBar || (spoken != nullptr && !spoken->text(QAccessible::Name).isEmpty()));
    EXPECT_TRUE(!widget->isEnabled() || (widget->focusPolicy() & Qt::TabFocus));
  }
  window.hide();
}

class AllWindows : public testing::TestWithParam<int> {
 protected:
  AllWindows() : m_font(QApplication::font()) {
    QFont font = m_font;
    font.setPointSizeF(m_font.pointSizeF() * GetParam() / 100);
    QApplication::setFont(font);
  }
  ~AllWindows() override { QApplication::setFont(m_font); }

 private:
  const QFont m_font;
};

}  // namespace

TEST_P(AllWindows, CanBeHeardReachedByTabAndRead) {
  FormsBench bench;
  Session& session = *bench.session;
  bench.temp.Put("Desktop/a.txt", "x");
  session.current.CurrentCarrierPath = bench.temp.Put("carrier.png", "x");
  Examine(*bench.window);
  CarrierPass pass(session.current.CurrentCarrierPath, session, bench.dialogue, nullptr);
  Examine(pass);
  session.HideOpenRequested = true;
  CarrierPass create(session.current.CurrentCarrierPath, session, bench.dialogue, nullptr);
  Examine(create);
  FrmCarrierFile open(
      session, bench.dialogue, bench.files, [](const Path&) {}, nullptr);
  Examine(open);
  FrmProperties properties(session, nullptr);
  Examine(properties);
  bench.modal.On("Config", [](QWidget& form) { Examine(form); });
  bench.Trigger("Menu_Configuration");
  FrmLock lock(session.lock, bench.dialogue, nullptr);
  Examine(lock);
  FrmUnlock unlock(session.lock, bench.dialogue, nullptr);
  Examine(unlock);
  Info info([](const QUrl&) {}, nullptr);
  Examine(info);
  StepbyStep guide(session, nullptr);
  Examine(guide);
  FileProperties file(session.current.CurrentCarrierPath, bench.posix, nullptr);
  Examine(file);
  FrmPassword password(session, bench.dialogue, nullptr);
  Examine(password);
  CarrierBench carrier;
  const Variable ownTemp("TMPDIR", bench.temp.Where());
  carrier.Hide({.name = std::string(200, 'n') + ".txt"}).Load();
  session.current = carrier.current;
  session.previewParcel = ParcelOf(carrier.catalogue.Rows().at(0));
  FrmView view(
      session, bench.dialogue, [](const Path&) {}, nullptr);
  Examine(view);
  view.show();
  ASSERT_TRUE(QTest::qWaitFor([&] { return Find<QAbstractButton>(view, "Cmd_Ok").isEnabled(); }));
  Examine(view);
  OpenWith with("/a", {{.id = "x", .name = "Editor", .exec = "x %f", .types = {}}}, nullptr);
  Examine(with);
  auto* const find =
      new FrmFind(session, bench.dialogue, {.passGate = {}, .open = {}},
                  std::make_unique<FixedPlaces>(bench.temp), std::make_unique<NoWatch>(), nullptr);
  Examine(*find);
  delete find;
  FrmDelete deletion(session, bench.dialogue, DeleteList({}, session.catalogue, {}), nullptr);
  Examine(deletion);
  FrmExtract extract(session, bench.dialogue, {}, std::make_unique<FixedPlaces>(bench.temp),
                     std::make_unique<NoWatch>(), nullptr);
  Examine(extract);
  const Path existing = bench.temp / "Desktop/a.txt";
  FrmOverwrite overwrite(questions::Overwrite(existing), *bench.posix.Stat(existing), {}, nullptr);
  Examine(overwrite);
  FrmHide hide(
      session, bench.dialogue, [](const Path&) {}, std::make_unique<FixedPlaces>(bench.temp),
      std::make_unique<NoWatch>(), nullptr);
  Examine(hide);
  hide.show();
  auto& next = Find<QAbstractButton>(hide, "Cmd_Hide");
  ASSERT_TRUE(QTest::qWaitFor([&] { return next.isEnabled(); }));
  next.click();
  Examine(hide);
  const auto key = std::make_shared<HideoutKey>();
  key->password = HeldKey("secret");
  ExtractRequest request;
  key->carrier = request.carrier = session.current.CurrentCarrierPath;
  request.target = bench.temp.Where();
  request.all = true;
  session.catalogue.AddRow({.hideout = key, .record = {}, .start = {}, .tail = {}});
  FrmExtracting extracting(session, bench.dialogue, request, nullptr);
  bench.dialogue.script.Always("extract.name", Answer::Abort).onAsk = [&](const Question&) {
    Examine(extracting);
  };
  extracting.show();
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return !bench.dialogue.script.Asked().empty() && !extracting.Running(); }));
}

INSTANTIATE_TEST_SUITE_P(Percent, AllWindows, testing::Values(100, 150, 200));

}  // namespace tarnel::test
