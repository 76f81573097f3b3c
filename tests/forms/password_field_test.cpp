#include "formkit/password_field.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QKeyEvent>
#include <QTest>
#include <algorithm>
#include <fstream>
#include <sstream>

#include "carrier/open_hideout.h"

namespace tarnel::test {
namespace {

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
  EXPECT_EQ(TextOf(field), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x90\x9F") << "without < and > and the line end";
  EXPECT_EQ(field.text().size(), 3) << "one placeholder each";
  PressKey(field, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(field.text().size(), 3) << "no undo";
  PressKey(field, Qt::Key_Backspace);
  EXPECT_EQ(TextOf(field), "\xC3\xA9\xE2\x82\xAC");
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
  {
    PasswordField field;
    field.resize(300, 30);
    for (const char each : masked)
      PressKey(field, 0, Qt::NoModifier, QString(QChar(static_cast<char16_t>(each ^ 0x5A))));
    field.SetShown(true);
    field.grab();
    ASSERT_EQ(field.Password().View().size(), masked.size());
  }
  // The first bytes of a freed block are written over by the allocator, so they prove nothing.
  const std::string back = masked.substr(19);
  EXPECT_EQ(CountInMemory(back), 0);
  QString plain;
  for (const char each : masked)
    plain += QChar(static_cast<char16_t>(each ^ 0x5A));
  EXPECT_GE(CountInMemory(back), 1) << "the search does find what is there";
}

}  // namespace
}  // namespace tarnel::test
