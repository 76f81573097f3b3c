#pragma once

#include <sys/stat.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "carrier/companions.h"
#include "carrier/tags.h"
#include "crypto/compression.h"
#include "hiding/run_hide.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/faulty_files.h"
#include "tests/support/held_key.h"

namespace tarnel::test {

using Contents = std::multimap<std::string, std::string>;

/// The k-th call of this name on this path fails.
inline Fault FailingCall(const std::string& name, const Path& path, std::size_t k = 1) {
  return {.at = k, .writes = Writes::FirstHalf, .counts = [=](const Operation& operation) {
            return operation.name == name && operation.path == path;
          }};
}

/// Notes what it is shown, progress apart from the rest.
class NotingHideScreen : public Scripted<HideScreen> {
 public:
  void ShowStage(HideStage stage) override { script.Note(StageText(stage)); }
  void ShowFile(std::size_t number, std::size_t count, const Path& source, Length size) override {
    script.Note("file " + std::to_string(number) + "/" + std::to_string(count) + " " +
                source.filename().native() + " " + std::to_string(size));
  }
  void FileDone(std::size_t number) override { script.Note("done " + std::to_string(number)); }
  void ShowProgress(Length newValue, Length newMaximum) override {
    value = newValue;
    maximum = newMaximum;
  }
  void ShowBackup(Length, Length) override {}
  void ShowOriginal(OriginalStep step, const Path& original, std::size_t number, std::size_t count) override {
    originals.push_back((step == OriginalStep::Comparing ? "compare " : "remove ") +
                        original.filename().native() + " " + std::to_string(number) + "/" +
                        std::to_string(count));
  }
  void ShowReading(Length, Length) override {}
  void HideoutLoaded(TreeNode&, std::size_t files) override {
    script.Note("loaded " + std::to_string(files));
  }
  void HideoutGone() override { script.Note("gone"); }

  Length value = 0;
  Length maximum = 0;
  std::vector<std::string> originals;
};

/// A carrier, files to hide in it, and one hide.
///
///   HideBench bench;
///   bench.With({"old"}).Row("a.txt", "content").Row("b.txt", "more", "docs").Mode(0444);
///   EXPECT_EQ(bench.RunHide().ending, HideEnding::Done);
///   EXPECT_EQ(bench.Found().size(), 3U);
class HideBench : public CarrierBench {
 public:
  explicit HideBench(std::size_t bodySize = 1000) : CarrierBench(bodySize) {
    current.CurrentCarrierPath = carrier;
    current.CurrentHideoutTitle = "Title";
    current.CurrentAlgorithmId = Algorithm::Rijndael256;
    current.CurrentPassword = HeldKey("secret");
    Mode(0644);
  }

  /// A source file "sources/NAME" and its row.
  HideBench& Row(const std::string& name, std::string_view content, const std::string& rowFolder = {},
                 mode_t mode = 0644) {
    return RowOf(folder.Put("sources/" + name, content, mode), rowFolder);
  }
  HideBench& RowOf(const Path& source, const std::string& rowFolder = {}) {
    request.rows.push_back({.source = source, .name = source.filename().native(), .folder = rowFolder});
    request.totalBytes += static_cast<Length>(std::filesystem::file_size(source));
    return *this;
  }
  /// An entry that stands in the carrier before.
  HideBench& With(const Hidden& entry, const Under& under = {}) {
    Hide(entry, under);
    oldBytes = ReadAll(carrier);
    return *this;
  }
  HideBench& Mode(mode_t mode) {
    ::chmod(carrier.c_str(), mode);
    oldBytes = ReadAll(carrier);
    oldMode = mode;
    return *this;
  }
  Path Source(const std::string& name) const { return folder / ("sources/" + name); }

  HideResult RunHide() { return tarnel::RunHide(request, session, hideScreen); }

  /// Name and plain content of all entries of the hideout as a fresh reader finds them, oldest first.
  Contents Found() {
    catalogue.RemoveCarrier(carrier);
    CarrierBench::Load();
    Contents contents;
    for (auto row = catalogue.Rows().rbegin(); row != catalogue.Rows().rend(); ++row)
      contents.emplace(ToPlatform(row->Name()), PlainContentOf(*row));
    return contents;
  }

  static mode_t ModeOf(const Path& path) {
    struct stat data {};
    return ::stat(path.c_str(), &data) == 0 ? data.st_mode & 07777 : 0;
  }
  bool IsOld() const { return ReadAll(carrier) == oldBytes && ModeOf(carrier) == oldMode; }
  bool BackupExists() const { return std::filesystem::exists(BackupPath(carrier)); }
  bool BackupIsOld() const { return BackupExists() && ReadAll(BackupPath(carrier)) == oldBytes; }

  FaultyFiles files{posix};
  Reading session{files, catalogue, guards, current};
  HideRequest request;
  NotingHideScreen hideScreen;
  Script& script = hideScreen.script;
  std::string oldBytes;
  mode_t oldMode = 0;

 private:
  std::string PlainContentOf(const MirrorRow& row) {
    const std::string stored = ContentOf(row);
    if (row.Field(tag::kCompressed) == "0") return stored;
    MemorySink plain;
    DecompressingSink decompression(plain);
    decompression.Write(AsBytes(stored));
    return decompression.IsIntact() ? plain.text : "(damaged)";
  }
};

}  // namespace tarnel::test
