#include "retrieval/mend_chain.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <utility>

#include "base/attempt.h"
#include "base/copy_file.h"
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
  LengthField payload;
  LengthField recordLength;
  bool isOwn = false;           ///< its record is whole under the key
  std::optional<Length> named;  ///< the payload length that the record names
  Position end;                 ///< of its trailer, of which bytes may be missing

  Length TextLength() const { return trailer - record; }
  /// Bytes that were put in or are missing would have broken it.
  bool HasTrailer() const {
    return payload.holds && recordLength.holds && recordLength.number == static_cast<double>(TextLength());
  }
  /// Where the payload length comes from as long as nothing contradicts it.
  std::optional<Length> Payload() const {
    if (named) return named;
    const bool isLength = payload.holds && payload.number >= 0 && payload.number <= kCarrierLimit;
    return isLength ? std::optional(static_cast<Length>(payload.number)) : std::nullopt;
  }
};

/// What makes a torn text as long as a text can be, so that the bridge's trailer is found behind it.
std::string PaddingOf(Length text) {
  const Length characters = text % static_cast<Length>(kLineSize);
  return std::string(static_cast<std::size_t>((4 - characters % 4) % 4), '=');
}

class Planning {
 public:
  Planning(File& carrier, const Key& key, Dialogue& dialogue)
      : m_carrier(carrier), m_dialogue(dialogue), m_opener(carrier, key), m_size(carrier.Size()) {}

  MendPlan Run();

 private:
  struct Lengths {
    double payload, record;
  };
  void FindLinks();
  std::optional<Link> LinkAt(const RecordText& text);
  Link MakeLink(const RecordText& text, Position trailer);
  void AddLink(const Link& link);
  void Join();
  void JoinEnd(Position end);
  bool MayHaveRead(const Link& link, Length length);
  void JoinFirst(const Link& link);
  void JoinTo(const Link& before, const Link& link);
  std::optional<Lengths> TrailerBefore(Position end);
  bool IsBeyondDoubt(const Link& before, const Link& link, Length payload);
  bool IsBridge(Position from, Length length);
  void BridgeGap(Position from, Length length);
  void Emit(const Link& link, Length payload, const char* reason);
  void EmitField(Position at, const LengthField& held, Length number, const char* reason);
  void CopyUntil(Position end);

  /// To look for the trailer of each costs most where there is none.
  static constexpr int kMostBareTexts = 200'000;

  File& m_carrier;
  Dialogue& m_dialogue;
  RecordOpener m_opener;
  Length m_size;
  std::deque<Link> m_links;   ///< in file order
  Position m_lastForeign{0};  ///< the last text that this key doesn't open
  int m_looks = 0;
  int m_bareTexts = 0;
  Position m_copied;  ///< the first byte that no piece has
  MendPlan m_plan;
};

MendPlan Planning::Run() {
  FindLinks();
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
    if (const std::optional<Link> link = LinkAt(*text)) AddLink(*link);
    pace.Step();
  }
}

std::optional<Link> Planning::LinkAt(const RecordText& text) {
  const std::optional<OpenedRecord> opened = m_opener.Open(text);
  if (opened && opened->isWhole) {
    Link link = MakeLink(text, text.begin + opened->length);
    link.isOwn = true;
    const double named = ReadNumber(GetTag(opened->plain, tag::kStoredSize));
    if (named > 0 && named <= static_cast<double>(text.begin - Position{}))
      link.named = static_cast<Length>(named);
    return link;
  }
  if (!opened) m_lastForeign = text.begin;
  if (const std::optional<FoundTrailer> trailer = TrailerOf(m_carrier, text))
    return MakeLink(text, trailer->at);
  if (++m_bareTexts > kMostBareTexts)
    throw Error(ErrorNumber::BadRecordNumber,
                "cannot mend the carrier: too much in it looks like damaged records; salvage it");
  return std::nullopt;
}

Link Planning::MakeLink(const RecordText& text, Position trailer) {
  Link link{.record = text.begin,
            .trailer = trailer,
            .payload = {},
            .recordLength = {},
            .isOwn = false,
            .named = {},
            .end = std::min(trailer + Length{kTrailerSize}, Position{m_size + 1})};
  std::string fields(kTrailerSize, '\0');
  fields.resize(m_carrier.ReadAt(trailer, {reinterpret_cast<std::uint8_t*>(fields.data()), fields.size()}));
  const std::string_view both = fields;
  if (both.size() >= kLengthFieldSize) link.payload = ReadLengthField(both.substr(0, kLengthFieldSize));
  if (both.size() == kTrailerSize) link.recordLength = ReadLengthField(both.substr(kLengthFieldSize));
  return link;
}

/// Where an entry begins inside the trailer before it, bytes are missing there. Both lengths of that trailer
/// are known, so that it can be written anew; a payload that lacks bytes is lost whatever its length says.
void Planning::AddLink(const Link& link) {
  if (!m_links.empty()) {
    Link& before = m_links.back();
    if (link.record < before.trailer) return;
    before.end = std::min(before.end, link.record);
    const Length gap = link.record - before.end;
    const Length payload = link.Payload().value_or(0);
    const bool isShort = payload > gap && payload <= link.record - before.trailer;
    if (isShort && !(before.HasTrailer() && MayHaveRead(link, gap))) before.end = link.record - payload;
  }
  m_links.push_back(link);
}

void Planning::Join() {
  if (m_links.empty()) return;
  JoinFirst(m_links.front());
  for (std::size_t i = 1; i < m_links.size(); ++i)
    JoinTo(m_links[i - 1], m_links[i]);
  JoinEnd(m_links.back().end);
}

/// An unfinished entry stays where it may be somebody else's, who can salvage it.
void Planning::JoinEnd(Position end) {
  const Length rest = m_size + 1 - end.value;
  if (rest <= 0) return;
  if (m_lastForeign >= end)
    BridgeGap(end, rest);
  else
    m_plan.steps.push_back({Kind::CutEnd, end, rest, {}});
}

/// Before the oldest entry there is nothing that could tell where it begins.
void Planning::JoinFirst(const Link& link) {
  const std::optional<Length> payload = link.Payload();
  if (payload && *payload <= link.record - Position{}) return Emit(link, *payload, "the record of its entry");
  m_plan.unknown = link.trailer;
  CopyUntil(link.end);
}

void Planning::JoinTo(const Link& before, const Link& link) {
  const Length gap = link.record - before.end;
  const std::optional<Length> payload = link.Payload();
  const bool hasForeignBytes = payload && *payload < gap && IsBeyondDoubt(before, link, *payload);
  if (hasForeignBytes) BridgeGap(before.end, gap - *payload);
  Emit(link, hasForeignBytes ? *payload : gap,
       link.named == gap ? "the record of its entry" : "the end of the entry before it");
}

/// A trailer of its own inside somebody else's contents would keep even salvage from them: a length that may
/// be altered doesn't tell where they begin.
bool Planning::IsBeyondDoubt(const Link& before, const Link& link, Length payload) {
  if (link.named || TrailerBefore(link.record - payload)) return true;
  return link.HasTrailer() && !(before.HasTrailer() && MayHaveRead(link, link.record - before.end));
}

/// True if one altered character can have made the payload's field what it is. Many such fields are no
/// accident, and looked at no more.
bool Planning::MayHaveRead(const Link& link, Length length) {
  constexpr int most = 1000;
  if (link.named || ++m_looks > most) return false;
  const std::vector<Length> near =
      NumbersOneCharacterAway(ReadFileSlice(m_carrier, link.trailer, Length{kLengthFieldSize}));
  return std::binary_search(near.begin(), near.end(), length);
}

/// The lengths that stand before `end`, if both fields hold.
std::optional<Planning::Lengths> Planning::TrailerBefore(Position end) {
  if (end <= Position{kTrailerSize}) return std::nullopt;
  const std::string trailer = ReadFileSlice(m_carrier, end - Length{kTrailerSize}, kTrailerSize);
  const LengthField payload = ReadLengthField(std::string_view(trailer).substr(0, kLengthFieldSize));
  const LengthField record = ReadLengthField(std::string_view(trailer).substr(kLengthFieldSize));
  if (!payload.holds || !record.holds) return std::nullopt;
  return Lengths{payload.number, record.number};
}

/// True if the bytes end in a trailer that leads to their begin, as an earlier mending leaves them.
bool Planning::IsBridge(Position from, Length length) {
  if (length <= Length{kTrailerSize}) return false;
  const std::optional<Lengths> lengths = TrailerBefore(from + length);
  return lengths && lengths->record > 0 &&
         lengths->payload + lengths->record == static_cast<double>(length - Length{kTrailerSize});
}

void Planning::BridgeGap(Position from, Length length) {
  const Position end = from + length;
  if (IsBridge(from, length)) {
    CopyUntil(end);
    ++m_plan.links;
    return;
  }
  const Length text = LengthOfTextBefore(m_carrier, end);
  const Length record = text > 0 && text <= length ? text : 1;
  const std::string padding = record == text ? PaddingOf(text) : std::string();
  CopyUntil(end);
  m_plan.pieces.push_back({.from = {},
                           .length = 0,
                           .written = padding + PackLengthField(length - record) +
                                      PackLengthField(record + static_cast<Length>(padding.size()))});
  m_plan.steps.push_back({Kind::Bridge, from, length, {}});
  ++m_plan.links;
}

void Planning::Emit(const Link& link, Length payload, const char* reason) {
  CopyUntil(link.trailer);
  const bool isWhole = link.end - link.trailer == Length{kTrailerSize};
  const LengthField lost;
  EmitField(link.trailer, isWhole ? link.payload : lost, payload, reason);
  EmitField(link.trailer + Length{kLengthFieldSize}, isWhole ? link.recordLength : lost, link.TextLength(),
            "the text of the record");
  m_copied = link.end;
  m_plan.entries += link.isOwn ? 1 : 0;
  ++m_plan.links;
}

void Planning::EmitField(Position at, const LengthField& held, Length number, const char* reason) {
  const Position end = at + Length{kLengthFieldSize};
  if (held.holds && held.number == static_cast<double>(number)) return CopyUntil(end);
  m_plan.pieces.push_back({.from = {}, .length = 0, .written = PackLengthField(number)});
  m_plan.steps.push_back({Kind::WriteLength, at, number, reason});
  m_copied = end;
}

void Planning::CopyUntil(Position end) {
  if (end <= m_copied) return;
  if (m_plan.pieces.empty() || !m_plan.pieces.back().written.empty())
    m_plan.pieces.push_back({.from = m_copied, .length = 0, .written = {}});
  m_plan.pieces.back().length += end - m_copied;
  m_copied = end;
}

Length SizeOf(const MendPlan& plan) {
  Length size = 0;
  for (const MendPlan::Piece& piece : plan.pieces)
    size += piece.length + static_cast<Length>(piece.written.size());
  return size;
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
    if (error.Number() != ErrorNumber::BadRecordNumber || (walk.BrokenAt() && !plan.unknown)) throw;
  }
  if (links == plan.links && (plan.unknown || !walk.BrokenAt())) return;
  throw Error(ErrorNumber::BadRecordNumber,
              "cannot mend " + Printable(path.native()) + ": the mended chain leads to " +
                  std::to_string(links) + " of " + std::to_string(plan.links) + " entries only; salvage it",
              path);
}

}  // namespace

MendPlan PlanMending(File& carrier, const Key& key, Dialogue& dialogue) {
  try {
    return Planning(carrier, key, dialogue).Run();
  } catch (const Stop&) {
    MendPlan plan;
    plan.cancelled = true;
    return plan;
  }
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

bool WriteMended(const MendPlan& plan, File& carrier, const Path& path, const Path& to, Files& files,
                 Dialogue& dialogue) {
  if (SizeOf(plan) > kCarrierLimit)
    throw Error(ErrorNumber::DiskFull,
                "cannot mend " + Printable(path.native()) + ": a carrier has to stay below 2 GiB", path);
  const std::unique_ptr<File> mended = files.CreateNew(to, 0600);
  PartialFile partial(files, to);
  mended->ExpectSync();
  FileSink sink(*mended, Position{1});
  for (const MendPlan::Piece& piece : plan.pieces) {
    sink.Write(AsBytes(piece.written));
    for (Length done = 0; done < piece.length; done += kCopyPiece) {
      if (dialogue.CancelRequested()) return false;
      sink.CopyFrom(carrier, path, piece.from + done, std::min(kCopyPiece, piece.length - done));
      dialogue.Yield();
    }
  }
  MustLeadToAll(plan, *mended, path, dialogue);
  mended->Sync();
  mended->Close();
  partial.Keep();
  return true;
}

}  // namespace tarnel
