#pragma once

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/file_streams.h"
#include "carrier/format.h"
#include "carrier/open_hideout.h"
#include "carrier/record.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "crypto/cipher.h"
#include "crypto/compression.h"
#include "tests/crypto/memory_streams.h"
#include "tests/support/held_key.h"
#include "tests/support/scripted_dialogue.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {

/// A hideout as tests name it. Each password costs one key derivation per program: use few.
struct Under {
  std::string password = "secret";
  Algorithm algorithm = Algorithm::Rijndael256;
};

/// What stands in a record of the bench beside the sizes. All texts are the platform's.
struct Hidden {
  std::string name;
  std::string content = "some content";
  std::string folder = {};  ///< stored text
  std::string title = "Title";
  std::string mode = {};
};

/// Notes what it is shown.
class BenchScreen : public Scripted<OpeningScreen> {
 public:
  void ShowReading(Length, Length) override {}
  void HideoutLoaded(TreeNode& root, std::size_t files) override {
    script.Note("loaded " + std::string(root.text) + " " + std::to_string(files));
  }
  void ShowFaults(const ChainFaults& found) override { faults = SentencesOf(found); }
  void HideoutGone() override { script.Note("gone"); }
  void ShowTry(int number) override { script.Note("try " + std::to_string(number)); }
  std::vector<std::string> faults;  ///< of the last reading that had some
};

/// One carrier on disk, and a session that reads it.
///
///   CarrierBench bench(1000);
///   bench.Hide({"a.txt"}, Under{"secret"}).Hide({"b.txt"}, Under{"other"});
///   bench.FlipBit(1001, 0);
///   EXPECT_EQ(bench.Load(Under{"secret"}), LoadResult::Loaded);
///   EXPECT_EQ(bench.Names(), Strings{"a.txt"});
class CarrierBench {
 public:
  explicit CarrierBench(std::size_t bodySize = 1000) { folder.Put("carrier.bin", Pattern(bodySize)); }

  CarrierBench& Hide(const Hidden& hidden, const Under& under = {}) {
    const std::string payload = Encrypt(hidden.content, under);
    return HideRecord(RecordOf(hidden, payload.size()), payload, under);
  }

  CarrierBench& Compressed(const Hidden& hidden, const Under& under = {}) {
    MemorySource plain(hidden.content);
    CompressingSource compressed(plain, static_cast<Length>(hidden.content.size()), 6);
    std::string form(2 * hidden.content.size() + 100, '\0');
    form.resize(compressed.Read({reinterpret_cast<std::uint8_t*>(form.data()), form.size()}));
    const std::string payload = Encrypt(form, under);
    std::string record(RecordOf(hidden, payload.size()));
    record.replace(record.find("?Cmpr=<0"), 8, "?Cmpr=<6");
    return HideRecord(record, payload, under);
  }

  /// An entry with any record text.
  CarrierBench& HideRecord(std::string_view record, const std::string& payload, const Under& under = {}) {
    return Append(payload + SealEntry(record, static_cast<Length>(payload.size()), under.algorithm,
                                      HeldKey(under.password), secondKey));
  }

  CarrierBench& Append(const std::string& bytes) {
    std::ofstream(carrier, std::ios::binary | std::ios::app) << bytes;
    return *this;
  }

  /// `position` counts from 1.
  void FlipBit(Length position, unsigned bit) {
    const auto file = posix.OpenToChange(carrier);
    std::uint8_t byte = 0;
    file->ReadAt({position}, {&byte, 1});
    byte = static_cast<std::uint8_t>(byte ^ 1U << bit);
    file->WriteAt({position}, {&byte, 1});
  }
  void CutTo(Length size) { std::filesystem::resize_file(carrier, static_cast<std::uintmax_t>(size)); }
  Length Size() const { return static_cast<Length>(std::filesystem::file_size(carrier)); }

  static WipedText RecordOf(const Hidden& hidden, std::size_t payload) {
    return BuildRecord({.name = WipedText(ToStored(hidden.name, TextKind::PathComponent)),
                        .plainSize = std::to_string(hidden.content.size()),
                        .storedSize = std::to_string(payload),
                        .attributes = "32",
                        .date = "11/22/26 10:00:00",
                        .compressed = "0",
                        .folder = WipedText(hidden.folder),
                        .title = WipedText(ToStored(hidden.title, TextKind::Plain)),
                        .mode = hidden.mode},
                       RecordWriter::Hide);
  }

  static std::string Encrypt(std::string_view content, const Under& under) {
    MemorySource source(content);
    MemorySink sink;
    std::string secondKey;
    CipherEncryptFile(under.algorithm, source, sink, HeldKey(under.password), secondKey);
    return sink.text;
  }

  LoadRequest RequestFor(const Under& under) const {
    return {.carrier = carrier, .password = HeldKey(under.password), .algorithm = under.algorithm};
  }
  LoadResult Load(const Under& under = {}, LoadRequest::Reload reload = LoadRequest::Reload::Forced) {
    LoadRequest request = RequestFor(under);
    request.reload = reload;
    return LoadHideout(request, reading, screen);
  }
  LoadResult TryPassword(const std::string& password) {
    return tarnel::TryPassword(carrier, HeldKey(password), reading, screen);
  }

  /// Names of the rows, in their order.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const MirrorRow& row : catalogue.Rows())
      names.push_back(ToPlatform(row.Name()));
    return names;
  }
  /// The file that a row stands for; "(damaged)" if it doesn't authenticate.
  std::string ContentOf(const MirrorRow& row) {
    const auto file = posix.OpenToRead(row.hideout->carrier);
    FileSource source(*file, row.hideout->carrier, row.start, row.size);
    MemorySink plain;
    DecompressingSink decompression(plain);
    const bool isCompressed = row.Field(tag::kCompressed) != "0";
    ByteSink& sink = isCompressed ? static_cast<ByteSink&>(decompression) : plain;
    const bool isIntact =
        CipherDecryptFile(row.hideout->algorithm, source, sink, row.hideout->password, secondKey);
    return isIntact && (!isCompressed || decompression.IsIntact()) ? plain.text : "(damaged)";
  }

  /// Name and contents of every row, oldest first.
  std::vector<std::string> Contents() {
    std::vector<std::string> contents;
    for (const MirrorRow& row : catalogue.Rows())
      contents.insert(contents.begin(), ToPlatform(row.Name()) + "=" + ContentOf(row));
    return contents;
  }

  /// The same as a fresh reader finds it.
  std::vector<std::string> ContentsUnder(const Under& under) {
    catalogue.RemoveCarrier(carrier);
    Load(under);
    return Contents();
  }

  TempFolder folder;
  Path carrier = folder / "carrier.bin";
  PosixFiles posix;
  Catalogue catalogue;
  ReadingGuards guards;
  CurrentHideout current;
  Reading reading{posix, catalogue, guards, current};
  BenchScreen screen;
  std::string secondKey;
};

using Strings = std::vector<std::string>;

}  // namespace tarnel::test
