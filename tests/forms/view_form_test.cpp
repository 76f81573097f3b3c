#include <gtest/gtest.h>

#include <QLabel>
#include <fstream>

#include "carrier/companions.h"
#include "carrier/stored_text.h"
#include "formkit/password_field.h"
#include "retrieval/forms/frm_password.h"
#include "retrieval/forms/frm_view.h"
#include "tests/forms/forms_bench.h"
#include "tests/forms/session_bench.h"
#include "tests/support/held_key.h"
#include "tests/support/surroundings.h"

namespace tarnel::test {
namespace {

/// An open hideout of two files beside another one's, and a temporary folder of its own.
class RewriteFormBench : public SessionBench {
 public:
  RewriteFormBench() {
    carrier.Hide({.name = "a.txt", .content = "content of a"});
    carrier.Hide({.name = "foreign"}, kOther).Hide({.name = "b", .content = "content of b"});
    Open();
  }

  void MakeView() {
    for (const MirrorRow& row : session.catalogue.Rows())
      if (row.Name() == "a.txt") session.previewParcel = ParcelOf(row);
    view.emplace(
        session, person, [this](const Path& path) { opened.push_back(path); }, nullptr);
    view->show();
  }
  /// Waits until the file is shown; false if the form has gone.
  bool OpenView() {
    MakeView();
    return QTest::qWaitFor([this] { return !view->isVisible() || Button("Cmd_Ok").isEnabled(); }) &&
           view->isVisible();
  }
  QAbstractButton& Button(const char* name) { return Find<QAbstractButton>(*view, name); }
  std::string Remark() { return Find<QLabel>(*view, "Lb_Change").text().toStdString(); }
  void Edit(const std::string& content) { std::ofstream(opened.at(1)) << content; }

  Strings SessionContents() { return ContentsOf(session.catalogue); }
  /// What a fresh reader finds; empty if the password opens nothing.
  Strings CarrierContents(const std::string& password = "secret") {
    carrier.catalogue.RemoveCarrier(carrier.carrier);
    carrier.Load({.password = password});
    return ContentsOf(carrier.catalogue);
  }
  void AnswerAll(Answer answer) {
    for (const char* id : {"view.error", "update.error", "password.error", "load.error", "carrier.error",
                           "destroy.error", "remove.error", "password.damaged"})
      person.script.Always(id, answer);
    for (const char* id : {"main.fault", "update.not-replaced", "password.not-replaced", "load.damage",
                           "update.missing", "view.attention"})
      person.script.Always(id, Answer::Ok);
    person.script.Always("update.confirm", Answer::Yes).Always("view.return", Answer::Yes);
    person.script.Always("view.locked", Answer::Cancel);
  }

  inline static const Under kOther{"other", Algorithm::Twofish};
  Variable ownTemp{"TMPDIR", temp.Where()};
  std::vector<Path> opened;
  std::optional<FrmView> view;

 private:
  Strings ContentsOf(const Catalogue& catalogue) {
    Strings contents;
    for (const MirrorRow& row : catalogue.Rows())
      contents.push_back(ToPlatform(row.Name()) + "=" + carrier.ContentOf(row));
    std::sort(contents.begin(), contents.end());
    return contents;
  }
};

}  // namespace

TEST(FrmView, PutsBackWhatWasEditedAndDestroysItsCopy) {
  RewriteFormBench bench;
  ASSERT_TRUE(bench.OpenView());
  EXPECT_EQ(bench.Remark(), "Not changed");
  bench.view->close();
  EXPECT_TRUE(bench.view->isVisible()) << "OK is the way out";
  for (const char* content : {"edited", "edited once more"}) {
    bench.Edit(content);
    EXPECT_TRUE(QTest::qWaitFor([&] { return bench.Remark().starts_with("Changed since"); }));
    bench.person.script.Expect("update.confirm", Answer::Yes);
    bench.Button("Cmd_Update").click();
    EXPECT_EQ(bench.Remark(), "Updated, not changed since");
    EXPECT_EQ(bench.CarrierContents(), (Strings{std::string("a.txt=") + content, "b=content of b"}));
    EXPECT_EQ(bench.SessionContents(), bench.CarrierContents());
  }
  bench.person.script.Expect("view.return", Answer::No).Expect("view.return-without", Answer::No);
  bench.Button("Cmd_Ok").click();
  EXPECT_TRUE(bench.Button("Cmd_Ok").isEnabled());
  bench.person.script.Expect("view.return", Answer::Yes);
  bench.Button("Cmd_Ok").click();
  EXPECT_FALSE(bench.view->isVisible());
  EXPECT_EQ(bench.temp.Names(), Strings{});
}

TEST(FrmView, FindsItsEntryAgainAfterAnotherProgramHasHiddenSomething) {
  RewriteFormBench bench;
  ASSERT_TRUE(bench.OpenView());
  bench.carrier.Hide({.name = "c", .content = "new"});
  bench.Edit("edited");
  bench.person.script.Expect("carrier.changed", Answer::No);
  bench.Button("Cmd_Update").click();
  bench.person.script.Expect("carrier.changed", Answer::Yes).Expect("update.confirm", Answer::Yes);
  bench.Button("Cmd_Update").click();
  EXPECT_EQ(bench.CarrierContents(), (Strings{"a.txt=edited", "b=content of b", "c=new"}));
  bench.person.script.Expect("view.return", Answer::Yes);
  bench.Button("Cmd_Ok").click();
}

TEST(FrmView, ACancelledOpeningLeavesNothingPlain) {
  RewriteFormBench bench;
  bench.MakeView();
  bench.onYield = [&](std::size_t) { bench.view->close(); };
  EXPECT_TRUE(QTest::qWaitFor([&] { return !bench.view->isVisible(); }));
  EXPECT_EQ(bench.opened, std::vector<Path>{});
  EXPECT_LE(bench.temp.Names().size(), 1U) << "an empty folder at most";
  bench.view.reset();
  EXPECT_TRUE(bench.session.previewParcel.ViewFileName.empty());
}

TEST(FrmPassword, ChangesOneHideoutByKeysAlone) {
  RewriteFormBench bench;
  FrmPassword form(bench.session, bench.person, nullptr);
  form.show();
  const auto press = [&](const char* old, const char* fresh, const char* confirmed) {
    const std::pair<const char*, const char*> texts[] = {
        {"txt_oldpass", old}, {"txt_newpass", fresh}, {"txt_confirm", confirmed}};
    for (const auto& [field, text] : texts) {
      Find<PasswordField>(form, field).Clear();
      Type(form, field, text);
    }
    QTest::keyClick(&form, Qt::Key_Return);
  };
  const std::string before = ReadAll(bench.carrier.carrier);
  bench.person.script.Expect("password.old", Answer::Ok).Expect("password.empty", Answer::Ok);
  bench.person.script.Expect("password.confirmation", Answer::Ok);
  press("wrong", "other", "other");
  press("secret", "<>", "");
  press("secret", "other", "otter");
  EXPECT_EQ(ReadAll(bench.carrier.carrier), before);
  std::ofstream(TemporaryCarrierPath(bench.carrier.carrier)) << "of an interrupted run";
  bench.person.script.Expect("carrier.leftovers", Answer::Yes);
  press("secret", "o<ther", "other");
  EXPECT_FALSE(form.isVisible());
  EXPECT_EQ(bench.CarrierContents(), Strings{});
  EXPECT_EQ(bench.CarrierContents("other"), (Strings{"a.txt=content of a", "b=content of b"}));
  EXPECT_TRUE(bench.session.current.CurrentPassword == HeldKey("other"));
  EXPECT_EQ(bench.session.filesPanel, "2 File(s) ");
  bench.carrier.catalogue.RemoveCarrier(bench.carrier.carrier);
  bench.carrier.Load(RewriteFormBench::kOther);
  EXPECT_EQ(bench.carrier.Names(), Strings{"foreign"});
}

TEST(FrmPassword, ACancelAsksAndChangesNothing) {
  RewriteFormBench bench;
  bench.carrier.Hide({.name = "big", .content = Pattern(100'000)});
  const std::string before = ReadAll(bench.carrier.carrier);
  bench.person.script.Expect("carrier.changed", Answer::Yes);
  FrmPassword form(bench.session, bench.person, nullptr);
  form.show();
  Type(form, "txt_oldpass", "secret");
  Type(form, "txt_newpass", "other");
  Type(form, "txt_confirm", "other");
  bench.person.script.Expect("password.cancel", Answer::Yes);
  bool isCancelled = false;
  bench.onYield = [&](std::size_t) {
    if (isCancelled || !form.Running()) return;
    isCancelled = true;
    form.close();
  };
  Press(form, "Cmd_Ok");
  EXPECT_FALSE(form.isVisible());
  EXPECT_EQ(ReadAll(bench.carrier.carrier), before);
  EXPECT_EQ(bench.CarrierContents().size(), 3U);
}

class RewriteFormSweep : public testing::TestWithParam<Answer> {};

TEST_P(RewriteFormSweep, WhateverFailsInAViewSessionAndCarrierAgreeAndNothingPlainStays) {
  for (std::size_t k = 1;; ++k) {
    SCOPED_TRACE(k);
    RewriteFormBench bench;
    bench.AnswerAll(GetParam());
    bench.files.Fail({.at = k, .writes = Writes::FirstHalf});
    if (bench.OpenView()) {
      bench.Edit("edited");
      bench.Button("Cmd_Update").click();
      bench.Button("Cmd_Ok").click();
      EXPECT_FALSE(bench.view->isVisible());
    }
    if (!bench.files.HasFailed()) {
      EXPECT_GT(k, 40U);
      return;
    }
    const Strings inCarrier = bench.CarrierContents();
    EXPECT_TRUE(inCarrier == (Strings{"a.txt=content of a", "b=content of b"}) ||
                inCarrier == (Strings{"a.txt=edited", "b=content of b"}));
    EXPECT_TRUE(bench.WasAsked("load.error") || bench.SessionContents() == inCarrier);
    bench.ExpectListAgreesWithCatalogue();
    const bool wasTold = bench.WasAsked("view.attention") || bench.WasAsked("view.locked") ||
                         bench.WasAsked("destroy.error") || bench.WasAsked("remove.error");
    EXPECT_TRUE(wasTold || bench.temp.Names().size() <= 1U);
  }
}

TEST_P(RewriteFormSweep, WhateverFailsInAChangeOfPasswordSessionAndCarrierAgree) {
  for (std::size_t k = 1;; ++k) {
    SCOPED_TRACE(k);
    RewriteFormBench bench;
    bench.AnswerAll(GetParam());
    FrmPassword form(bench.session, bench.person, nullptr);
    form.show();
    Type(form, "txt_oldpass", "secret");
    Type(form, "txt_newpass", "other");
    Type(form, "txt_confirm", "other");
    bench.files.Fail({.at = k, .writes = Writes::FirstHalf});
    Press(form, "Cmd_Ok");
    EXPECT_TRUE(Find<QAbstractButton>(form, "Cmd_Cancel").isEnabled()) << "it can be left";
    if (!bench.files.HasFailed()) {
      EXPECT_GT(k, 20U);
      return;
    }
    const Strings whole{"a.txt=content of a", "b=content of b"};
    const bool isNew = bench.CarrierContents("other") == whole;
    EXPECT_EQ(bench.CarrierContents(), isNew ? Strings{} : whole);
    const bool isRead = bench.SessionContents() == whole;
    EXPECT_TRUE(isRead || bench.WasAsked("load.error"));
    const Key expected = HeldKey(isNew ? "other" : "secret");
    EXPECT_TRUE(!isRead || bench.session.current.CurrentPassword == expected);
    bench.ExpectListAgreesWithCatalogue();
    EXPECT_EQ(bench.temp.Names(), Strings{});
  }
}

INSTANTIATE_TEST_SUITE_P(All, RewriteFormSweep,
                         testing::Values(Answer::Abort, Answer::Retry, Answer::Ignore));

}  // namespace tarnel::test
