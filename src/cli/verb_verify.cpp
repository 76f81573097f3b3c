#include <algorithm>
#include <array>
#include <set>

#include "base/printable.h"
#include "carrier/leftovers.h"
#include "carrier/stored_text.h"
#include "cli/entries.h"
#include "cli/line_writer.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "crypto/keys.h"
#include "retrieval/recover.h"
#include "retrieval/verify.h"

namespace tarnel {

namespace {

const char* WordOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::Intact:
      return "intact";
    case Verdict::Unreadable:
      return "unreadable";
    case Verdict::Damaged:
      break;
  }
  return "damaged";
}

/// The sum over all carriers.
struct Tally {
  std::size_t files = 0;
  std::size_t damaged = 0;
  std::size_t unreadable = 0;
  std::size_t carriers = 0;
  std::size_t failed = 0;  ///< carriers of which nothing could be said
};

std::string SentenceOf(const Tally& tally) {
  std::string text = std::to_string(tally.files) + (tally.files == 1 ? " file" : " files");
  if (tally.carriers > 1) text += " in " + std::to_string(tally.carriers) + " carriers";
  text += ", " + std::to_string(tally.damaged) + " damaged";
  if (tally.unreadable > 0) text += ", " + std::to_string(tally.unreadable) + " unreadable";
  if (tally.failed > 0) {
    text += "; " + std::to_string(tally.failed) + (tally.failed == 1 ? " carrier" : " carriers") +
            " could not be verified";
  }
  return text;
}

class VerifyVerb {
 public:
  VerifyVerb(const VerifyOptions& options, Surroundings& around) : m_options(options), m_around(around) {}
  ExitCode Run();

 private:
  ExitCode VerifyOne(const std::string& carrier, const Key& password);
  ExitCode VerifyOrSayWhyNot(const std::string& carrier, const Key& password);
  std::set<Position> PlacesWanted(const Workbench& bench) const;
  void Report(const std::string& carrier, const VerifyResult& result);
  void ReportEntries(const std::string& carrier, const VerifyResult& result, Json& files);
  std::string LineOf(const std::string& carrier, const VerifiedEntry& entry) const;

  const VerifyOptions& m_options;
  Surroundings& m_around;
  Tally m_tally;
};

/// Damage counts before what could only not be read.
ExitCode CodeOf(const VerifyResult& result) {
  const auto has = [&](Verdict verdict) {
    return std::any_of(result.entries.begin(), result.entries.end(),
                       [verdict](const VerifiedEntry& entry) { return entry.verdict == verdict; });
  };
  if (has(Verdict::Damaged) || result.chain.IsDamage()) return ExitCode::Damaged;
  if (has(Verdict::Unreadable)) return ExitCode::Unreadable;
  return result.chain.closedBy ? ExitCode::PartlyDone : ExitCode::Done;
}

/// The one that says most of several carriers.
Json JsonOf(const VerifiedEntry& entry) {
  Json file;
  PutBytes(file, "path", PathOfEntry(entry.folder, entry.name));
  file["start"] = entry.at.value;
  file["verdict"] = WordOf(entry.verdict);
  if (!entry.reason.empty()) file["reason"] = entry.reason;
  return file;
}

ExitCode Worse(ExitCode a, ExitCode b) {
  constexpr std::array order = {ExitCode::Damaged,         ExitCode::Unreadable, ExitCode::NoHideout,
                                ExitCode::CarrierNotFound, ExitCode::Busy,       ExitCode::Failed};
  for (const ExitCode code : order)
    if (a == code || b == code) return code;
  return a == ExitCode::Done ? b : a;
}

ExitCode VerifyVerb::Run() {
  const Key password(
      ObtainPassword(m_around.options, m_around.variables, m_around.terminal, m_around.messages).secret);
  m_around.report["carriers"] = Json::array();
  ExitCode code = ExitCode::Done;
  for (const std::string& carrier : m_options.carriers)
    code = Worse(code, m_options.carriers.size() == 1 ? VerifyOne(carrier, password)
                                                      : VerifyOrSayWhyNot(carrier, password));
  m_around.report.erase("carrier");
  m_around.report["sum"] = {{"carriers", m_tally.carriers},
                            {"files", m_tally.files},
                            {"damaged", m_tally.damaged},
                            {"unreadable", m_tally.unreadable},
                            {"failed", m_tally.failed}};
  const bool isWorthALine = !m_around.options.quiet || code != ExitCode::Done;
  if (!m_around.options.json && isWorthALine) m_around.terminal.Write(SentenceOf(m_tally) + "\n");
  return code;
}

ExitCode VerifyVerb::VerifyOrSayWhyNot(const std::string& carrier, const Key& password) {
  const auto say = [&](const CliFailure& failure) {
    ++m_tally.failed;
    Json object;
    PutBytes(object, "carrier", carrier);
    PutFailure(object, failure, m_around.messages.Shown(failure.what()));
    m_around.report["carriers"].push_back(std::move(object));
    m_around.messages.Fail(failure);
    return failure.Code();
  };
  try {
    return VerifyOne(carrier, password);
  } catch (const CliFailure& failure) {
    if (failure.Code() == ExitCode::Cancelled) throw;
    return say(failure);
  } catch (const Error& error) {
    return say(CliFailure(error));
  }
}

ExitCode VerifyVerb::VerifyOne(const std::string& carrier, const Key& password) {
  Workbench bench(carrier, m_around);
  bench.OpenWith(password);
  const std::set<Position> wanted = PlacesWanted(bench);
  bench.GetReading().catalogue.RemoveRows(bench.Carrier());  // no two lists of all entries at a time
  VerifyOnTerminal screen(m_around.talk);
  VerifyResult result = RunVerify(
      {.carrier = bench.Carrier(), .password = password, .algorithm = bench.Current().CurrentAlgorithmId},
      m_around.files, screen);
  m_around.talk.Progress().Clear();
  if (result.ending == VerifyEnding::Cancelled)
    throw CliFailure(ExitCode::Cancelled, "cancelled before all entries were read");
  const ExitCode whole = CodeOf(result);
  if (whole != ExitCode::Done) RefuseBusy(bench.Carrier(), m_around.files);  // nothing is said of half a hide
  if (!m_options.entries.empty())
    std::erase_if(result.entries, [&](const VerifiedEntry& entry) { return !wanted.contains(entry.at); });
  Report(carrier, result);
  return CodeOf(result);
}

std::set<Position> VerifyVerb::PlacesWanted(const Workbench& bench) const {
  std::set<Position> wanted;
  if (m_options.entries.empty()) return wanted;
  for (const std::size_t row : MatchEntries(bench.Rows(), {.named = m_options.entries, .excluded = {}}))
    wanted.insert(bench.Rows()[row].start);
  return wanted;
}

void VerifyVerb::Report(const std::string& carrier, const VerifyResult& result) {
  Json object;
  PutBytes(object, "carrier", carrier);
  object["files"] = Json::array();
  ++m_tally.carriers;
  ReportEntries(carrier, result, object["files"]);
  PutFaults(object, result.chain);
  object["leftovers"] = JsonOfNames(result.leftovers);
  m_around.report["carriers"].push_back(std::move(object));
  for (const Path& path : result.leftovers)
    m_around.messages.Warn(LeftoverAdvice(path));
  for (const std::string& sentence : SentencesOf(result.chain))
    m_around.messages.Warn(sentence);
}

/// What is intact comes first.
void VerifyVerb::ReportEntries(const std::string& carrier, const VerifyResult& result, Json& files) {
  LineWriter lines(m_around.terminal);
  for (const bool isIntact : {true, false}) {
    for (const VerifiedEntry& entry : result.entries) {
      if ((entry.verdict == Verdict::Intact) != isIntact) continue;
      ++m_tally.files;
      if (entry.verdict == Verdict::Damaged) ++m_tally.damaged;
      if (entry.verdict == Verdict::Unreadable) ++m_tally.unreadable;
      const bool isShown = !m_around.options.quiet || !isIntact;
      if (isShown && !m_around.options.json) lines.Write(LineOf(carrier, entry));
      if (m_around.options.json) files.push_back(JsonOf(entry));
    }
  }
}

std::string VerifyVerb::LineOf(const std::string& carrier, const VerifiedEntry& entry) const {
  const std::string name = entry.name.empty() ? "(the entry at byte " + std::to_string(entry.at.value) + ")"
                                              : ListedPath(PathOfEntry(entry.folder, entry.name));
  std::string line = WordOf(entry.verdict);
  line.resize(std::max<std::size_t>(line.size(), 7), ' ');
  const std::string place = m_options.carriers.size() > 1 ? Printable(carrier) + ": " : "";
  return line + "  " + place + name + (entry.reason.empty() ? "" : ": " + entry.reason) + "\n";
}

}  // namespace

ExitCode RunVerb(const VerifyOptions& options, Surroundings& around) {
  return VerifyVerb(options, around).Run();
}

}  // namespace tarnel
