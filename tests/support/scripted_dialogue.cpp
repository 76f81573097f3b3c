#include "tests/support/scripted_dialogue.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tarnel::test {

namespace {

std::vector<Answer> Offered(Buttons buttons) {
  switch (buttons) {
    case Buttons::YesNo:
      return {Answer::Yes, Answer::No};
    case Buttons::RetryCancel:
      return {Answer::Retry, Answer::Cancel};
    case Buttons::AbortRetryIgnore:
      return {Answer::Abort, Answer::Retry, Answer::Ignore};
    case Buttons::YesNoOverwriteAll:
      return {Answer::Yes, Answer::No, Answer::OverwriteAll};
    case Buttons::Ok:
      break;
  }
  return {Answer::Ok};
}

bool Offers(Buttons buttons, Answer answer) {
  const std::vector<Answer> offered = Offered(buttons);
  return std::find(offered.begin(), offered.end(), answer) != offered.end();
}

}  // namespace

Script::~Script() {
  for (const auto& [id, answer] : m_expected)
    ADD_FAILURE() << "the question \"" << id << "\" was never asked";
}

Script& Script::Expect(std::string id, Answer answer) {
  m_expected.emplace_back(std::move(id), answer);
  return *this;
}

Script& Script::Always(std::string id, Answer answer) {
  m_policies[std::move(id)] = answer;
  return *this;
}

Script& Script::CancelAtYield(std::size_t n) {
  m_cancelAt = n;
  isCancelled = n == 0;
  return *this;
}

void Script::ForgetTranscript() {
  m_asked.clear();
  m_transcript.clear();
  m_yields = 0;
}

Answer Script::ChosenFor(const Question& question) {
  if (!m_expected.empty() && m_expected.front().first == question.id) {
    const Answer answer = m_expected.front().second;
    m_expected.pop_front();
    return answer;
  }
  const auto policy = m_policies.find(question.id);
  if (policy != m_policies.end()) return policy->second;
  const std::string next = m_expected.empty() ? "no question" : "\"" + m_expected.front().first + "\"";
  ADD_FAILURE() << "unexpected question \"" << question.id << "\", " << next << " was due: " << question.text;
  return SafeAnswer(question.buttons);
}

Answer Script::AnswerTo(const Question& question) {
  m_asked.push_back(question);
  Note("ask " + question.id);
  if (onAsk) onAsk(question);
  const Answer answer = ChosenFor(question);
  EXPECT_TRUE(Offers(question.buttons, answer)) << "\"" << question.id << "\" has no such button";
  EXPECT_TRUE(Offers(question.buttons, question.preset))
      << "\"" << question.id << "\" presets a button it lacks";
  return answer;
}

void Script::PassYield() {
  ++m_yields;
  Note("yield");
  if (onYield) onYield(m_yields);
  if (m_cancelAt && m_yields >= *m_cancelAt) isCancelled = true;
}

}  // namespace tarnel::test
