#include "base/attempt.h"

#include <gtest/gtest.h>

#include "tests/support/scripted_dialogue.h"

namespace tarnel {
namespace {

class AttemptTest : public ::testing::Test {
 protected:
  Outcome FailingTimes(int failures) {
    return Attempt(person, handler, [this, failures] {
      if (++runs <= failures) throw Error(ErrorNumber::DiskFull, "cannot write x: full", "x");
    });
  }

  const ErrorHandler handler = {
      [](const Error& error) { return ErrorQuestion(error, "e", "Tarnel", LineBreak::LfCr, Answer::Retry); }};
  test::Scripted<> person;
  int runs = 0;
};

TEST_F(AttemptTest, RetryRunsTheStatementAgainUntilItHolds) {
  person.script.Expect("e", Answer::Retry).Expect("e", Answer::Retry);
  EXPECT_EQ(FailingTimes(2), Outcome::Done);
  EXPECT_EQ(runs, 3);
  EXPECT_EQ(person.script.Asked()[0].text, "Error: 61\n\rcannot write x: full");
  EXPECT_EQ(person.script.Asked()[0].cause->Path(), "x");
}

TEST_F(AttemptTest, IgnoreGoesOnAndAbortStops) {
  person.script.Expect("e", Answer::Ignore).Expect("e", Answer::Abort);
  EXPECT_EQ(FailingTimes(1), Outcome::Ignored);
  runs = 0;
  try {
    FailingTimes(1);
    ADD_FAILURE();
  } catch (const Stop& stop) {
    EXPECT_EQ(stop.reason, StopReason::Aborted);
  }
}

TEST_F(AttemptTest, WhatIsNoErrorPassesWithoutAQuestion) {
  EXPECT_THROW(Attempt(person, handler, [] { throw Stop{StopReason::Cancelled}; }), Stop);
  EXPECT_THROW(Attempt(person, handler, [] { throw std::bad_alloc(); }), std::bad_alloc);
}

}  // namespace
}  // namespace tarnel
