#include "tests/proof/kill_campaign.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <thread>

namespace tarnel::test {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

void KillAfter(pid_t process, microseconds time) {
  std::this_thread::sleep_for(time);
  ::kill(process, SIGKILL);
}

}  // namespace

Victim::End Victim::Run(const std::vector<std::string>& words, const Blow& blow) const {
  const TempFolder folder;
  const Path count = folder.Put("count", "0");
  const auto start = Clock::now();
  int terminal = -1;
  const pid_t process = ::forkpty(&terminal, nullptr, nullptr, nullptr);
  if (process < 0) throw std::runtime_error("cannot fork");
  if (process == 0) ::alarm(60);  // should it never end
  if (process == 0) m_program.empty() ? RunForked(words, blow, count) : RunProgram(words, blow, count);
  if (::write(terminal, "y\ny\n", 4) != 4) throw std::runtime_error("cannot type");
  if (blow.after) KillAfter(process, *blow.after);
  int status = 0;
  ::waitpid(process, &status, 0);
  ::close(terminal);
  const bool hasEnded = WIFEXITED(status);
  return {.wasKilled = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL,
          .exitCode = hasEnded ? WEXITSTATUS(status) : 128,
          .changes = hasEnded ? std::stol(ReadAll(count)) : 0,
          .time = std::chrono::duration_cast<microseconds>(Clock::now() - start)};
}

void Victim::RunForked(const std::vector<std::string>& words, const Blow& blow, const Path& count) const {
  PosixFiles files;
  Interpose({.killAt = blow.at, .moment = blow.moment});
  const int code = RunHere(words, files);
  const long changes = ChangesSeen();
  Interpose({});
  WriteAll(count, std::to_string(changes), 0600);
  ::_exit(code);
}

void Victim::RunProgram(const std::vector<std::string>& words, const Blow& blow, const Path& count) const {
  ::setenv("LD_PRELOAD", m_interposer.c_str(), 1);
  ::setenv("TARNEL_KILL_AT", std::to_string(blow.at).c_str(), 1);
  ::setenv("TARNEL_KILL_MOMENT", std::to_string(static_cast<int>(blow.moment)).c_str(), 1);
  ::setenv("TARNEL_COUNT_TO", count.c_str(), 1);
  std::vector<std::string> texts = words;
  std::vector<char*> pointers = {const_cast<char*>(m_program.c_str())};
  for (std::string& text : texts)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);
  ::execv(m_program.c_str(), pointers.data());
  ::_exit(127);
}

Victim::End KillCampaign::Run(const Command& command, const Blow& blow) {
  Victim::End end;
  m_scene.Reset(command);
  m_scene.Run(command, [&](const std::vector<std::string>& words) { end = m_victim.Run(words, blow); });
  return end;
}

Victim::End KillCampaign::RunQuietly(std::size_t number) {
  const Command& command = m_scene.Commands().at(number);
  const Victim::End end = Run(command, {});
  if (end.exitCode != 0) throw std::runtime_error(command.name + " fails: " + std::to_string(end.exitCode));
  m_scene.JudgeFinished(command);
  return end;
}

bool KillCampaign::Strike(std::size_t number, const Blow& blow) {
  const Command& command = m_scene.Commands().at(number);
  if (!Run(command, blow).wasKilled) return false;
  m_scene.Recover(command, [this](const std::vector<std::string>& words) { m_victim.Run(words); });
  m_scene.Judge(command, blow.after ? "killed after " + std::to_string(blow.after->count()) + " microseconds"
                                    : "killed at change " + std::to_string(blow.at) + ", moment " +
                                          std::to_string(static_cast<int>(blow.moment)));
  return true;
}

std::size_t RunKillCampaigns(const Victim& victim, std::size_t kills, unsigned seed) {
  using enum Interposition::Moment;
  std::size_t done = 0;
  Dice dice(seed);
  for (unsigned round = seed; done < kills; ++round) {
    KillCampaign campaign(victim, round);
    for (std::size_t command = 0; command < campaign.Commands(); ++command) {
      const Victim::End quiet = campaign.RunQuietly(command);
      for (long at = 1; at <= quiet.changes; ++at)
        for (const auto moment : {Before, Half, After})
          if (done < kills && campaign.Strike(command, {.at = at, .moment = moment})) ++done;
      for (int i = 0; i < 10; ++i) {
        const auto after = microseconds(dice.Roll(static_cast<std::size_t>(quiet.time.count())));
        if (done < kills && campaign.Strike(command, {.after = after})) ++done;
      }
    }
  }
  return done;
}

std::size_t SampleKills(const Victim& victim, std::size_t tries, unsigned seed) {
  KillCampaign campaign(victim, seed);
  std::vector<Victim::End> quiet;
  for (std::size_t command = 0; command < campaign.Commands(); ++command)
    quiet.push_back(campaign.RunQuietly(command));
  std::size_t kills = 0;
  Dice dice(seed);
  for (std::size_t i = 0; i < tries; ++i) {
    const std::size_t command = i % campaign.Commands();
    const auto changes = static_cast<std::size_t>(quiet[command].changes);
    const Blow blow{.at = static_cast<long>(1 + dice.Roll(changes)),
                    .moment = static_cast<Interposition::Moment>(dice.Roll(3))};
    if (campaign.Strike(command, blow)) ++kills;
  }
  return kills;
}

}  // namespace tarnel::test
