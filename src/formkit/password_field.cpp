#include "formkit/password_field.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionFrame>
#include <algorithm>

namespace tarnel {

namespace {

constexpr QChar kPlaceholder(u'x');

bool IsForbidden(QKeyEvent* event) {
  return event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo) ||
         event->matches(QKeySequence::Cut) || event->matches(QKeySequence::Copy);
}

/// Exactly what the line edit underneath would insert by itself.
bool IsTyping(const QKeyEvent& event) {
  if (event.text().isEmpty()) return false;
  const QChar first = event.text().at(0);
  if (first.category() == QChar::Other_Format) return true;
  const bool isCommand = event.modifiers() == Qt::ControlModifier ||
                         event.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
  return !isCommand && (first.isPrint() || first.category() == QChar::Other_PrivateUse);
}

void AppendUtf8(Secret& secret, char32_t code) {
  const auto append = [&secret](char32_t byte) { secret.Append(static_cast<char>(byte)); };
  if (code < 0x80) {
    append(code);
  } else if (code < 0x800) {
    append(0xC0 | (code >> 6));
  } else if (code < 0x10000) {
    append(0xE0 | (code >> 12));
    append(0x80 | ((code >> 6) & 0x3F));
  } else {
    append(0xF0 | (code >> 18));
    append(0x80 | ((code >> 12) & 0x3F));
    append(0x80 | ((code >> 6) & 0x3F));
  }
  if (code >= 0x80) append(0x80 | (code & 0x3F));
}

}  // namespace

PasswordField::PasswordField(QWidget* parent) : QLineEdit(parent) {
  setEchoMode(QLineEdit::Password);
  setContextMenuPolicy(Qt::NoContextMenu);
  setAcceptDrops(false);
  setDragEnabled(false);
  setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText |
                      Qt::ImhNoAutoUppercase);
}

Secret PasswordField::Password() const {
  Secret secret;
  for (const char32_t code : m_characters)
    AppendUtf8(secret, code);
  return secret;
}

void PasswordField::Clear() {
  m_characters = Characters();
  clear();
}

void PasswordField::SetPassword(const Secret& ascii) {
  Clear();
  m_characters.assign(ascii.View().begin(), ascii.View().end());
  setText(QString(static_cast<qsizetype>(m_characters.size()), kPlaceholder));
}

void PasswordField::SetShown(bool isShown) {
  m_isShown = isShown;
  setEchoMode(isShown ? QLineEdit::Normal : QLineEdit::Password);
  setFont(isShown ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : QFont());
  QPalette colours;
  if (isShown) {
    colours.setColor(QPalette::Text, Qt::transparent);
    colours.setColor(QPalette::HighlightedText, Qt::transparent);
  }
  setPalette(colours);
  update();
}

void PasswordField::keyPressEvent(QKeyEvent* event) {
  if (IsForbidden(event)) return;
  if (event->matches(QKeySequence::Paste)) {
    Insert(QGuiApplication::clipboard()->text(), Origin::Pasted);
  } else if (IsTyping(*event)) {
    Insert(event->text(), Origin::Typed);
  } else {
    LetLineEdit(event);
  }
}

/// The line edit moves the cursor and removes placeholders; the same characters go here.
void PasswordField::LetLineEdit(QKeyEvent* event) {
  const qsizetype before = text().size();
  QLineEdit::keyPressEvent(event);
  RemoveCharacters(cursorPosition(), before - text().size());
}

void PasswordField::inputMethodEvent(QInputMethodEvent* event) {
  Insert(event->commitString(), Origin::Typed);
  event->accept();
}

void PasswordField::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::MiddleButton) {
    if (QGuiApplication::clipboard()->supportsSelection()) {
      Insert(QGuiApplication::clipboard()->text(QClipboard::Selection), Origin::Pasted);
    }
    return;
  }
  QLineEdit::mouseReleaseEvent(event);
}

void PasswordField::Insert(const QString& typed, Origin origin) {
  Characters fresh;
  for (qsizetype i = 0; i < typed.size(); ++i) {
    char32_t code = typed[i].unicode();
    if (typed[i].isHighSurrogate() && i + 1 < typed.size()) {
      code = QChar::surrogateToUcs4(typed[i], typed[i + 1]);
      ++i;
    }
    const bool isRefused =
        origin == Origin::Typed && code < 0x80 && m_refuses && m_refuses(static_cast<char>(code));
    if (!isRefused && code >= ' ' && !QChar::isSurrogate(code)) fresh.push_back(code);
  }
  if (fresh.empty() || m_characters.size() + fresh.size() > static_cast<std::size_t>(maxLength())) return;
  if (hasSelectedText()) {
    const qsizetype start = selectionStart();
    RemoveCharacters(start, selectedText().size());
    del();
  }
  m_characters.insert(m_characters.begin() + cursorPosition(), fresh.begin(), fresh.end());
  insert(QString(static_cast<qsizetype>(fresh.size()), kPlaceholder));
}

void PasswordField::RemoveCharacters(qsizetype at, qsizetype count) {
  if (count <= 0) return;
  const auto from = m_characters.begin() + at;
  m_characters.erase(from, from + count);
  Wipe(m_characters.data() + m_characters.size(), static_cast<std::size_t>(count) * sizeof(char32_t));
}

void PasswordField::paintEvent(QPaintEvent* event) {
  QLineEdit::paintEvent(event);
  if (m_isShown && !m_characters.empty()) PaintCharacters();
}

/// The placeholders are there already, in no colour; each character goes over its own.
void PasswordField::PaintCharacters() {
  QStyleOptionFrame option;
  initStyleOption(&option);
  const QRect contents = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
  const int advance = fontMetrics().horizontalAdvance(kPlaceholder);
  const QRect cursor = cursorRect();
  const int first = cursor.center().x() - cursorPosition() * advance;
  QPainter painter(this);
  painter.setClipRect(contents);
  const QPalette colours = QGuiApplication::palette();
  for (int i = 0; i < static_cast<int>(m_characters.size()); ++i) {
    const bool isSelected = hasSelectedText() && i >= selectionStart() && i < selectionEnd();
    painter.setPen(colours.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
    const QRect cell(first + i * advance, contents.top(), advance, contents.height());
    const char32_t code = m_characters[static_cast<std::size_t>(i)];
    painter.drawText(cell, Qt::AlignCenter | Qt::TextDontClip, QString::fromUcs4(&code, 1));
  }
}

}  // namespace tarnel
