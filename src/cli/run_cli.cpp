#include "cli/run_cli.h"

#include <algorithm>
#include <exception>

#include "cli/exit_codes.h"
#include "cli/help_pages.h"
#include "cli/options.h"
#include "cli/terminal_dialogue.h"
#include "cli/verbs.h"

namespace tarnel {

namespace {

Colour ColourFor(Terminal& terminal, const Variables& variables) {
  const bool isRefused =
      !variables("NO_COLOR").value_or("").empty() || variables("TERM").value_or("dumb") == "dumb";
  return terminal.ErrorIsTerminal() && !isRefused ? Colour::On : Colour::Off;
}

std::string TextFor(const HelpWish& wish, const Terminal& terminal) {
  constexpr std::size_t kNarrowest = 30;
  constexpr std::size_t kWidest = 100;
  if (wish.about == HelpWish::About::Version) return "tarnel-cli " TARNEL_VERSION "\n";
  const std::size_t width =
      terminal.OutputIsTerminal() ? std::clamp(terminal.Width() - 1, kNarrowest, kWidest) : kWidest - 20;
  return wish.about == HelpWish::About::Program ? ProgramHelp(width) : VerbHelp(*FindVerb(wish.verb), width);
}

void FinishOutput(Terminal& terminal) {
  try {
    terminal.FinishOutput();
  } catch (const Error& error) {
    throw CliFailure(ExitCode::Failed, error);
  }
}

ExitCode RunCommand(const CommandLine& command, Terminal& terminal, Files& files, const Variables& variables,
                    Messages& messages) {
  TerminalDialogue talk(terminal, messages, command.global);
  Surroundings around{command.global, terminal, files, variables, messages, talk};
  const ExitCode code =
      std::visit([&](const auto& options) { return RunVerb(options, around); }, command.verb);
  FinishOutput(terminal);
  return code;
}

/// Turns whatever ends a run into words and a code.
template <class Run>
ExitCode Guarded(Messages& messages, Run&& run) {
  try {
    return run();
  } catch (const CliFailure& failure) {
    messages.Fail(failure);
    return failure.Code();
  } catch (const Error& error) {
    const CliFailure failure(error);
    messages.Fail(failure);
    return failure.Code();
  } catch (const std::exception& error) {
    messages.Fail(CliFailure(ExitCode::Failed, error.what()));
    return ExitCode::Failed;
  }
}

}  // namespace

int RunCli(const std::vector<std::string>& arguments, Terminal& terminal, Files& files,
           const Variables& variables) {
  const Colour colour = ColourFor(terminal, variables);
  const MessageForm form = AsksForJson(arguments) ? MessageForm::JsonLines : MessageForm::Text;
  Messages early(terminal, form, Volume::Normal, colour);
  return static_cast<int>(Guarded(early, [&] {
    const auto parsed = ParseOptions(arguments);
    if (const auto* wish = std::get_if<HelpWish>(&parsed)) {
      terminal.Write(TextFor(*wish, terminal));
      FinishOutput(terminal);
      return ExitCode::Done;
    }
    const auto& command = std::get<CommandLine>(parsed);
    Messages messages(terminal, form, command.global.quiet ? Volume::Quiet : Volume::Normal, colour);
    return RunCommand(command, terminal, files, variables, messages);
  }));
}

}  // namespace tarnel
