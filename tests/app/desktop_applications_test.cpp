#include "app/desktop_applications.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace tarnel::test {
namespace {

using Line = std::vector<std::string>;

class DesktopApplicationsTest : public testing::Test {
 protected:
  void Put(const std::string& path, const std::string& exec, const std::string& more) {
    folder.Put(path, "[Desktop Entry]\nType=Application\nName=" + Path(path).stem().native() +
                         "\nExec=" + exec + "\n" + more + "[Other]\nName=not this\n");
  }
  std::string Default(const std::vector<std::string>& types) {
    const auto found =
        DesktopApplications(files, {{folder / "config"}, {folder / "own", folder / "all"}}).DefaultFor(types);
    return found ? found->name : "";
  }

  TempFolder folder;
  PosixFiles files;
};

TEST_F(DesktopApplicationsTest, TheUsersDefaultGoesBeforeWhatNamesTheType) {
  Put("all/applications/paint.desktop", "paint %f", "MimeType=image/png;image/gif;\n");
  Put("all/applications/kde/show.desktop", "show %U", "");
  Put("all/applications/edit.desktop", "edit %f", "MimeType=text/plain;\n");
  Put("own/applications/edit.desktop", "edit %f", "Hidden=true\nMimeType=text/plain;\n");
  Put("all/applications/term.desktop", "term %f", "Terminal=true\nMimeType=text/x-c;\n");
  folder.Put("config/mimeapps.list", "[Default Applications]\nimage/gif=gone.desktop;kde-show.desktop\n");
  EXPECT_EQ(Default({"image/png"}), "paint");
  EXPECT_EQ(Default({"image/gif"}), "show");
  EXPECT_EQ(Default({"text/x-c", "text/plain"}), "");  // in a terminal, and hidden
  EXPECT_EQ(Default({"audio/mpeg"}), "");
}

TEST_F(DesktopApplicationsTest, TheCommandLineKeepsTheBytesOfThePath) {
  const Path file = "/a b\xff\".txt";
  const std::pair<const char*, Line> cases[] = {
      {"edit %f", {"edit", file}},
      {"\"/opt/the editor\" --new \"a \\\"b\" %U %i", {"/opt/the editor", "--new", "a \"b", file}},
      {"run --title %c %F", {"run", "--title", "Name", file}},
  };
  for (const auto& [exec, line] : cases)
    EXPECT_EQ(CommandLineFor({.id = {}, .name = "Name", .exec = exec, .types = {}}, file), line) << exec;
}

}  // namespace
}  // namespace tarnel::test
