#include "tests/support/scripted_dialogue.h"

#include <gtest/gtest.h>

#include <set>

namespace tarnel::test {

namespace {

bool Offers(Buttons buttons, Answer answer) {
  static const std::map<Buttons, std::set<Answer>> offered = {
      {Buttons::Ok, {Answer::Ok}},
      {Buttons::YesNo, {Answer::Yes, Answer::No}},
      {Buttons::RetryCancel, {Answer::Retry, Answer::Cancel}},
      {Buttons::AbortRetryIgnore, {Answer::Abort, Answer::Retry, Answer::Ignore}},
      {Buttons::YesNoOverwriteAll, {Answer::Yes, Answer::No, Answer::OverwriteAll}}};
  return offered.at(buttons).contains(answer);
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
