#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "carrier/companions.h"
#include "crypto/compression.h"
#include "retrieval/run_delete.h"
#include "retrieval/run_extract.h"
#include "retrieval/run_password.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/faulty_files.h"
#include "tests/support/held_key.h"

namespace tarnel::test {

class ExtractScript : public Scripted<ExtractScreen> {
 public:
  void ShowFile(std::size_t number, std::size_t count, std::string_view storedName, Length size) override {
    script.Note("[" + std::to_string(number) + "/" + std::to_string(count) + "] " + std::string(storedName) +
                " " + std::to_string(size));
  }
  void ShowTarget(const Path& target) override { script.Note("to " + target.filename().string()); }
  void ShowProgress(Length value, Length maximum) override {
    script.Note(std::to_string(value) + " of " + std::to_string(maximum));
  }
};

class RewriteScript : public Scripted<RewriteScreen> {
 public:
  void ShowProgress(Length value, Length maximum) override { EXPECT_LE(value, maximum); }
  void HideoutEmptied() override { script.Note("emptied"); }
  void ShowReading(Length, Length) override {}
  void HideoutLoaded(TreeNode&, std::size_t files) override {
    script.Note("loaded " + std::to_string(files));
  }
  void HideoutGone() override { script.Note("gone"); }
};

inline const Under kOther{"other", Algorithm::Twofish};

/// A carrier bench whose operations go through files that can fail.
class RetrievalBench : public CarrierBench {
 public:
  using CarrierBench::CarrierBench;

  RetrievalBench& Hide(const Hidden& hidden, const Under& under = {}) {
    CarrierBench::Hide(hidden, under);
    return *this;
  }
  RetrievalBench& Compressed(const Hidden& hidden, const Under& under = {}) {
    MemorySource plain(hidden.content);
    CompressingSource compressed(plain, static_cast<Length>(hidden.content.size()), 6);
    std::string text(2 * hidden.content.size() + 100, '\0');
    text.resize(compressed.Read({reinterpret_cast<std::uint8_t*>(text.data()), text.size()}));
    const std::string payload = Encrypt(text, under);
    std::string record(RecordOf(hidden, payload.size()));
    record.replace(record.find("?Cmpr=<0"), 8, "?Cmpr=<6");
    HideRecord(record, payload, under);
    return *this;
  }

  std::size_t RowNamed(const std::string& name) const {
    const std::vector<std::string> names = Names();
    const auto found = std::find(names.begin(), names.end(), name);
    EXPECT_NE(found, names.end()) << name;
    return static_cast<std::size_t>(found - names.begin());
  }

  /// Name and contents of every row, oldest first.
  std::vector<std::string> Contents() {
    std::vector<std::string> contents;
    for (const MirrorRow& row : catalogue.Rows())
      contents.insert(contents.begin(), ToPlatform(row.Name()) + "=" + ContentOf(row));
    return contents;
  }

  ExtractRequest All() const {
    ExtractRequest request;
    request.carrier = carrier;
    request.target = target;
    request.all = true;
    return request;
  }
  ExtractResult Extract(const ExtractRequest& request) { return RunExtract(request, faulty, extractScreen); }

  ExtractResult ExtractThrough(Files& through, ExtractScript& person) {
    Reading other{through, catalogue, guards, current};
    return RunExtract(All(), other, person);
  }

  DeleteResult Delete(const Strings& names) {
    DeleteRequest request;
    for (const std::string& name : names)
      request.rows.push_back(RowNamed(name));
    return RunDelete(request, faulty, rewriteScreen);
  }
  PasswordResult ChangePassword(const std::string& from, const std::string& to) {
    return RunPassword({.oldPassword = HeldKey(from), .newPassword = HeldKey(to), .confirmation = Secret(to)},
                       faulty, rewriteScreen);
  }

  /// Loads again from a clean slate.
  Strings ContentsUnder(const Under& under) {
    catalogue.RemoveCarrier(carrier);
    Load(under);
    return Contents();
  }

  Path target = folder / "out";
  Path temporary = folder / "carrier.bin.tmp";
  FaultyFiles files{posix};
  Reading faulty{files, catalogue, guards, current};
  ExtractScript extractScreen;
  RewriteScript rewriteScreen;
};

}  // namespace tarnel::test
