#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/secret.h"

namespace tarnel {

/// The streams and the person at them, as the verbs see them. Tests script one.
class Terminal {
 public:
  virtual ~Terminal() = default;

  /// Standard output: data only.
  virtual void Write(std::string_view text) = 0;
  /// Flushes standard output. What could not be written, ever since the start, is an Error; if it was because
  /// nobody reads it any more, a CliFailure(ReaderGone), of which nothing is said.
  virtual void FinishOutput() = 0;
  /// Standard error. Failures are passed over: there is nobody left to tell.
  virtual void WriteError(std::string_view text) = 0;

  virtual bool OutputIsTerminal() const = 0;
  virtual bool ErrorIsTerminal() const = 0;
  /// Columns of the terminal on standard error.
  virtual std::size_t Width() const = 0;

  /// True if there is a controlling terminal, whatever the standard streams are connected to.
  virtual bool CanAsk() = 0;
  /// Prompts on the controlling terminal. Nothing if the person cancelled or closed the input.
  virtual std::optional<std::string> ReadLine(std::string_view prompt) = 0;
  /// The same without echo. The echo is back on every way out.
  virtual std::optional<Secret> ReadSecret(std::string_view prompt) = 0;

  /// True from the first Ctrl+C or its like on.
  virtual bool CancelRequested() const = 0;
};

/// The real one: standard streams, /dev/tty and the signals that Signals catches.
class ProcessTerminal : public Terminal {
 public:
  void Write(std::string_view text) override;
  void FinishOutput() override;
  void WriteError(std::string_view text) override;
  bool OutputIsTerminal() const override;
  bool ErrorIsTerminal() const override;
  std::size_t Width() const override;
  bool CanAsk() override;
  std::optional<std::string> ReadLine(std::string_view prompt) override;
  std::optional<Secret> ReadSecret(std::string_view prompt) override;
  bool CancelRequested() const override;

 private:
  int m_writeError = 0;  ///< errno of the first write that failed
};

}  // namespace tarnel
