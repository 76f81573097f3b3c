#include "carrier/probe_carrier.h"

#include <functional>
#include <utility>

#include "base/attempt.h"
#include "carrier/questions.h"
#include "carrier/tags.h"

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
    bool goOn = m_walk.Open(m_reading.files, m_request.carrier);
    while (goOn) {
      m_dialogue.Yield();
      if (m_reading.guards.SearchAbort) return {};
      goOn = Look();
    }
    m_reading.guards.TreeClickBlocked = false;
    return std::move(m_result);
  }

  /// Looks at the next entry. False at the end of the search.
  bool Look() {
    if (!m_walk.Next()) return false;
    WipedText record;
    Try([&] {
      record = m_walk.Entries().DecryptRecord(m_request.algorithm, m_request.password,
                                              m_reading.current.SecondKey);
    });
    m_result.found = !GetTag(record, tag::kName).empty();
    if (m_result.found) m_result.title = GetTag(record, tag::kTitle);
    return !m_result.found && m_request.depth == ProbeRequest::Depth::WholeChain;
  }

  /// As Attempt, but a BadRecordNumber ends the search without a question.
  Outcome Try(const std::function<void()>& statement) {
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
  GuardedWalk m_walk{[this](const std::function<void()>& step) { return Try(step); }, m_request.opened};
  ProbeResult m_result;
};

}  // namespace

ProbeResult ProbeCarrier(const ProbeRequest& request, Reading& reading, Dialogue& dialogue) {
  if (reading.guards.SearchBusy) return {};
  return Prober(request, reading, dialogue).Run();
}

}  // namespace tarnel
