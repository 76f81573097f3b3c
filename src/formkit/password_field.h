#pragma once

#include <QLineEdit>
#include <functional>
#include <vector>

#include "base/secret.h"

namespace tarnel {

/// A line for a password that never makes a string of the toolkit with the password in it: those lie in
/// ordinary memory and are never wiped. The line edit underneath holds a placeholder for each character.
/// There is no copying out and no undo. Screen readers are told the placeholders only.
class PasswordField : public QLineEdit {
  Q_OBJECT

 public:
  explicit PasswordField(QWidget* parent = nullptr);

  /// What was typed, as UTF-8.
  Secret Password() const;
  /// Puts a text of ASCII characters, such as a proposed one, in place of all.
  void SetPassword(const Secret& ascii);
  bool IsEmpty() const { return m_characters.empty(); }
  void Clear();

  /// Shown, the characters are painted one by one in a font of fixed width.
  void SetShown(bool isShown);

  /// Characters for which `refuses` is true can't be typed. What is pasted is taken as it is: a password that
  /// silently lost some of its characters would lock its owner out.
  void SetRefused(std::function<bool(char)> refuses) { m_refuses = std::move(refuses); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  using Characters = std::vector<char32_t, WipingAllocator<char32_t>>;

  enum class Origin { Typed, Pasted };
  void Insert(const QString& text, Origin origin);
  void RemoveCharacters(qsizetype at, qsizetype count);
  void LetLineEdit(QKeyEvent* event);
  void PaintCharacters();

  Characters m_characters;
  std::function<bool(char)> m_refuses;
  bool m_isShown = false;
};

}  // namespace tarnel
