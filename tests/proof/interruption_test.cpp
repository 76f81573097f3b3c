#include <gtest/gtest.h>

#include "tests/proof/interposer.h"
#include "tests/proof/scene.h"

namespace tarnel::test {

/// Calls that do half of the work, and calls that a signal interrupts, as often as the numbers say.
TEST(Interruption, ShortAndInterruptedCallsChangeNoResult) {
  Scene scene(3);
  for (const Command& command : scene.Commands())
    for (const long shortEvery : {0, 1, 3})
      for (const long interruptEvery : {0, 2, 3, 7}) {
        SCOPED_TRACE(command.name + " " + std::to_string(shortEvery) + " " + std::to_string(interruptEvery));
        scene.Reset(command);
        PosixFiles files;
        const Interposition disturbance{.shortEvery = shortEvery, .interruptEvery = interruptEvery};
        Interpose(disturbance);
        scene.Run(command,
                  [&](const std::vector<std::string>& words) { EXPECT_EQ(RunHere(words, files), 0); });
        EXPECT_GT(ChangesSeen(), 5);
        Interpose({});
        EXPECT_NO_THROW(scene.JudgeFinished(command));

        const TempFolder scratch;
        CarrierSession session(scene.Carrier(), files);
        Interpose(disturbance);
        EXPECT_TRUE(session.Open("two words"));
        const Entries extracted = session.Extract(scratch / "out");
        Interpose({});
        EXPECT_EQ(extracted, ReadHideout(scene.Carrier(), "two words", files));
      }
}

}  // namespace tarnel::test
