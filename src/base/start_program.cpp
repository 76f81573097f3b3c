#include "base/start_program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarnel {

namespace {

/// In the child: a grandchild becomes the program, and says through `report` if it can't.
[[noreturn]] void BecomeProgram(char* const* arguments, int report) {
  setsid();
  if (fork() == 0) {
    execvp(arguments[0], arguments);
    const char failed = 1;
    [[maybe_unused]] const ssize_t written = write(report, &failed, 1);
  }
  _exit(0);
}

}  // namespace

bool StartProgram(const std::vector<std::string>& commandLine) {
  if (commandLine.empty()) return false;
  std::vector<std::string> texts = commandLine;
  std::vector<char*> arguments;
  for (std::string& text : texts)
    arguments.push_back(text.data());
  arguments.push_back(nullptr);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  const pid_t child = fork();
  if (child == 0) BecomeProgram(arguments.data(), ends[1]);
  close(ends[1]);
  char failed = 0;
  const bool isStarted = child > 0 && read(ends[0], &failed, 1) == 0;
  close(ends[0]);
  if (child > 0) waitpid(child, nullptr, 0);
  return isStarted;
}

}  // namespace tarnel
