#include "search/search_folder.h"

#include <array>
#include <cassert>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "base/attempt.h"
#include "base/patient_files.h"
#include "carrier/stored_text.h"
#include "crypto/keys.h"
#include "search/carrier_types.h"
#include "search/questions.h"

namespace tarnel {
namespace {

/// The order in which a file is tried when the algorithm isn't known.
constexpr std::array kProbeOrder = {Algorithm::Blowfish,    Algorithm::Cast5,      Algorithm::Des,
                                    Algorithm::Rijndael256, Algorithm::Serpent256, Algorithm::TripleDes,
                                    Algorithm::Twofish};

/// Hands the probe's talk about one file on, and carries a cancel into the flag that the probe looks at. In a
/// search that passes odd files over, an error is kept instead of asked about.
class ProbeTalk : public Dialogue {
 public:
  ProbeTalk(Dialogue& screen, ReadingGuards& guards, SearchRequest::OddFiles oddFiles)
      : m_screen(screen), m_guards(guards), m_oddFiles(oddFiles) {}

  Answer Ask(const Question& question) override {
    if (m_oddFiles == SearchRequest::OddFiles::PassOver && question.cause) {
      m_failure = question.cause;
      return Answer::Abort;
    }
    const Answer answer = m_screen.Ask(question);
    CarryCancel(m_screen, m_guards.SearchAbort);
    return answer;
  }
  void Yield() override {
    m_screen.Yield();
    CarryCancel(m_screen, m_guards.SearchAbort);
  }
  bool CancelRequested() const override { return m_screen.CancelRequested(); }

  const std::optional<Error>& Failure() const { return m_failure; }

 private:
  Dialogue& m_screen;
  ReadingGuards& m_guards;
  SearchRequest::OddFiles m_oddFiles;
  std::optional<Error> m_failure;
};

class Search {
 public:
  Search(const SearchRequest& request, SearchResults& results, Reading& reading, SearchScreen& screen)
      : m_request(request),
        m_results(results),
        m_screen(screen),
        m_files(reading.files, screen),
        m_reading{m_files, reading.catalogue, reading.guards, reading.current} {}

  SearchSummary Run() {
    const Path folder = m_request.folder;
    m_reading.guards.SearchAbort = false;
    if (m_request.password.IsEmpty()) return Refuse();
    try {
      PreparedKey();
      SearchOneFolder(folder);
      while (HasNext())
        SearchBelow(TakeNext());
      StopIfCancelled();
    } catch (const Stop&) {
      m_summary.ending = SearchEnding::Cancelled;
    }
    return std::move(m_summary);
  }

 private:
  struct Fit {
    WipedText title;
    Algorithm algorithm;
  };

  SearchSummary Refuse() {
    m_screen.Ask(SearchWithoutPassword());
    m_summary.ending = SearchEnding::NoPassword;
    return std::move(m_summary);
  }

  /// The key of the password that is asked for now, which may become another whenever something yields.
  Key PreparedKey() {
    if (!m_key.IsOf(m_request.password)) m_key = Key(m_request.password);
    const Key key = m_key;
    key.Prepare([this] { m_screen.Yield(); });
    return key;
  }

  void StopIfCancelled() const {
    if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
  }

  bool HasNext() const { return !m_pending.empty() || !m_links.empty(); }

  Path TakeNext() {
    std::deque<Path>& from = m_pending.empty() ? m_links : m_pending;
    Path next = std::move(from.front());
    from.pop_front();
    return next;
  }

  void SearchBelow(const Path& folder) {
    try {
      SearchOneFolder(folder);
    } catch (const Error& error) {
      PassOver(folder, error);
    }
    m_screen.Yield();
  }

  void SearchOneFolder(const Path& folder) {
    StopIfCancelled();
    if (!IsFirstVisit(folder)) return;
    m_screen.ShowFolder(folder);
    std::vector<Path> folders;
    for (const FolderEntry& entry : m_files.List(folder)) {
      const Path path = folder / entry.name;
      if (entry.kind == FileKind::Folder) folders.push_back(path);
      if (entry.kind == FileKind::Regular) SearchFile(path, entry.name);
      if (entry.kind == FileKind::SymbolicLink) SearchLink(path, entry.name);
    }
    if (m_request.subfolders) m_pending.insert(m_pending.begin(), folders.begin(), folders.end());
  }

  /// False for a folder that a link, or the way through one, has led to before.
  bool IsFirstVisit(const Path& folder) {
    const auto stat = m_files.Stat(folder);
    return !stat || m_visited.emplace(stat->device, stat->inode).second;
  }

  void SearchLink(const Path& path, const std::string& name) {
    const auto kind = KindBehind(path);
    if (kind == FileKind::Regular) SearchFile(path, name);
    if (kind == FileKind::Folder && m_request.subfolders) m_links.push_back(path);
  }

  std::optional<FileKind> KindBehind(const Path& link) {
    try {
      const auto stat = m_files.Stat(link);
      return stat ? std::optional(stat->kind) : std::nullopt;
    } catch (const Error& error) {
      PassOver(link, error);
      return std::nullopt;
    }
  }

  void SearchFile(const Path& path, const std::string& name) {
    m_screen.Yield();
    StopIfCancelled();
    const std::string extension = LowerExtension(name);
    if (extension.empty() || !TypeAccepts(ChosenType(), extension)) return;
    m_screen.Yield();
    const std::optional<Fit> fit = Probe(path);
    if (fit && !m_results.Contains(path)) AddRow(path, name, *fit);
  }

  const CarrierType& ChosenType() const {
    assert(m_request.type < CarrierTypes().size());
    return CarrierTypes()[m_request.type];
  }

  std::optional<Fit> Probe(const Path& path) {
    const Key key = PreparedKey();
    const SearchRequest asked = m_request;
    ProbeTalk talk(m_screen, m_reading.guards, asked.oddFiles);
    std::optional<Fit> fit = ProbeInTurn(path, asked, key, talk);
    if (!fit && talk.Failure()) PassOver(path, *talk.Failure());
    return fit;
  }

  std::optional<Fit> ProbeInTurn(const Path& path, const SearchRequest& asked, const Key& key,
                                 ProbeTalk& talk) {
    OpenedCarrier opened;
    const auto probe = [&](Algorithm algorithm) {
      return ProbeWith({path, key, algorithm, asked.depth, &opened}, asked.oddFiles, talk);
    };
    if (asked.algorithm) return probe(*asked.algorithm);
    for (const Algorithm algorithm : kProbeOrder) {
      if (std::optional<Fit> fit = probe(algorithm)) return fit;
      StopIfCancelled();
    }
    return std::nullopt;
  }

  std::optional<Fit> ProbeWith(const ProbeRequest& request, SearchRequest::OddFiles oddFiles,
                               ProbeTalk& talk) {
    const bool wasBusy = m_reading.guards.SearchBusy;
    ProbeResult result = ProbeCarrier(request, m_reading, talk);
    if (oddFiles == SearchRequest::OddFiles::PassOver) m_reading.guards.SearchBusy = wasBusy;
    if (!result.found) return std::nullopt;
    return Fit{std::move(result.title), request.algorithm};
  }

  void AddRow(const Path& path, const std::string& name, const Fit& fit) {
    m_results.Add({path, name, fit.title, path.parent_path(), fit.algorithm});
    ++m_summary.found;
    m_screen.ShowFound(m_results.Rows().back());
  }

  void PassOver(const Path& path, const Error& error) {
    m_summary.notSearched.push_back({path, error.Description()});
    m_screen.ShowNotSearched(m_summary.notSearched.back());
  }

  const SearchRequest& m_request;
  SearchResults& m_results;
  Key m_key;
  SearchScreen& m_screen;
  PatientFiles m_files;
  Reading m_reading;
  std::deque<Path> m_pending;  ///< in the order of their turn
  std::deque<Path> m_links;    ///< to folders; their turn comes when nothing else is left
  std::set<std::pair<std::uint64_t, std::uint64_t>> m_visited;
  SearchSummary m_summary;
};

}  // namespace

std::vector<std::string> SearchAlgorithms() {
  std::vector<std::string> items = {"All Algorithms"};
  for (const OfferedAlgorithm& offered : OfferedAlgorithms())
    items.push_back(AlgorithmName(offered.algorithm));
  return items;
}

std::string SearchingText(const Path& folder) {
  return "Searching... " + folder.native();
}

SearchSummary SearchFolder(const SearchRequest& request, SearchResults& results, Reading& reading,
                           SearchScreen& screen) {
  if (request.folder.empty()) return {};
  return Search(request, results, reading, screen).Run();
}

}  // namespace tarnel
