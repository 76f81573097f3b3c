#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "app/forms/main_window.h"
#include "formkit/file_dialogs.h"
#include "tests/support/scripted_dialogue.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {

/// The widget of that name below `parent`; the test fails without one.
template <class Widget = QWidget>
Widget& Find(QObject& parent, const char* name) {
  auto* const found = parent.findChild<Widget*>(QLatin1String(name));
  if (found == nullptr) throw std::runtime_error(std::string("no widget ") + name);
  return *found;
}

inline void Press(QObject& parent, const char* button) {
  Find<QAbstractButton>(parent, button).click();
}

/// Types into a field, character by character.
inline void Type(QObject& parent, const char* field, const char* text) {
  QTest::keyClicks(&Find(parent, field), QString::fromUtf8(text));
}

/// Chooses in file dialogs what the test laid ready; cancels where it laid nothing.
class ChosenFiles : public FileDialogs {
 public:
  std::deque<Path> answers;
  Path startFolder;
  int asked = 0;

  std::optional<Path> OpenFile(QWidget*, const QString&, const Path& folder,
                               const std::vector<FileFilter>&) override {
    return Next(folder);
  }
  std::optional<Path> SaveFile(QWidget*, const FileFilter&, const QString&) override { return Next({}); }
  std::optional<Path> ChooseFolder(QWidget*, const QString&, const QString&, const Path& folder) override {
    return Next(folder);
  }

 private:
  std::optional<Path> Next(const Path& folder) {
    startFolder = folder;
    ++asked;
    if (answers.empty()) return std::nullopt;
    const Path answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

/// What is done to modal forms as they come up: each step waits for the form of its name. A form without a
/// step, and a step without its form, fail the test.
class ModalSteps {
 public:
  ModalSteps() {
    QObject::connect(&m_timer, &QTimer::timeout, [this] { Step(); });
    m_timer.start(1);
  }
  ~ModalSteps() {
    for (const auto& step : m_steps)
      ADD_FAILURE() << step.first << " never came";
  }

  ModalSteps& On(const char* form, std::function<void(QWidget&)> action) {
    m_steps.emplace_back(form, std::move(action));
    return *this;
  }

 private:
  void Step() {
    QWidget* const form = QApplication::activeModalWidget();
    if (form == nullptr || m_isBusy) return;
    if (m_steps.empty() || m_steps.front().first != form->objectName().toStdString()) {
      if (++m_strange > 500) {
        ADD_FAILURE() << form->objectName().toStdString() << " was not expected";
        form->close();
      }
      return;
    }
    m_strange = 0;
    const auto action = m_steps.front().second;
    m_steps.pop_front();
    m_isBusy = true;
    try {
      action(*form);
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what();
      form->close();
    }
    m_isBusy = false;
  }

  std::deque<std::pair<std::string, std::function<void(QWidget&)>>> m_steps;
  QTimer m_timer;
  int m_strange = 0;
  bool m_isBusy = false;
};

/// A main window with everything around it scripted.
class FormsBench {
 public:
  FormsBench() {
    // Events run inside operations, as in windows.
    dialogue.script.onYield = [](std::size_t) { QCoreApplication::processEvents(); };
    MakeWindow();
  }

  void MakeWindow() {
    window.reset();
    session.reset();
    settings.emplace(posix, temp / "home/settings.ini");
    session.emplace(posix, *settings, [](const std::string&) { return std::string("some type"); });
    window = std::make_unique<MainWindow>(
        *session, WindowPorts{.dialogue = dialogue,
                              .fileDialogs = files,
                              .openOutside = [this](const QUrl& url) { opened = url; },
                              .openFile = [this](const Path& path) { openedFile = path; },
                              .endProcess = [this] { ++ended; }});
  }

  QAction& Item(const char* name) { return Find<QAction>(*window, name); }
  void Trigger(const char* name) { Item(name).trigger(); }
  void Tick() { QTest::qWait(120); }

  TempFolder temp;
  PosixFiles posix;
  Scripted<> dialogue;
  ChosenFiles files;
  ModalSteps modal;
  QUrl opened;
  Path openedFile;
  int ended = 0;
  std::optional<SettingsFile> settings;
  std::optional<Session> session;
  std::unique_ptr<MainWindow> window;
};

}  // namespace tarnel::test
