#include <fcntl.h>
#include <gmock/gmock.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <functional>
#include <thread>

#include "tests/support/temp_folder.h"

namespace tarnel::test {
namespace {

using testing::HasSubstr;

void Redirect(int stream, const Path& file, int flags) {
  ::dup2(::open(file.c_str(), flags | O_CREAT | O_CLOEXEC, 0600), stream);
}

enum class Terminal { None, Given };

/// The real program in a process of its own, at a terminal of its own or at none.
///
///   Program program({"list", "photo.png"}, Terminal::Given);
///   program.Expect("Password: ").Type("secret\n");
///   EXPECT_EQ(program.Wait(), 0);
class Program {
 public:
  /// `inChild` runs before the program takes over. A program that never ends is ended after a minute.
  explicit Program(std::vector<std::string> words, Terminal terminal = Terminal::None,
                   const std::function<void()>& inChild = {}) {
    const bool isGiven = terminal == Terminal::Given;
    m_process = isGiven ? ::forkpty(&m_terminal, nullptr, nullptr, nullptr) : ::fork();
    if (m_process != 0) return;
    ::alarm(60);
    ::setsid();
    ::unsetenv("TARNEL_PASSWORD_FILE");
    if (!isGiven) Redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
    Redirect(STDOUT_FILENO, m_folder / "out", O_WRONLY);
    Redirect(STDERR_FILENO, m_folder / "err", O_WRONLY);
    std::string name = TARNEL_CLI;
    std::vector<char*> arguments = {name.data()};
    for (std::string& word : words)
      arguments.push_back(word.data());
    arguments.push_back(nullptr);
    if (inChild) inChild();
    ::execv(TARNEL_CLI, arguments.data());
    ::_exit(127);
  }
  ~Program() {
    if (m_process > 0) ::kill(m_process, SIGKILL);
    ::close(m_terminal);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  /// Waits until the terminal has shown `text`. Throws std::runtime_error if the program ends before.
  Program& Expect(const std::string& text) {
    while (shown.find(text) == std::string::npos)
      if (!ReadTerminal()) throw std::runtime_error("not shown: " + text + "; shown: " + shown + Err());
    shown.erase(0, shown.find(text) + text.size());
    return *this;
  }
  Program& Type(const std::string& keys) {
    EXPECT_EQ(::write(m_terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    return *this;
  }
  void Signal(int number) const { ::kill(m_process, number); }
  bool EchoIsOn() const {
    termios settings{};
    return ::tcgetattr(m_terminal, &settings) == 0 && (settings.c_lflag & ECHO) != 0;
  }
  bool ForbidsCoreDumps() const {
    rlimit limit{};
    return ::prlimit(m_process, RLIMIT_CORE, nullptr, &limit) == 0 && limit.rlim_max <= 1;
  }
  bool HasEnded() const {
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(m_process), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           info.si_pid != 0;
  }
  /// The exit code; 128 and the signal where one ended it.
  int Wait() {
    while (ReadTerminal())
      continue;
    int status = 0;
    ::waitpid(std::exchange(m_process, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  std::string Out() const { return ReadAll(m_folder / "out"); }
  std::string Err() const { return ReadAll(m_folder / "err"); }

  std::string shown;  ///< by the terminal, behind what was expected

 private:
  /// False once the program has ended.
  bool ReadTerminal() {
    std::array<char, 4096> buffer{};
    const ssize_t got = ::read(m_terminal, buffer.data(), buffer.size());
    if (got > 0) shown.append(buffer.data(), static_cast<std::size_t>(got));
    return got > 0;
  }

  TempFolder m_folder;
  pid_t m_process = -1;
  int m_terminal = -1;
};

class RealProgram : public testing::Test {
 protected:
  RealProgram() {
    folder.Put("carrier", Pattern(5000));
    folder.Put("a.txt", "alpha");
    folder.Put("key", "secret\n", 0600);
  }
  std::string At(const char* name) const { return (folder / name).native(); }
  /// Words for the carrier, with the password from the file; "@name" is a path in the folder.
  std::vector<std::string> Words(const std::string& verb, std::vector<std::string> rest = {}) const {
    for (std::string& word : rest) {
      if (word.starts_with('@')) word = At(word.c_str() + 1);
    }
    rest.insert(rest.begin(), {verb, At("carrier"), "--password-file", At("key")});
    return rest;
  }
  int Run(const std::vector<std::string>& words, const std::function<void()>& inChild = {}) const {
    return Program(words, Terminal::None, inChild).Wait();
  }
  void ExpectCarrierAsItWas() const {
    EXPECT_TRUE(ReadAll(folder / "carrier") == Pattern(5000));
    EXPECT_FALSE(std::filesystem::exists(folder / "carrier.bak"));
  }

  TempFolder folder;
};

TEST_F(RealProgram, PasswordsAreTypedWithoutEcho) {
  Program hide({"hide", At("carrier"), At("a.txt")}, Terminal::Given);
  hide.Expect("Password: ");
  EXPECT_FALSE(hide.EchoIsOn());
  hide.Type("sec\x7f").Type("cret\n").Expect("Confirmation: ").Type("secret\n");
  EXPECT_EQ(hide.Wait(), 0) << hide.Err();
  EXPECT_TRUE(hide.EchoIsOn());
  EXPECT_EQ(hide.shown.find("cret"), std::string::npos);
  EXPECT_EQ(Run(Words("list")), 0);
}

TEST_F(RealProgram, EchoComesBackWhateverEndsThePrompt) {
  const std::pair<const char*, int> cases[] = {{"\x03", 0},   {"\x1c", 0},  {"\x04", 0}, {"half\x03", 0},
                                               {"", SIGTERM}, {"", SIGHUP}, {"", SIGINT}};
  for (const auto& [keys, number] : cases) {
    Program program({"list", At("carrier")}, Terminal::Given);
    program.Expect("Password: ").Type(keys).Signal(number);
    EXPECT_EQ(program.Wait(), 130) << program.Err();
    EXPECT_TRUE(program.EchoIsOn());
  }
}

TEST_F(RealProgram, NohupHoldsAndCoreDumpsAreForbiddenBeforeThePasswordComes) {
  ASSERT_EQ(Run(Words("hide", {"--new", "@a.txt"})), 0);
  Program program({"list", At("carrier")}, Terminal::Given, [] { std::signal(SIGHUP, SIG_IGN); });
  program.Expect("Password: ").Signal(SIGHUP);
  EXPECT_TRUE(program.ForbidsCoreDumps());
  EXPECT_EQ(program.Type("secret\n").Wait(), 0) << program.Err();
}

TEST_F(RealProgram, WithoutATerminalNobodyIsAsked) {
  Program program({"list", At("carrier")});
  EXPECT_EQ(program.Wait(), 2);
  EXPECT_THAT(program.Err(), HasSubstr("--password-file"));
}

TEST_F(RealProgram, ThePasswordCanComeThroughStandardInput) {
  ASSERT_EQ(Run(Words("hide", {"--new", "@a.txt"})), 0);
  Program program({"list", At("carrier"), "--password-file", "-"}, Terminal::None,
                  [this] { Redirect(STDIN_FILENO, folder / "key", O_RDONLY); });
  EXPECT_EQ(program.Wait(), 0) << program.Err();
  EXPECT_THAT(program.Out(), HasSubstr("a.txt\n"));
}

TEST_F(RealProgram, WhatComesThroughStandardInputIsHiddenUnderItsName) {
  const auto feed = [this] { Redirect(STDIN_FILENO, folder / "a.txt", O_RDONLY); };
  EXPECT_EQ(Run(Words("hide", {"--new", "-", "--name", "n"}), feed), 0);
  Program back(Words("extract", {"n", "--to", "-"}));
  EXPECT_EQ(back.Wait(), 0) << back.Err();
  EXPECT_EQ(back.Out(), "alpha");
}

TEST_F(RealProgram, PathsAreShownAsTheyWereGiven) {
  folder.Put("in/b", "beta");
  std::filesystem::create_symlink("b", folder / "in/link");
  const auto enter = [this] {
    if (::chdir(folder.Where().c_str()) != 0) ::_exit(126);
  };
  Program hide({"hide", "carrier", "./in/", "--new", "--password-file", "key"}, Terminal::None, enter);
  EXPECT_EQ(hide.Wait(), 3);
  EXPECT_THAT(hide.Err(), HasSubstr("passed over: ./in/link is"));
}

TEST_F(RealProgram, AQuestionIsAskedAtTheTerminal) {
  ASSERT_EQ(Run(Words("hide", {"--new", "@a.txt"})), 0);
  folder.Put("out/a.txt", "there");
  Program program(Words("extract", {"--to", "@out"}), Terminal::Given);
  program.Expect("overwrite").Expect("[N]o").Type("y\n");
  EXPECT_EQ(program.Wait(), 0) << program.Err();
  EXPECT_EQ(ReadAll(folder / "out/a.txt"), "alpha");
}

TEST_F(RealProgram, ASignalInTheMiddleOfAHideLeavesTheCarrierAsItWas) {
  std::filesystem::resize_file(folder.Put("large", ""), 1500U << 20);  // takes time, but no room
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    Program hide(Words("hide", {"--new", "@large"}));
    while (std::filesystem::file_size(folder / "carrier") < 1000000 && !hide.HasEnded())
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    hide.Signal(number);
    hide.Signal(number);
    EXPECT_EQ(hide.Wait(), 130) << hide.Err();
    ExpectCarrierAsItWas();
  }
}

TEST_F(RealProgram, AFileThatMayNotGrowLeavesTheCarrierAsItWas) {
  folder.Put("big", Pattern(300000));
  const auto restrict = [] {
    const rlimit most{100000, 100000};
    ::setrlimit(RLIMIT_FSIZE, &most);
  };
  EXPECT_EQ(Run(Words("hide", {"--new", "@big"}), restrict), 5);
  ExpectCarrierAsItWas();
}

TEST_F(RealProgram, OutputThatCannotBeWrittenIsNeverASuccess) {
  ASSERT_EQ(Run(Words("hide", {"--new", "@a.txt"})), 0);
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ::close(ends[0]);
  Program piped(Words("list"), Terminal::None, [&ends] { ::dup2(ends[1], STDOUT_FILENO); });
  EXPECT_EQ(piped.Wait(), 141);
  EXPECT_EQ(piped.Err(), "") << "as others end whose reader is gone";
  ::close(ends[1]);
  EXPECT_EQ(Run(Words("list"), [] { Redirect(STDOUT_FILENO, "/dev/full", O_WRONLY); }), 1);
  EXPECT_EQ(Run(Words("list"), [] { ::close(STDOUT_FILENO); }), 1);
}

TEST_F(RealProgram, ClosedStandardStreamsNeverBecomeTheCarrier) {
  const auto closeAll = [] { ::close_range(0, 2, 0); };
  EXPECT_EQ(Run(Words("hide", {"--new", "@a.txt", "--title", "T"}), closeAll), 0);
  EXPECT_EQ(Run(Words("verify")), 0);
  EXPECT_EQ(ReadAll(folder / "carrier").substr(0, 5000), Pattern(5000));
}

}  // namespace
}  // namespace tarnel::test
