#include "tools/soak/kill_campaign.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

#include "tests/proof/scene.h"
#include "tools/soak/interposer.h"

namespace tarnel::test {

namespace {

/// A fork knows the keys that this process has derived.
class Victim {
 public:
  bool wasKilled = false;
  int exitCode = 0;
  long changes = 0;

  void Run(const std::vector<std::string>& words, long at, Moment moment) {
    int report[2];
    if (::pipe(report) != 0) throw std::runtime_error("cannot make a pipe");
    const pid_t process = ::fork();
    if (process < 0) throw std::runtime_error("cannot fork");
    if (process == 0) Die(words, at, moment, report[1]);
    ::close(report[1]);
    int status = 0;
    ::waitpid(process, &status, 0);
    wasKilled = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128;
    if (::read(report[0], &changes, sizeof changes) != sizeof changes) changes = 0;
    ::close(report[0]);
  }

 private:
  [[noreturn]] static void Die(const std::vector<std::string>& words, long at, Moment moment, int report) {
    ::alarm(60);  // should it never end
    PosixFiles files;
    KillAt(at, moment);
    const int code = RunHere(words, files);
    const long changes = ChangesSeen();
    KillAt(0);
    ::_exit(::write(report, &changes, sizeof changes) == sizeof changes ? code : 127);
  }
};

class Round {
 public:
  explicit Round(unsigned seed) : m_scene(seed) {}

  std::size_t Kill(std::size_t most) {
    std::size_t done = 0;
    for (const Command& command : m_scene.Commands()) {
      const Victim quiet = Run(command, 0, Moment::Before);
      if (quiet.exitCode != 0)
        throw std::runtime_error(command.name + " fails: " + std::to_string(quiet.exitCode));
      m_scene.JudgeFinished(command);
      for (long at = 1; at <= quiet.changes; ++at)
        for (const Moment moment : {Moment::Before, Moment::Half, Moment::After})
          if (done < most && Strike(command, at, moment)) ++done;
    }
    return done;
  }

 private:
  Victim Run(const Command& command, long at, Moment moment) {
    Victim victim;
    m_scene.Reset(command);
    m_scene.Run(command, [&](const std::vector<std::string>& words) { victim.Run(words, at, moment); });
    return victim;
  }

  bool Strike(const Command& command, long at, Moment moment) {
    if (!Run(command, at, moment).wasKilled) return false;
    PosixFiles files;
    m_scene.Recover(command, [&](const std::vector<std::string>& words) { RunHere(words, files); });
    m_scene.Judge(command, "killed at change " + std::to_string(at) + ", moment " +
                               std::to_string(static_cast<int>(moment)));
    return true;
  }

  Scene m_scene;
};

}  // namespace

std::size_t RunKillCampaign(std::size_t kills, unsigned seed) {
  std::size_t done = 0;
  for (unsigned round = seed; done < kills; ++round)
    done += Round(round).Kill(kills - done);
  return done;
}

}  // namespace tarnel::test
