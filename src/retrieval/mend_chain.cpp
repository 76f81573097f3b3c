#include "retrieval/mend_chain.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "base/attempt.h"
#include "base/file_streams.h"
#include "base/pace.h"
#include "base/partial_file.h"
#include "base/printable.h"
#include "carrier/format.h"
#include "carrier/length_field.h"
#include "carrier/record_scan.h"
#include "carrier/record_text.h"
#include "carrier/tags.h"
#include "carrier/walk.h"

namespace tarnel {
namespace {

using Kind = MendPlan::Step::Kind;

/// An entry as its record shows it.
struct Link {
  Position record;
  Position trailer;
  std::string left;  ///< the two fields as they stand; shorter where the file ends in them
  std::string right;
  LengthField payload;
  LengthField recordLength;
  bool isOwn = false;           ///< its record is whole under the key
  std::optional<Length> named;  ///< the payload length that the record names

  Length TextLength() const { return trailer - record; }
  Position End() const { return trailer + Length{kTrailerSize}; }
  /// Where the payload length comes from as long as nothing contradicts it.
  std::optional<Length> Payload() const {
    if (named) return named;
    const bool isLength = payload.holds && payload.number >= 0 && payload.number <= kCarrierLimit;
    return isLength ? std::optional(static_cast<Length>(payload.number)) : std::nullopt;
  }
};

class Planning {
 public:
  Planning(File& carrier, const Key& key, Dialogue& dialogue)
      : m_carrier(carrier), m_key(key), m_dialogue(dialogue), m_size(carrier.Size()) {}

  MendPlan Run();

 private:
  void FindLinks();
  std::optional<Link> LinkAt(const RecordText& text);
  Link MakeLink(const RecordText& text, Position trailer);
  void FindLostTrailers();
  void Join();
  void JoinFirst(const Link& link);
  void JoinTo(Position before, const Link& link);
  void BridgeGap(Position from, Length length);
  void Emit(const Link& link, Length payload, const char* reason);
  void EmitField(Position at, const std::string& field, const LengthField& held, Length number,
                 const char* reason);
  void CopyUntil(Position end);

  File& m_carrier;
  const Key& m_key;
  Dialogue& m_dialogue;
  Length m_size;
  std::vector<RecordText> m_texts;
  std::vector<std::optional<Link>> m_found;  ///< for each text
  std::vector<Link> m_links;                 ///< in file order
  Position m_copied;                         ///< the first byte that no piece has
  MendPlan m_plan;
};

MendPlan Planning::Run() {
  FindLinks();
  FindLostTrailers();
  for (const std::optional<Link>& link : m_found)
    if (link) m_links.push_back(*link);
  Join();
  return std::move(m_plan);
}

void Planning::FindLinks() {
  Pace pace(m_dialogue);
  RecordScan scan(m_carrier, [&](Length) {
    m_dialogue.Yield();
    if (m_dialogue.CancelRequested()) throw Stop{StopReason::Cancelled};
  });
  while (const std::optional<RecordText> text = scan.Next()) {
    m_texts.push_back(*text);
    m_found.push_back(LinkAt(*text));
    pace.Step();
  }
}

std::optional<Link> Planning::LinkAt(const RecordText& text) {
  if (const std::optional<OpenedRecord> opened = OpenText(m_carrier, text, m_key);
      opened && opened->isWhole) {
    Link link = MakeLink(text, text.begin + opened->length);
    link.isOwn = true;
    const double named = ReadNumber(GetTag(opened->plain, tag::kStoredSize));
    if (named > 0 && named <= static_cast<double>(text.begin - Position{}))
      link.named = static_cast<Length>(named);
    return link;
  }
  const std::optional<Position> trailer = TrailerOf(m_carrier, text);
  return trailer ? std::optional(MakeLink(text, *trailer)) : std::nullopt;
}

Link Planning::MakeLink(const RecordText& text, Position trailer) {
  Link link{.record = text.begin,
            .trailer = trailer,
            .left = {},
            .right = {},
            .payload = {},
            .recordLength = {},
            .isOwn = false,
            .named = {}};
  std::string fields(kTrailerSize, '\0');
  fields.resize(m_carrier.ReadAt(trailer, {reinterpret_cast<std::uint8_t*>(fields.data()), fields.size()}));
  link.left = fields.substr(0, kLengthFieldSize);
  if (fields.size() > kLengthFieldSize) link.right = fields.substr(kLengthFieldSize);
  if (link.left.size() == kLengthFieldSize) link.payload = ReadLengthField(link.left);
  if (link.right.size() == kLengthFieldSize) link.recordLength = ReadLengthField(link.right);
  return link;
}

/// A text behind an entry, both of whose fields were altered: its trailer stands right before what follows.
void Planning::FindLostTrailers() {
  const auto first =
      std::find_if(m_found.begin(), m_found.end(), [](const auto& link) { return link.has_value(); });
  constexpr Position unknown{0};
  Position end{m_size + 1};
  for (std::size_t i = m_texts.size();
       i-- > 0 && m_found.begin() + static_cast<std::ptrdiff_t>(i) >= first;) {
    if (!m_found[i] && end != unknown) {
      const Position trailer = end - Length{kTrailerSize};
      const Length rest = trailer - m_texts[i].linesEnd;
      if (rest >= 0 && rest < static_cast<Length>(kLineCharacters) && rest % 4 == 0)
        m_found[i] = MakeLink(m_texts[i], trailer);
    }
    end = unknown;
    if (!m_found[i]) continue;
    if (const std::optional<Length> payload = m_found[i]->Payload();
        payload && *payload < m_found[i]->record - Position{})
      end = m_found[i]->record - *payload;
  }
}

void Planning::Join() {
  if (m_links.empty()) return;
  JoinFirst(m_links.front());
  for (std::size_t i = 1; i < m_links.size(); ++i)
    JoinTo(m_links[i - 1].End(), m_links[i]);
  const Position end = m_links.back().End();
  if (end.value <= m_size) m_plan.steps.push_back({Kind::CutEnd, end, m_size + 1 - end.value, {}});
}

/// Before the oldest entry there is nothing that could tell where it begins.
void Planning::JoinFirst(const Link& link) {
  const std::optional<Length> payload = link.Payload();
  if (payload && *payload <= link.record - Position{}) return Emit(link, *payload, "the record of its entry");
  m_plan.unknown = link.trailer;
  CopyUntil(std::min(link.End(), Position{m_size + 1}));
  m_copied = link.End();
}

void Planning::JoinTo(Position before, const Link& link) {
  const Length gap = link.record - before;
  const std::optional<Length> payload = link.Payload();
  const std::vector<Length> near = link.named ? std::vector<Length>{} : NumbersOneCharacterAway(link.left);
  const bool isNear = std::binary_search(near.begin(), near.end(), gap);
  const bool hasForeignBytes = payload && *payload < gap && !isNear;
  if (hasForeignBytes) BridgeGap(before, gap - *payload);
  Emit(link, hasForeignBytes ? *payload : gap,
       link.named == gap ? "the record of its entry" : "the end of the entry before it");
}

void Planning::BridgeGap(Position from, Length length) {
  const Position end = from + length;
  const Length text = LengthOfTextBefore(m_carrier, end);
  const Length recordLength = text > 0 && text <= length ? text : 1;
  CopyUntil(end);
  m_plan.pieces.push_back(
      {.from = {},
       .length = 0,
       .written = PackLengthField(length - recordLength) + PackLengthField(recordLength)});
  m_plan.steps.push_back({Kind::Bridge, from, length, {}});
  ++m_plan.links;
}

void Planning::Emit(const Link& link, Length payload, const char* reason) {
  CopyUntil(link.trailer);
  EmitField(link.trailer, link.left, link.payload, payload, reason);
  EmitField(link.trailer + Length{kLengthFieldSize}, link.right, link.recordLength, link.TextLength(),
            "the text of the record");
  m_copied = link.End();
  m_plan.entries += link.isOwn ? 1 : 0;
  ++m_plan.links;
}

void Planning::EmitField(Position at, const std::string& field, const LengthField& held, Length number,
                         const char* reason) {
  const bool isRight = held.holds && held.number == static_cast<double>(number);
  m_plan.pieces.push_back({.from = {}, .length = 0, .written = isRight ? field : PackLengthField(number)});
  if (!isRight) m_plan.steps.push_back({Kind::WriteLength, at, number, reason});
}

void Planning::CopyUntil(Position end) {
  if (end <= m_copied) return;
  m_plan.pieces.push_back({.from = m_copied, .length = end - m_copied, .written = {}});
  m_copied = end;
}

/// Walks through the mended carrier as any reader does.
void MustLeadToAll(const MendPlan& plan, File& mended, const Path& path, Dialogue& dialogue) {
  Pace pace(dialogue);
  Walk walk(mended, path);
  std::size_t links = 0;
  try {
    while (walk.Next()) {
      ++links;
      pace.Step();
    }
  } catch (const Error& error) {
    if (error.Number() != ErrorNumber::BadRecordNumber || walk.BrokenAt()) throw;
  }
  if (links == plan.links && (plan.unknown || !walk.BrokenAt())) return;
  throw Error(ErrorNumber::BadRecordNumber,
              "cannot mend " + Printable(path.native()) + ": the mended chain leads to " +
                  std::to_string(links) + " of " + std::to_string(plan.links) + " entries only; salvage it",
              path);
}

}  // namespace

MendPlan PlanMending(File& carrier, const Key& key, Dialogue& dialogue) {
  return Planning(carrier, key, dialogue).Run();
}

std::string SentenceOf(const MendPlan::Step& step) {
  const std::string at = std::to_string(step.at.value);
  const std::string bytes = std::to_string(step.bytes);
  switch (step.kind) {
    case Kind::CutEnd:
      return "cut off " + bytes + " bytes behind the newest entry, from byte " + at + " on";
    case Kind::WriteLength:
      return "write the length at byte " + at + " anew: " + bytes + ", from " + step.reason;
    case Kind::Bridge:
      break;
  }
  return "bridge " + bytes + " bytes that belong to no whole entry, from byte " + at + " on";
}

void WriteMended(const MendPlan& plan, File& carrier, const Path& path, const Path& to, Files& files,
                 Dialogue& dialogue) {
  constexpr Length most = Length{1} << 20;
  const std::unique_ptr<File> mended = files.CreateNew(to, 0600);
  PartialFile partial(files, to);
  mended->ExpectSync();
  FileSink sink(*mended, Position{1});
  for (const MendPlan::Piece& piece : plan.pieces) {
    sink.Write(AsBytes(piece.written));
    for (Length done = 0; done < piece.length; done += most) {
      if (dialogue.CancelRequested()) throw Stop{StopReason::Cancelled};
      sink.CopyFrom(carrier, path, piece.from + done, std::min(most, piece.length - done));
      dialogue.Yield();
    }
  }
  if (sink.Written() > kCarrierLimit)
    throw Error(ErrorNumber::DiskFull,
                "cannot mend " + Printable(path.native()) + ": a carrier has to stay below 2 GiB", path);
  MustLeadToAll(plan, *mended, path, dialogue);
  mended->Sync();
  mended->Close();
  partial.Keep();
}

}  // namespace tarnel
