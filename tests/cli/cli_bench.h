#pragma once

#include <deque>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "base/files.h"
#include "cli/exit_codes.h"
#include "cli/run_cli.h"
#include "tests/support/held_key.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {

inline std::vector<std::string> Words(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

/// The phrase, with its key held for all runs of the program.
inline Secret Held(std::string_view phrase) {
  HeldKey(phrase);
  return Secret(phrase);
}

/// A terminal whose person has decided beforehand what to type.
class ScriptedTerminal : public Terminal {
 public:
  void Write(std::string_view text) override { out += text; }
  void FinishOutput() override {
    if (isReaderGone) throw CliFailure(ExitCode::ReaderGone, "gone");
  }
  void WriteError(std::string_view text) override { err += text; }
  bool OutputIsTerminal() const override { return isTerminal; }
  bool ErrorIsTerminal() const override { return isTerminal; }
  std::size_t Width() const override { return 80; }
  bool CanAsk() override { return canAsk; }
  std::optional<std::string> ReadLine(std::string_view prompt) override { return Next(lines, prompt); }
  std::optional<Secret> ReadSecret(std::string_view prompt) override {
    const auto typed = Next(secrets, prompt);
    return typed ? std::optional(Held(*typed)) : std::nullopt;
  }
  bool CancelRequested() const override { return isCancelled; }

  std::string out;
  std::string err;
  std::string prompts;
  std::deque<std::string> lines;
  std::deque<std::string> secrets;
  bool canAsk = false;
  bool isTerminal = false;
  bool isCancelled = false;
  bool isReaderGone = false;

 private:
  std::optional<std::string> Next(std::deque<std::string>& typed, std::string_view prompt) {
    prompts += prompt;
    if (typed.empty()) return std::nullopt;
    std::string text = typed.front();
    typed.pop_front();
    return text;
  }
};

/// A folder with a carrier, and the program called in this process.
///
///   CliBench bench;
///   bench.Put("a.txt", "hello");
///   EXPECT_EQ(bench.Run("hide @carrier @a.txt"), 0) << bench.terminal.err;
///   EXPECT_EQ(bench.Run("list @carrier"), 0);
///
/// "@name" stands for a path in the folder. The password "secret" lies in "@key", and counts unless the test
/// says otherwise.
class CliBench {
 public:
  CliBench() {
    Held("secret");
    folder.Put("carrier", Pattern(1000));
    folder.Put("key", "secret\n", 0600);
    folder.Put("other", "other\n", 0600);
    variables["TARNEL_PASSWORD_FILE"] = folder / "key";
  }

  int Run(const std::string& line) { return RunWords(Words(line)); }
  int RunWords(std::vector<std::string> words) {
    for (std::string& word : words) {
      if (word.starts_with('@')) word = (folder / word.substr(1)).native();
    }
    terminal.out.clear();
    terminal.err.clear();
    return RunCli(words, terminal, *files, [this](const char* name) -> std::optional<std::string> {
      const auto found = variables.find(name);
      return found == variables.end() ? std::nullopt : std::optional(found->second);
    });
  }

  Path Put(std::string_view name, std::string_view bytes, mode_t mode = 0644) const {
    return folder.Put(name, bytes, mode);
  }
  std::string Get(std::string_view name) const { return ReadAll(folder / name); }
  bool Has(std::string_view name) const { return std::filesystem::exists(folder / name); }
  nlohmann::json Json() const { return nlohmann::json::parse(terminal.out); }

  TempFolder folder;
  ScriptedTerminal terminal;
  PosixFiles posix;
  Files* files = &posix;
  std::map<std::string, std::string> variables;
};

}  // namespace tarnel::test
