#include "carrier/tags.h"

#include "carrier/format.h"
#include "carrier/record.h"
#include "carrier/stored_text.h"
#include "fuzz/input.h"
#include "fuzz/targets.h"

namespace tarnel::fuzz {
namespace {

constexpr std::array<std::string_view, 10> kKeys = {
    tag::kName,       tag::kPlainSize, tag::kStoredSize,    tag::kAttributes, tag::kDate,
    tag::kCompressed, tag::kFolder,    tag::kWriterVersion, tag::kFormat,     tag::kMode};

void TakesValuesApart(std::string_view tags, const std::string& key) {
  const std::string_view value = GetTag(tags, key);
  if (value.empty()) return;
  Require(value.find('>') == std::string_view::npos, "a value holds no bracket");
  Require(tags.find(key + std::string(value) + ">") == tags.find(key), "a value belongs to the first key");
}

/// Whatever the platform's texts are, a record gives back what was put in.
void KeepsRecords(Input& input) {
  const RecordFields fields{.name = WipedText(ToStored(input.Text(), TextKind::PathComponent)),
                            .plainSize = std::to_string(input.Number()),
                            .storedSize = std::to_string(input.Number()),
                            .attributes = std::to_string(input.Byte()),
                            .date = ToStored(input.Text(), TextKind::Plain),
                            .compressed = std::to_string(input.Byte()),
                            .folder = WipedText(ToStored(input.Text(), TextKind::Plain)),
                            .title = WipedText(ToStored(input.Text(), TextKind::Plain)),
                            .mode = ToStored(input.Text(), TextKind::Plain)};
  for (const RecordWriter writer : {RecordWriter::Hide, RecordWriter::Rewrite}) {
    const WipedText record = BuildRecord(fields, writer);
    const RecordFields read = ReadRecord(record);
    Require(read.name == fields.name && read.folder == fields.folder, "name and folder come back");
    Require(read.plainSize == fields.plainSize && read.storedSize == fields.storedSize, "sizes come back");
    Require(read.date == fields.date && read.title == fields.title && read.mode == fields.mode,
            "texts come back");
    Require(read.attributes == fields.attributes && read.compressed == fields.compressed,
            "attributes come back");
    Require(GetTag(record, tag::kFormat) == kFormatVersion, "the format comes back");
  }
}

}  // namespace

void FuzzTags(Bytes bytes) {
  Input input(bytes);
  if (input.Byte() % 2 != 0) return KeepsRecords(input);
  const std::string freeKey = input.Text();
  const std::string text = input.Rest();
  for (const std::string_view key : kKeys)
    TakesValuesApart(text, std::string(key));
  TakesValuesApart(text, freeKey);
}

}  // namespace tarnel::fuzz
