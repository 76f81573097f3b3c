#include <memory>
#include <utility>

#include "base/attempt.h"
#include "carrier/load_hideout.h"
#include "carrier/questions.h"
#include "carrier/tags.h"
#include "carrier/walk.h"

namespace tarnel {

namespace {

class Prober {
 public:
  Prober(const ProbeRequest& request, Reading& reading, Dialogue& dialogue)
      : m_request(request), m_reading(reading), m_dialogue(dialogue) {}

  ProbeResult Run() {
    m_reading.guards.SearchBusy = true;
    try {
      ProbeResult result = Search();
      m_reading.guards.SearchBusy = false;
      return result;
    } catch (const Stop&) {
      m_reading.guards.ReadingBusy = false;
      m_reading.guards.TreeClickBlocked = false;
      return {};
    }
  }

 private:
  ProbeResult Search() {
    bool goOn = Open();
    while (goOn) {
      m_dialogue.Yield();
      if (m_reading.guards.SearchAbort) return {};
      goOn = Look();
    }
    m_reading.guards.TreeClickBlocked = false;
    return std::move(m_result);
  }

  bool Open() {
    return Guarded([this] {
             m_file = m_reading.files.OpenToRead(m_request.carrier);
             m_walk = std::make_unique<Walk>(*m_file, m_request.carrier);
           }) == Outcome::Done;
  }

  /// Looks at the next entry. False at the end of the search.
  bool Look() {
    std::optional<EntryPlace> place;
    const Outcome outcome = Guarded([&] { place = m_walk->Next(); });
    // The outcome first: after a throw g++ 12 may leave anything in `place`.
    if (outcome == Outcome::Ignored || !place) return false;
    WipedText record;
    Guarded([&] {
      record = m_walk->DecryptRecord(m_request.algorithm, m_request.password, m_reading.current.SecondKey);
    });
    m_result.found = !GetTag(record, tag::kName).empty();
    if (m_result.found) m_result.title = GetTag(record, tag::kTitle);
    return !m_result.found && m_request.depth == ProbeRequest::Depth::WholeChain;
  }

  /// As Attempt, but a BadRecordNumber ends the search without a question.
  template <class Statement>
  Outcome Guarded(Statement&& statement) {
    return Attempt(m_dialogue, m_handler, [&] {
      try {
        statement();
      } catch (const Error& error) {
        if (error.Number() == ErrorNumber::BadRecordNumber) throw Stop{StopReason::Aborted};
        throw;
      }
    });
  }

  const ProbeRequest& m_request;
  Reading& m_reading;
  Dialogue& m_dialogue;
  const ErrorHandler m_handler{ProbeErrorQuestion};
  std::unique_ptr<File> m_file;
  std::unique_ptr<Walk> m_walk;
  ProbeResult m_result;
};

}  // namespace

ProbeResult ProbeCarrier(const ProbeRequest& request, Reading& reading, Dialogue& dialogue) {
  if (reading.guards.SearchBusy) return {};
  return Prober(request, reading, dialogue).Run();
}

}  // namespace tarnel
