#include "tests/cli/program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace tarnel::test {

namespace {

using Clock = std::chrono::steady_clock;

void MakePipe(int& readEnd, int& writeEnd) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  readEnd = ends[0];
  writeEnd = ends[1];
}

void CloseOnce(int& number) {
  if (number >= 0) ::close(number);
  number = -1;
}

/// Appends what is there; closes the end that has nothing more.
void Drain(int& end, std::string& text) {
  std::array<char, 4096> buffer{};
  const ssize_t got = ::read(end, buffer.data(), buffer.size());
  if (got > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(got));
  } else {
    CloseOnce(end);
  }
}

}  // namespace

Program::Program(std::vector<std::string> arguments, const Start& start) {
  int inWrite = -1;
  MakePipe(m_outEnd, m_outWrite);
  MakePipe(m_errEnd, m_errWrite);
  MakePipe(m_inRead, inWrite);
  if (start.terminal == Start::Terminal::Given &&
      ::openpty(&m_master, &m_slave, nullptr, nullptr, nullptr) != 0) {
    throw std::runtime_error("no pseudo terminal");
  }
  if (m_master >= 0) ::fcntl(m_master, F_SETFD, FD_CLOEXEC);
  m_process = ::fork();
  if (m_process == 0) RunChild(arguments, start);
  for (int* end : {&m_outWrite, &m_errWrite, &m_inRead})
    CloseOnce(*end);
  const ssize_t put = ::write(inWrite, start.input.data(), start.input.size());
  ::close(inWrite);
  if (put != static_cast<ssize_t>(start.input.size())) throw std::runtime_error("input too long");
}

Program::~Program() {
  if (m_process > 0) {
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
  }
  for (int* end : {&m_master, &m_slave, &m_outEnd, &m_errEnd})
    CloseOnce(*end);
}

void Program::RunChild(std::vector<std::string>& arguments, const Start& start) {
  ::setsid();
  if (m_slave >= 0) ::ioctl(m_slave, TIOCSCTTY, 0);
  ::dup2(m_inRead, STDIN_FILENO);
  ::dup2(start.output ? ::open(start.output->c_str(), O_WRONLY | O_CLOEXEC) : m_outWrite, STDOUT_FILENO);
  ::dup2(m_errWrite, STDERR_FILENO);
  std::string name = TARNEL_CLI;
  std::vector<char*> words = {name.data()};
  for (std::string& argument : arguments)
    words.push_back(argument.data());
  words.push_back(nullptr);
  if (start.inChild) start.inChild();
  ::execv(TARNEL_CLI, words.data());
  ::_exit(127);
}

void Program::Pump(int milliseconds) {
  const std::array<std::pair<int*, std::string*>, 3> ends = {
      std::pair{&m_outEnd, &m_out}, std::pair{&m_errEnd, &m_err}, std::pair{&m_master, &m_shown}};
  std::array<pollfd, 3> waits{};
  for (std::size_t i = 0; i < ends.size(); ++i)
    waits[i] = {*ends[i].first, POLLIN, 0};
  if (::poll(waits.data(), waits.size(), milliseconds) <= 0) return;
  for (std::size_t i = 0; i < ends.size(); ++i) {
    if (*ends[i].first >= 0 && waits[i].revents != 0) Drain(*ends[i].first, *ends[i].second);
  }
}

Program& Program::Expect(const std::string& text) {
  const auto end = Clock::now() + std::chrono::seconds(60);
  std::size_t at = m_shown.find(text);
  while (at == std::string::npos) {
    if (Clock::now() > end) throw std::runtime_error("not shown: " + text + "; shown: " + m_shown + m_err);
    Pump(20);
    at = m_shown.find(text);
  }
  m_shown.erase(0, at + text.size());
  return *this;
}

Program& Program::Type(const std::string& keys) {
  if (::write(m_master, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
    throw std::runtime_error("cannot type");
  }
  return *this;
}

void Program::Signal(int number) const {
  ::kill(m_process, number);
}

bool Program::EchoIsOn() const {
  termios settings{};
  return ::tcgetattr(m_slave, &settings) == 0 && (settings.c_lflag & ECHO) != 0;
}

int Program::Wait() {
  const auto end = Clock::now() + std::chrono::seconds(120);
  int status = 0;
  while (::waitpid(m_process, &status, WNOHANG) == 0) {
    if (Clock::now() > end) throw std::runtime_error("doesn't end; shown: " + m_shown + m_err);
    Pump(20);
  }
  m_process = -1;
  while (m_outEnd >= 0)
    Drain(m_outEnd, m_out);
  while (m_errEnd >= 0)
    Drain(m_errEnd, m_err);
  Pump(0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace tarnel::test
