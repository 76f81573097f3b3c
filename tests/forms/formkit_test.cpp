#include <gtest/gtest.h>

#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

#include "base/attempt.h"
#include "carrier/questions.h"
#include "formkit/dialogue_in_windows.h"
#include "formkit/dropped_path.h"
#include "formkit/fit_path_text.h"
#include "formkit/guarded.h"
#include "tests/forms/forms_bench.h"
#include "tests/support/surroundings.h"

namespace tarnel::test {
namespace {

TEST(FitPathText, LeavesOutTheMiddleAndKeepsHeadAndTailAsLongAsTheyFit) {
  const struct {
    const char* text;
    int characters;
    const char* fitted;
  } cases[] = {
      {"C:\\aa\\bbbbb\\cc\\dd.txt", 19, "C:\\aa\\...\\cc\\dd.txt"},
      {"C:\\aa\\bbbbb\\cc\\dd.txt", 18, "C:\\aa\\...\\dd.txt"},
      {"C:\\aaaaaaaa\\bb\\dd.txt", 15, "C:\\...\\dd.txt"},
      {"C:\\aaaaaaaa\\bb\\dd.txt", 1, "...\\dd.txt"},
      {"/home/somebody/pictures/", 20, "/home/.../pictures"},
      {"http://host/page?query", 17, "http://.../page"},
      {"nothing to cut here", 3, "nothing to cut here"},
  };
  const auto widthOf = [](const QString& tried) { return static_cast<int>(tried.size()) * 100; };
  for (const auto& [text, characters, fitted] : cases) {
    const QString found =
        FitPathText(QString::fromUtf8(text), characters * 100 + 400, QStringLiteral("..."), widthOf);
    EXPECT_EQ(found.toStdString(), fitted) << text << " in " << characters;
  }
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
  const Error error(ErrorNumber::DiskFull, "cannot write a.png: no space");
  const struct {
    Question question;
    const char* text;
    qsizetype buttons;
    Answer preset;
    Answer escape;
    QMessageBox::Icon icon;
  } cases[] = {
      {NoPasswordMessage(), "Please enter the password!", 1, Answer::Ok, Answer::Ok, QMessageBox::Critical},
      {ReloadQuestion(), "This carrier file is opened already! Do you want to reload it?", 2, Answer::No,
       Answer::No, QMessageBox::Question},
      {ErrorQuestion(error, "x.error", "Tarnel [Hiding...]", LineBreak::LfCr, Answer::Retry),
       "Error: 61\ncannot write a.png: no space", 3, Answer::Retry, Answer::Abort, QMessageBox::Critical},
  };
  const auto answerOf = [](const QAbstractButton* button) {
    return static_cast<Answer>(button->property("answer").toInt());
  };
  for (const auto& [question, text, buttons, preset, escape, icon] : cases) {
    SCOPED_TRACE(text);
    QMessageBox box;
    FillBox(box, question);
    EXPECT_EQ(box.text().toStdString(), text);
    EXPECT_EQ(box.icon(), icon);
    EXPECT_EQ(box.buttons().size(), buttons);
    EXPECT_EQ(answerOf(box.defaultButton()), preset);
    EXPECT_EQ(answerOf(box.escapeButton()), escape);
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

}  // namespace
}  // namespace tarnel::test
