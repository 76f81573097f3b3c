#include "carrier/walk.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/printable.h"
#include "carrier/length_field.h"
#include "carrier/record_text.h"
#include "crypto/cipher.h"

namespace tarnel {

namespace {

/// Holds trailer and record of an ordinary entry, and several entries where the payloads are small.
constexpr Length kWindow = 4096;

constexpr std::size_t kMostSteps = 65'536;

}  // namespace

Walk::Walk(File& carrier, Path name)
    : m_carrier(carrier),
      m_name(std::move(name)),
      m_opened(carrier.Stat()),
      m_cursor(Position{} + m_opened.size - Length{kTrailerSize}) {}

bool Walk::Rewind() {
  m_cursor = Position{} + m_opened.size - Length{kTrailerSize};
  m_ended = m_hasEntry = false;
  m_brokenAt.reset();
  m_passedEntries = 0;
  return !m_hasFailed;
}

std::optional<EntryPlace> Walk::Next() {
  if (m_ended) return std::nullopt;
  if (m_passedEntries < m_steps.size()) return StepTo(m_steps[m_passedEntries].place);
  if (!m_knowsEnd) return HasRoomForMore() ? ReadNext() : EndHere(false);
  m_ended = true;
  m_brokenAt = m_endBrokenAt;
  return std::nullopt;
}

/// False where fewer than 79 bytes lie before an entry. Throws for 79 and for a file that can have no entry.
bool Walk::HasRoomForMore() {
  if (m_cursor >= Position{}) return !m_hasEntry || m_entry.start >= Position{kTrailerSize};
  if (m_hasEntry && WasMisled()) return false;
  throw TooShort();
}

std::optional<EntryPlace> Walk::ReadNext() {
  const std::string trailer = Slice(m_cursor, kTrailerSize);
  const std::string_view fields = trailer;
  const LengthField recordLength = ReadLengthField(fields.substr(kLengthFieldSize));
  const LengthField payload = ReadLengthField(fields.substr(0, kLengthFieldSize));
  if (recordLength.number == 0) return EndHere(recordLength.holds || payload.holds);
  if (!payload.holds) return EndHere(true);
  m_brokenAt = m_cursor;  // unless the place is one
  const EntryPlace entry = PlaceOf(m_cursor, payload.number, recordLength.number);
  m_brokenAt.reset();
  if (m_remembers && m_passedEntries < kMostSteps) m_steps.push_back({.place = entry});
  return StepTo(entry);
}

std::optional<EntryPlace> Walk::StepTo(const EntryPlace& entry) {
  m_entry = entry;
  m_hasEntry = true;
  ++m_passedEntries;
  if (entry.start >= Position{kTrailerSize}) m_cursor = entry.start - Length{kTrailerSize};
  return m_entry;
}

std::nullopt_t Walk::EndHere(bool isBroken) {
  const bool wasMisled = m_hasEntry && (isBroken ? IsInATrailer(m_cursor) : WasMisled());
  m_ended = true;
  if (isBroken) m_brokenAt = m_cursor;
  if (wasMisled) m_brokenAt = m_entry.Trailer();
  m_knowsEnd = m_remembers && m_passedEntries == m_steps.size();
  m_endBrokenAt = m_brokenAt;
  return std::nullopt;
}

/// True if a whole trailer stands so near the place that this one lies in it: there one of its fields can be
/// read, and it isn't what is damaged. Base64 passes over what stands between text and trailer.
bool Walk::IsInATrailer(Position place) {
  constexpr Length reach = Length{kLengthFieldSize} + 4;
  for (Length shift = -reach; shift <= reach; ++shift)
    if (shift != 0 && IsBehindAnEntry(place + shift + Length{kTrailerSize})) return true;
  return false;
}

/// Called where no trailer stands before the current entry.
bool Walk::WasMisled() {
  const Position trailer = m_entry.Trailer();
  m_hasFailed = true;  // unless it returns
  const bool isDisproved = IsDisprovedByText(m_carrier, trailer, m_entry.recordLength);
  m_hasFailed = false;
  if (isDisproved) return true;
  const std::string payload = Slice(trailer, kLengthFieldSize);
  const std::vector<Length> numbers = NumbersOneCharacterAway(payload);
  return std::any_of(numbers.begin(), numbers.end(), [&](Length number) {
    return number < m_entry.Record() - Position{} && IsBehindAnEntry(m_entry.Record() - number);
  });
}

bool Walk::IsBehindAnEntry(Position start) {
  if (start <= Position{kTrailerSize}) return false;
  const std::string trailer = Slice(start - Length{kTrailerSize}, kTrailerSize);
  const std::string_view fields = trailer;
  return ReadLengthField(fields.substr(0, kLengthFieldSize)).holds &&
         ReadLengthField(fields.substr(kLengthFieldSize)).holds;
}

WalkEnd Walk::End() const {
  if (m_brokenAt) return WalkEnd::Broken;
  if (m_ended) return WalkEnd::Normal;
  return m_hasEntry && m_cursor < Position{} ? WalkEnd::BodyTooShort : WalkEnd::None;
}

void Walk::BreakHere() {
  m_ended = true;
  m_brokenAt = m_entry.Trailer();
}

EntryPlace Walk::PlaceOf(Position trailer, double payload, double recordLength) const {
  const Position record = Back(trailer, recordLength);
  const Position start = Back(record, payload);
  return {.start = start, .payload = record - start, .recordLength = trailer - record};
}

Position Walk::Back(Position from, double length) const {
  const Length room = from - Position{};
  if (!(length >= 0) || length > static_cast<double>(room) || length != std::floor(length)) throw TooShort();
  return from - static_cast<Length>(length);
}

Error Walk::TooShort() const {
  return {ErrorNumber::BadRecordNumber,
          Name() + " is too short or its hidden part is damaged: an entry would begin before the file",
          m_name};
}

std::string Walk::ReadRecordText() {
  return Slice(m_entry.Record(), m_entry.recordLength);
}

WipedText Walk::DecryptRecord(Algorithm algorithm, const Key& key, std::string& secondKey) {
  secondKey.clear();
  if (m_entry.recordLength > Length{kRecordLimit} || !KeyFits(algorithm, key)) return {};
  return CipherDecryptString(algorithm, ReadRecordText(), TextForm::Base64, key, secondKey, Cut::Whole);
}

bool Walk::KeyFits(Algorithm algorithm, const Key& key) {
  return CipherKeyFits(algorithm, RecordFront(), TextForm::Base64, key);
}

Walk::Step* Walk::RememberedStep() {
  return m_passedEntries <= m_steps.size() ? &m_steps[m_passedEntries - 1] : nullptr;
}

std::string Walk::RecordFront() {
  Step* const step = RememberedStep();
  if (step != nullptr && step->frontLength > 0) return {step->front.data(), step->frontLength};
  std::string front = Slice(m_entry.Record(), std::min(Length{kRecordFront}, m_entry.recordLength));
  if (step != nullptr) step->frontLength = front.copy(step->front.data(), kRecordFront);
  return front;
}

std::string Walk::ReadTail() {
  return Slice(m_entry.Record(), m_entry.End() - m_entry.Record());
}

Length Walk::Passed() const {
  return m_opened.size - m_cursor.value;
}

std::string Walk::Slice(Position from, Length length) {
  std::string bytes(static_cast<std::size_t>(length), '\0');
  if (length > kWindow) {
    ReadInto(from, MutableBytes(reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()));
    return bytes;
  }
  FillWindow(from, length);
  const auto first = m_window.begin() + (from - m_windowStart);
  std::copy(first, first + length, bytes.begin());
  return bytes;
}

void Walk::FillWindow(Position from, Length length) {
  const Position end = from + length;
  if (from >= m_windowStart && end <= m_windowStart + static_cast<Length>(m_window.size())) return;
  const Position start = std::max(Position{}, end - kWindow);
  std::vector<std::uint8_t> window(static_cast<std::size_t>(end - start));
  ReadInto(start, window);
  m_window.swap(window);
  m_windowStart = start;
}

void Walk::ReadInto(Position from, MutableBytes target) {
  m_hasFailed = true;  // unless it returns
  if (m_carrier.ReadAt(from, target) < target.size()) throw Shrunk();
  m_hasFailed = false;
}

std::string Walk::Name() const {
  return m_name.empty() ? "the carrier" : Printable(m_name.native());
}

Error Walk::Shrunk() const {
  return {ErrorNumber::DeviceIo, "cannot read " + Name() + ": it became shorter meanwhile", m_name};
}

}  // namespace tarnel
