#include "carrier/record.h"

#include "carrier/format.h"
#include "carrier/length_field.h"
#include "carrier/tags.h"
#include "crypto/cipher.h"

namespace tarnel {

WipedText BuildRecord(const RecordFields& fields, RecordWriter writer) {
  WipedText record;
  AppendTag(record, tag::kName, fields.name);
  AppendTag(record, tag::kPlainSize, fields.plainSize);
  AppendTag(record, tag::kStoredSize, fields.storedSize);
  AppendTag(record, tag::kAttributes, fields.attributes);
  AppendTag(record, tag::kDate, fields.date);
  AppendTag(record, tag::kCompressed, fields.compressed);
  AppendTag(record, tag::kFolder, fields.folder);
  AppendTag(record, tag::kTitle, fields.title);
  AppendTag(record, tag::kWriterVersion, kFormatVersion);
  AppendTag(record, tag::kFormat, kFormatVersion);
  if (writer == RecordWriter::Rewrite) AppendTag(record, tag::kFormat, kFormatVersion);
  if (!fields.mode.empty()) AppendTag(record, tag::kMode, fields.mode);
  if (!fields.seal.empty()) AppendTag(record, tag::kSeal, fields.seal);
  if (!fields.mtime.empty()) AppendTag(record, tag::kMtime, fields.mtime);
  return record;
}

RecordFields ReadRecord(std::string_view record) {
  const auto field = [record](std::string_view key) { return std::string(GetTag(record, key)); };
  const auto wiped = [record](std::string_view key) { return WipedText(GetTag(record, key)); };
  return {.name = wiped(tag::kName),
          .plainSize = field(tag::kPlainSize),
          .storedSize = field(tag::kStoredSize),
          .attributes = field(tag::kAttributes),
          .date = field(tag::kDate),
          .compressed = field(tag::kCompressed),
          .folder = wiped(tag::kFolder),
          .title = wiped(tag::kTitle),
          .mode = field(tag::kMode),
          .seal = field(tag::kSeal),
          .mtime = field(tag::kMtime)};
}

std::string SealEntry(std::string_view plainRecord, Length payload, Algorithm algorithm, const Key& key,
                      std::string& secondKey) {
  const std::string text = CipherEncryptString(algorithm, plainRecord, TextForm::Base64, key, secondKey);
  if (text.empty()) {
    throw Error(ErrorNumber::InvalidPropertyValue,
                "cannot encrypt a record with " + AlgorithmName(algorithm) + ": it has no cipher");
  }
  if (text.size() > kRecordLimit) {
    throw Error(ErrorNumber::InvalidPropertyValue,
                "cannot write a record of more than 1 MiB: the name, the folder or the title is too long");
  }
  return text + PackLengthField(payload) + PackLengthField(static_cast<Length>(text.size()));
}

}  // namespace tarnel
