#include <gtest/gtest.h>

#include <QClipboard>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>
#include <algorithm>
#include <fstream>
#include <sstream>
#include <tuple>

#include "base/attempt.h"
#include "carrier/open_hideout.h"
#include "carrier/questions.h"
#include "formkit/dialogue_in_windows.h"
#include "formkit/dropped_path.h"
#include "formkit/fit_path_text.h"
#include "formkit/guarded.h"
#include "formkit/password_field.h"
#include "tests/forms/forms_bench.h"
#include "tests/support/surroundings.h"

namespace tarnel::test {
namespace {

TEST(FitPathText, LeavesOutTheMiddleAndKeepsHeadAndTailAsLongAsTheyFit) {
  const std::tuple<const char*, int, const char*> cases[] = {
      {"C:\\aa\\bbbbb\\cc\\dd.txt", 19, "C:\\aa\\...\\cc\\dd.txt"},
      {"C:\\aa\\bbbbb\\cc\\dd.txt", 18, "C:\\aa\\...\\dd.txt"},
      {"C:\\aaaaaaaa\\bb\\dd.txt", 15, "C:\\...\\dd.txt"},
      {"C:\\aaaaaaaa\\bb\\dd.txt", 1, "...\\dd.txt"},
      {"/home/somebody/pictures/", 20, "/home/.../pictures"},
      {"http://host/page?query", 17, "http://.../page"},
      {"nothing to cut here", 3, "nothing to cut here"},
  };
  const auto widthOf = [](const QString& tried) { return static_cast<int>(tried.size()) * 100; };
  for (const auto& [text, characters, fitted] : cases)
    EXPECT_EQ(FitPathText(QString::fromUtf8(text), characters * 100 + 400, QStringLiteral("..."), widthOf),
              QString::fromUtf8(fitted))
        << characters;
}

TEST(DroppedPath, IsTheFirstFileByteForByte) {
  const std::pair<const char*, const char*> cases[] = {
      {"file:///tmp/a%20b%FF%0A.png\r\nfile:///tmp/second\r\n", "/tmp/a b\xFF\n.png"},
      {"# note\r\nfile://localhost/x", "/x"},
      {"file://elsewhere.example/etc/passwd", ""},
      {"https://host/x\r\nfile:///y", ""},
      {"", ""},
  };
  for (const auto& [list, path] : cases) {
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"), list);
    EXPECT_EQ(FirstDroppedPath(data), path) << list;
  }
}

TEST(DialogueInWindows, ShowsTextsButtonsPresetAndTheSafeWayOut) {
  using Shown = std::tuple<std::string, qsizetype, Answer, Answer, QMessageBox::Icon>;
  const Error error(ErrorNumber::DiskFull, "cannot write a.png: no space");
  const std::pair<Question, Shown> cases[] = {
      {NoPasswordMessage(), {"Please enter the password!", 1, Answer::Ok, Answer::Ok, QMessageBox::Critical}},
      {ReloadQuestion(),
       {"This carrier file is opened already! Do you want to reload it?", 2, Answer::No, Answer::No,
        QMessageBox::Question}},
      {ErrorQuestion(error, "x.error", "Tarnel [Hiding...]", LineBreak::LfCr, Answer::Retry),
       {"Error: 61\ncannot write a.png: no space", 3, Answer::Retry, Answer::Abort, QMessageBox::Critical}}};
  const auto answerOf = [](const QAbstractButton* button) {
    return static_cast<Answer>(button->property("answer").toInt());
  };
  for (const auto& [question, shown] : cases) {
    QMessageBox box;
    FillBox(box, question);
    EXPECT_EQ(Shown(box.text().toStdString(), box.buttons().size(), answerOf(box.defaultButton()),
                    answerOf(box.escapeButton()), box.icon()),
              shown);
  }
  QMessageBox box;
  FillBox(box, {.id = "x", .title = "", .text = "", .buttons = Buttons::YesNoOverwriteAll});
  EXPECT_EQ(box.button(QMessageBox::YesToAll)->text(), QStringLiteral("Overwrite All"));
}

TEST(Guarded, ShowsWhatAnErrorSaysAndGoesOn) {
  Scripted<> person;
  person.script.Expect("main.fault", Answer::Ok).Expect("main.fault", Answer::Ok);
  Guarded(person, [] { throw Error(ErrorNumber::FileNotFound, "cannot open x"); });
  Guarded(person, [] { throw std::runtime_error("other"); });
  Guarded(person, [] { throw 1; });
  EXPECT_EQ(person.script.Asked().at(0).text, "Error: 53\r\ncannot open x");
  EXPECT_EQ(person.script.Asked().at(1).text, "Error: 57\r\nother");
}

TEST(TracelessFileDialogs, LeaveTheHomeFolderAsItWas) {
  TempFolder home;
  home.Put("pictures/carrier.png", "x");
  const Variable variables[] = {
      {"HOME", home.Where()}, {"XDG_CONFIG_HOME", home / "config"}, {"XDG_DATA_HOME", home / "data"}};
  const auto before = home.Names();
  TracelessFileDialogs dialogs;
  QTimer accept;
  QObject::connect(&accept, &QTimer::timeout, [] {
    auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
    if (!dialog) return;
    // Typed whole, as the dialog may not have listed its folder yet.
    dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(dialog->directory().filePath(QStringLiteral("carrier.png")));
    QMetaObject::invokeMethod(dialog, "accept");
  });
  accept.start(20);
  const auto chosen = dialogs.OpenFile(nullptr, QStringLiteral("Open"), home / "pictures", CarrierFilters());
  ASSERT_TRUE(chosen);
  EXPECT_EQ(*chosen, home / "pictures/carrier.png");
  EXPECT_EQ(home.Names(), before);
}

void PressKey(QWidget& field, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
              const QString& text = {}) {
  QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
  QApplication::sendEvent(&field, &press);
}

void TypeText(QWidget& field, const QString& text) {
  for (const QChar each : text)
    PressKey(field, 0, Qt::NoModifier, each);
}

std::string TextOf(const PasswordField& field) {
  return std::string(field.Password().View());
}

TEST(PasswordField, FollowsEveryEdit) {
  PasswordField field;
  TypeText(field, QStringLiteral("abcdef"));
  PressKey(field, Qt::Key_Backspace);
  EXPECT_EQ(TextOf(field), "abcde");
  PressKey(field, Qt::Key_Home);
  PressKey(field, Qt::Key_Delete);
  EXPECT_EQ(TextOf(field), "bcde");
  PressKey(field, Qt::Key_Right);
  TypeText(field, QStringLiteral("X"));
  EXPECT_EQ(TextOf(field), "bXcde");
  PressKey(field, Qt::Key_Right, Qt::ShiftModifier);
  PressKey(field, Qt::Key_Right, Qt::ShiftModifier);
  TypeText(field, QStringLiteral("Y"));
  EXPECT_EQ(TextOf(field), "bXYe") << "typing replaces the selection";
  PressKey(field, Qt::Key_Left, Qt::ShiftModifier);
  PressKey(field, Qt::Key_Backspace);
  EXPECT_EQ(TextOf(field), "bXe");
  PressKey(field, Qt::Key_A, Qt::ControlModifier, QStringLiteral("\x01"));
  PressKey(field, Qt::Key_Delete);
  EXPECT_TRUE(field.IsEmpty());
}

TEST(PasswordField, TakesEveryScriptAsUtf8AndNothingByItself) {
  PasswordField field;
  field.SetRefused(NewPasswordRefuses);
  QGuiApplication::clipboard()->setText(QString::fromUtf8("\xC3\xA9<\xE2\x82\xAC>\n\xF0\x9F\x90\x9F"));
  PressKey(field, Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(TextOf(field), "\xC3\xA9<\xE2\x82\xAC>\xF0\x9F\x90\x9F") << "without the line end";
  TypeText(field, QStringLiteral("<>"));
  EXPECT_EQ(field.text().size(), 5) << "one placeholder each, and none for what can't be typed";
  PressKey(field, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(field.text().size(), 5) << "no undo";
  PressKey(field, Qt::Key_Backspace);
  EXPECT_EQ(TextOf(field), "\xC3\xA9<\xE2\x82\xAC>");
  EXPECT_FALSE(field.acceptDrops()) << "a drop would pass the characters by";
}

TEST(PasswordField, GivesNothingToTheClipboardEvenWhileShown) {
  PasswordField field;
  TypeText(field, QStringLiteral("topsecret"));
  field.SetShown(true);
  QGuiApplication::clipboard()->setText(QStringLiteral("before"));
  PressKey(field, Qt::Key_A, Qt::ControlModifier);
  PressKey(field, Qt::Key_C, Qt::ControlModifier);
  PressKey(field, Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("before"));
  EXPECT_EQ(TextOf(field), "topsecret");
}

/// In how many pieces of this process's writable memory the password stands, as bytes, UTF-16 or UTF-32. The
/// characters of `masked` are those of the password ^ 0x5A: the plain text is never put together here.
int CountInMemory(const std::string& masked) {
  std::string wide;
  std::string widest;
  for (const char each : masked) {
    wide.append({each, 0x5A});
    widest.append({each, 0x5A, 0x5A, 0x5A});
  }
  const auto equals = [](char plain, char mask) { return (plain ^ 0x5A) == mask; };
  int count = 0;
  std::ifstream maps("/proc/self/maps");
  std::ifstream memory("/proc/self/mem", std::ios::binary);
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t from = 0;
    std::uintptr_t to = 0;
    char dash = 0;
    std::string mode;
    std::istringstream(line) >> std::hex >> from >> dash >> to >> mode;
    if (mode.substr(0, 2) != "rw" || to - from > (256U << 20)) continue;
    std::string block(to - from, '\0');
    memory.clear();
    memory.seekg(static_cast<std::streamoff>(from));
    memory.read(block.data(), static_cast<std::streamsize>(block.size()));
    for (const std::string& wanted : {masked, wide, widest})
      count += std::search(block.begin(), block.end(), wanted.begin(), wanted.end(), equals) != block.end();
    Wipe(block.data(), block.size());
  }
  return count;
}

TEST(PasswordField, LeavesNoPasswordInMemory) {
  std::string masked;
  for (int i = 0; i < 41; ++i)
    masked += static_cast<char>(('!' + (i * 37 + 11) % 90) ^ 0x5A);
  // The first bytes of a freed block are written over by the allocator, so they prove nothing.
  const std::string back = masked.substr(19);
  {
    PasswordField field;
    field.resize(300, 30);
    for (const char each : masked)
      PressKey(field, 0, Qt::NoModifier, QString(QChar(static_cast<char16_t>(each ^ 0x5A))));
    field.SetShown(true);
    field.grab();
    ASSERT_EQ(field.Password().View().size(), masked.size());
    PressKey(field, Qt::Key_A, Qt::ControlModifier);
    PressKey(field, Qt::Key_Delete);
    EXPECT_EQ(CountInMemory(back), 0) << "of what was removed";
  }
  EXPECT_EQ(CountInMemory(back), 0);
  QString plain;
  for (const char each : masked)
    plain += QChar(static_cast<char16_t>(each ^ 0x5A));
  EXPECT_GE(CountInMemory(back), 1) << "the search does find what is there";
}

}  // namespace
}  // namespace tarnel::test
