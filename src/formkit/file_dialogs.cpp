#include "formkit/file_dialogs.h"

#include <QFileDialog>
#include <QSettings>

#include "formkit/text.h"

namespace tarnel {

namespace {

QString NameFilter(const FileFilter& filter) {
  const QString patterns = QString::fromLatin1(filter.patterns).replace(QLatin1Char(';'), QLatin1Char(' '));
  return QStringLiteral("%1 (%2)").arg(Translated(filter.name), patterns);
}

void SetUp(QFileDialog& dialog, const Path& folder) {
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  if (!folder.empty()) dialog.setDirectory(QString::fromStdString(folder.native()));
}

std::optional<Path> Chosen(QFileDialog& dialog) {
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return PathOf(dialog.selectedFiles().constFirst());
}

}  // namespace

const std::vector<FileFilter>& CarrierFilters() {
  static const std::vector<FileFilter> filters = {
      {"All Carrier Files",
       "*.tnl;*.bmp;*.jpg;*.gif;*.tif;*.jpeg;*.exe;*.dll;*.wav;*.snd;*.mid;*.mp3;*.avi;*.mov;*.mpg;*.mpeg;"
       "*.asf;*.mpa;*.mpe;*.dib;*.pcx;*.png;*.wmf;*.ocx"},
      {"Image Files (*.bmp,*.jpg,*.jpeg,*.gif,*.tif,*.dib,*.pcx,*.png,*.wmf)",
       "*.bmp;*.jpg;*.gif;*.tif;*.jpeg;*.dib;*.pcx;*.png;*.wmf"},
      {"Program Files (*.exe,*.dll,*.ocx)", "*.exe;*.dll;*.ocx"},
      {"Audio Files (*.wav,*.snd,*.mid,*.mp3)", "*.wav;*.snd;*.mid;*.mp3"},
      {"Video Files (*.avi,*.mov,*.mpg,*.mpeg,*.asf,*.mpa,*.mpe)",
       "*.avi;*.mov;*.mpg;*.mpeg;*.asf;*.mpa;*.mpe"},
  };
  return filters;
}

TracelessFileDialogs::TracelessFileDialogs() {
  for (const auto format : {QSettings::NativeFormat, QSettings::IniFormat}) {
    QSettings::setPath(format, QSettings::UserScope, QStringLiteral("/dev/null"));
  }
}

std::optional<Path> TracelessFileDialogs::OpenFile(QWidget* owner, const QString& title, const Path& folder,
                                                   const std::vector<FileFilter>& filters) {
  QFileDialog dialog(owner, title);
  SetUp(dialog, folder);
  dialog.setFileMode(QFileDialog::ExistingFile);
  QStringList names;
  for (const FileFilter& filter : filters)
    names << NameFilter(filter);
  dialog.setNameFilters(names);
  return Chosen(dialog);
}

std::optional<Path> TracelessFileDialogs::SaveFile(QWidget* owner, const FileFilter& filter,
                                                   const QString& suffix) {
  QFileDialog dialog(owner);
  SetUp(dialog, {});
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  dialog.setDefaultSuffix(suffix);
  dialog.setNameFilters({NameFilter(filter)});
  return Chosen(dialog);
}

std::optional<Path> TracelessFileDialogs::ChooseFolder(QWidget* owner, const QString& prompt,
                                                       const QString& label, const Path& folder) {
  QFileDialog dialog(owner, prompt);
  SetUp(dialog, folder);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  dialog.setLabelText(QFileDialog::FileName, label);
  return Chosen(dialog);
}

}  // namespace tarnel
