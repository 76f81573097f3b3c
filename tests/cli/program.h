#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"

namespace tarnel::test {

/// How the program is started. It never has the terminal of the test run.
struct Start {
  std::string input = {};                     ///< what stands on standard input
  std::optional<Path> output = std::nullopt;  ///< a file for standard output; else it is collected
  enum class Terminal { None, Given } terminal = Terminal::None;
  std::function<void()> inChild = {};  ///< run before the program takes over
};

/// The real program in a process of its own.
///
///   Program program({"list", "photo.png"}, {.terminal = Start::Terminal::Given});
///   program.Expect("Password: ").Type("secret\n");
///   EXPECT_EQ(program.Wait(), 0);
class Program {
 public:
  explicit Program(std::vector<std::string> arguments, const Start& start = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  Program(Program&&) = delete;
  Program& operator=(Program&&) = delete;

  /// Waits until the terminal has shown `text`. Throws std::runtime_error if it doesn't within a minute.
  Program& Expect(const std::string& text);
  Program& Type(const std::string& keys);
  void Signal(int number) const;
  bool EchoIsOn() const;

  /// The exit code; 128 and the signal where one ended it. Throws std::runtime_error after two minutes.
  int Wait();

  const std::string& Out() const { return m_out; }
  const std::string& Err() const { return m_err; }
  const std::string& Shown() const { return m_shown; }  ///< what the terminal has shown

 private:
  [[noreturn]] void RunChild(std::vector<std::string>& arguments, const Start& start);
  void Pump(int milliseconds);

  pid_t m_process = -1;
  int m_master = -1;
  int m_slave = -1;
  int m_outEnd = -1;
  int m_errEnd = -1;
  int m_outWrite = -1;
  int m_errWrite = -1;
  int m_inRead = -1;
  std::string m_out;
  std::string m_err;
  std::string m_shown;
};

}  // namespace tarnel::test
