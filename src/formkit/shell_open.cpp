#include "formkit/shell_open.h"

#include <QApplication>
#include <QUrl>
#include <utility>

#include "base/printable.h"
#include "base/start_program.h"
#include "formkit/open_with.h"
#include "formkit/text.h"
#include "formkit/type_icons.h"

namespace tarnel {

DesktopOpener::DesktopOpener(Files& files) : DesktopOpener(files, StartProgram) {}

DesktopOpener::DesktopOpener(Files& files, Starter starter) : m_files(files), m_starter(std::move(starter)) {}

void DesktopOpener::Open(const Path& path) {
  const std::optional<FileStat> stat = m_files.Stat(path);
  if (!stat)
    throw Error(ErrorNumber::FileNotFound, "cannot open " + Printable(path.native()) + ": not found", path);
  const bool isFolder = stat->kind == FileKind::Folder;
  const std::vector<std::string> types =
      isFolder ? std::vector<std::string>{"inode/directory"} : MimeTypesOf(path.filename().native());
  DesktopApplications desktop(m_files, UserDesktopFolders());
  std::optional<DesktopApplication> application = desktop.DefaultFor(types);
  if (!application) {
    std::vector<DesktopApplication> all = desktop.All();
    if (all.empty())
      throw Error(
          ErrorNumber::FileNotFound,
          "cannot open " + Printable(path.native()) + ": no application is installed that opens files", path);
    OpenWith form(path, std::move(all), QApplication::activeWindow());
    form.exec();
    application = form.Chosen();
  }
  if (application) Start(CommandLineFor(*application, path), path);
}

bool DesktopOpener::OpenPage(const QUrl& page) {
  if (!page.isLocalFile() || !page.path().endsWith(QLatin1String(".html"))) return false;
  const auto browser = DesktopApplications(m_files, UserDesktopFolders())
                           .DefaultFor({"x-scheme-handler/https", "x-scheme-handler/http", "text/html"});
  if (!browser) return false;
  return m_starter(CommandLineFor(*browser, PathOf(page.toLocalFile()), page.toEncoded().toStdString()));
}

void DesktopOpener::Start(const std::vector<std::string>& commandLine, const Path& path) {
  if (m_starter(commandLine)) return;
  throw Error(ErrorNumber::FileNotFound,
              "cannot open " + Printable(path.native()) + ": its application could not be started", path);
}

}  // namespace tarnel
