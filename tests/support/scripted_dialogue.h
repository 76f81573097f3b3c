#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/dialogue.h"

namespace tarnel::test {

/// What a scripted person says and has seen. A question that the script doesn't expect next, an answer that
/// the question doesn't offer, and answers left over at the end fail the test.
class Script {
 public:
  Script() = default;
  ~Script();
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;

  /// The next question not covered by Always must be `id`, and gets `answer`.
  Script& Expect(std::string id, Answer answer);

  /// Every question `id` gets `answer`, however often it comes. Once an Expect of the same id is next, that
  /// goes first.
  Script& Always(std::string id, Answer answer);

  /// The person has asked to stop from the n-th yield on; 0 is from the start.
  Script& CancelAtYield(std::size_t n);

  /// Asking to stop doesn't change but in Yield and Ask, so set this from the hooks only.
  bool isCancelled = false;

  /// Run inside each Yield (its number, from 1) and each Ask: what events would do.
  std::function<void(std::size_t)> onYield;
  std::function<void(const Question&)> onAsk;

  /// A screen notes here what it was told to show, so that it stands in order with questions and yields.
  void Note(std::string line) { m_transcript.push_back(std::move(line)); }

  std::size_t Yields() const { return m_yields; }
  const std::vector<Question>& Asked() const { return m_asked; }

  /// "ask ID" for each question, "yield" for each yield, and the notes.
  const std::vector<std::string>& Transcript() const { return m_transcript; }

  /// Starts afresh; what is left of the script stays.
  void ForgetTranscript();

  Answer AnswerTo(const Question& question);
  void PassYield();

 private:
  Answer ChosenFor(const Question& question);

  std::deque<std::pair<std::string, Answer>> m_expected;
  std::map<std::string, Answer> m_policies;
  std::optional<std::size_t> m_cancelAt;
  std::size_t m_yields = 0;
  std::vector<Question> m_asked;
  std::vector<std::string> m_transcript;
};

/// The last of `all`; throws std::out_of_range if there is none.
template <class Each>
const Each& Last(const std::vector<Each>& all) {
  return all.at(all.size() - 1);
}

/// A screen played by a script: `Scripted<>` is a Dialogue; for a port derived from Dialogue derive from
/// `Scripted<HideScreen>` and implement what it adds, with script.Note.
template <class Screen = Dialogue>
class Scripted : public Screen {
  static_assert(std::is_base_of_v<Dialogue, Screen>);

 public:
  Script script;

  Answer Ask(const Question& question) override { return script.AnswerTo(question); }
  void Yield() override { script.PassYield(); }
  bool CancelRequested() const override { return script.isCancelled; }
};

}  // namespace tarnel::test
