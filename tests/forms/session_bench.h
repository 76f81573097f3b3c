#pragma once

#include <QCoreApplication>
#include <algorithm>
#include <string>

#include "app/session.h"
#include "app/settings_file.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/faulty_files.h"

namespace tarnel::test {

/// A session over files that can fail, and a carrier for it. Events run where operations yield.
class SessionBench {
 public:
  SessionBench() {
    person.script.onYield = [this](std::size_t yield) {
      QCoreApplication::processEvents();
      if (onYield) onYield(yield);
    };
  }

  /// Opens what was hidden in the carrier so far.
  void Open() {
    session.current.CurrentPassword = HeldKey("secret");
    Scripted<OpeningHere> screen;
    Reading reading = session.MakeReading();
    TryPassword(carrier.carrier, session.current.CurrentPassword, reading, screen);
    session.DirView_NodeClick(*session.catalogue.Roots().at(0));
  }

  Strings SessionNames() { return NamesOf(session.catalogue); }
  /// What a fresh reader finds.
  Strings CarrierNames() {
    carrier.catalogue.RemoveCarrier(carrier.carrier);
    carrier.Load();
    return NamesOf(carrier.catalogue);
  }
  bool WasAsked(const char* id) const {
    const auto& asked = person.script.Asked();
    return std::any_of(asked.begin(), asked.end(), [id](const Question& one) { return one.id == id; });
  }
  void ExpectListAgreesWithCatalogue() {
    const TreeNode* const node = session.SelectedNode();
    EXPECT_TRUE(node == nullptr ? session.fileList.Rows().empty()
                                : session.fileList.Shows(*node, session.catalogue));
  }

  CarrierBench carrier;
  TempFolder temp;
  PosixFiles posix;
  FaultyFiles files{posix};
  SettingsFile settings{posix, carrier.folder / "settings.ini"};
  Session session{files, settings, [](const std::string&) { return std::string(); }};
  Scripted<> person;
  std::function<void(std::size_t)> onYield;

 private:
  struct OpeningHere : OpeningScreen {
    void ShowTry(int) override {}
    void ShowReading(Length, Length) override {}
    void HideoutLoaded(TreeNode&, std::size_t) override {}
    void HideoutGone() override {}
  };

  static Strings NamesOf(const Catalogue& catalogue) {
    Strings names;
    for (const MirrorRow& row : catalogue.Rows())
      names.push_back(ToPlatform(row.Name()));
    std::sort(names.begin(), names.end());
    return names;
  }
};

}  // namespace tarnel::test
