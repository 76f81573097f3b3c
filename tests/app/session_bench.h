#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/session.h"
#include "carrier/record.h"
#include "carrier/stored_text.h"
#include "tests/support/held_key.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {

/// A session whose hideouts are put into the catalogue by hand.
///
///   SessionBench bench;
///   bench.Open("/a.png").File("x.txt", 2048).File("y.txt", 10, "docs");
///   bench.Click("/a.png", "docs");
///   EXPECT_EQ(bench.Shown(), Strings{"y.txt"});
class SessionBench : public SessionView {
 public:
  SessionBench() { session.SetView(this); }

  SessionBench& Open(const Path& carrier, const std::string& algorithm = "TWOFISH") {
    std::string name = algorithm;
    hideout =
        std::make_shared<const HideoutKey>(HideoutKey{.carrier = carrier,
                                                      .carrierName = carrier.filename(),
                                                      .password = HeldKey("secret of " + carrier.string()),
                                                      .algorithm = AlgorithmId(name),
                                                      .title = "Title"});
    session.catalogue.AddRoot(hideout, "*RootFolder*");
    return *this;
  }

  SessionBench& File(const std::string& name, double size, const std::string& folder = {}) {
    MirrorRow row;
    row.hideout = hideout;
    row.record = BuildRecord({.name = WipedText(ToStored(name, TextKind::PathComponent)),
                              .plainSize = std::to_string(static_cast<long long>(size)),
                              .storedSize = "1",
                              .attributes = "32",
                              .date = "d" + name,
                              .compressed = "0",
                              .folder = WipedText(folder),
                              .title = "Title",
                              .mode = {}},
                             RecordWriter::Hide);
    session.catalogue.EnsureFolderNode(Root(hideout->carrier), folder);
    session.catalogue.AddRow(std::move(row));
    return *this;
  }

  TreeNode& Root(const Path& carrier) {
    TreeNode* const root = session.catalogue.FindRoot(carrier);
    if (root == nullptr) throw std::runtime_error("no hideout of " + carrier.native());
    return *root;
  }

  SessionBench& Click(const Path& carrier, const std::string& folder = {}) {
    session.DirView_NodeClick(session.catalogue.EnsureFolderNode(Root(carrier), folder));
    return *this;
  }

  /// One text of each row; folders have a "/" behind.
  std::vector<std::string> Shown(Column column = Column::File) const {
    std::vector<std::string> shown;
    for (const FileListRow& row : session.fileList.Rows()) {
      const bool isFolder = row.kind == FileListRow::Kind::Folder;
      shown.push_back(ToDisplay(row.texts[static_cast<std::size_t>(column)]) + (isFolder ? "/" : ""));
    }
    return shown;
  }

  void TreeChanged() override {}
  void FileListChanged() override { ++listChanges; }
  void SettingsChanged() override {}

  TempFolder temp;
  PosixFiles posix;
  SettingsFile settings{posix, temp / "config/settings.ini"};
  Session session{posix, settings, [](const std::string& name) { return "  type of " + name + " "; }};
  std::shared_ptr<const HideoutKey> hideout;
  int listChanges = 0;
};

using Strings = std::vector<std::string>;

}  // namespace tarnel::test
