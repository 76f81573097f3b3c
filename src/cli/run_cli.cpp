#include "cli/run_cli.h"

#include <algorithm>
#include <exception>

#include "cli/exit_codes.h"
#include "cli/help_pages.h"
#include "cli/json_output.h"
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

/// A full disk below standard output is none below a carrier.
void FinishOutput(Terminal& terminal) {
  try {
    terminal.FinishOutput();
  } catch (const Error& error) {
    throw CliFailure(ExitCode::Failed, error);
  }
}

/// Turns whatever ends a run into words, a code and a member of the report.
template <class Run>
ExitCode Reported(Messages& messages, Json& report, Run&& run) {
  const auto fail = [&](const CliFailure& failure) {
    if (failure.Code() == ExitCode::ReaderGone) return failure.Code();
    PutFailure(report, failure, messages.Shown(failure.what()));
    messages.Fail(failure);
    return failure.Code();
  };
  try {
    return run();
  } catch (const CliFailure& failure) {
    return fail(failure);
  } catch (const Error& error) {
    return fail(CliFailure(error));
  } catch (const std::exception& error) {
    return fail(CliFailure(ExitCode::Failed, error.what()));
  }
}

ExitCode RunCommand(const CommandLine& command, Terminal& terminal, Files& files, const Variables& variables,
                    Messages& messages, Json& report) {
  return Reported(messages, report, [&] {
    TerminalDialogue talk(terminal, messages, command.global);
    Surroundings around{command.global, terminal, files, variables, messages, talk, report};
    return std::visit([&](const auto& options) { return RunVerb(options, around); }, command.verb);
  });
}

/// The whole run but for the report.
ExitCode RunArguments(const std::vector<std::string>& arguments, Terminal& terminal, Files& files,
                      const Variables& variables, MessageForm form, Json& report) {
  const Colour colour = ColourFor(terminal, variables);
  Messages early(terminal, form, Volume::Normal, colour);
  return Reported(early, report, [&] {
    const auto parsed = ParseOptions(arguments);
    if (const auto* wish = std::get_if<HelpWish>(&parsed)) {
      terminal.Write(TextFor(*wish, terminal));
      report = nullptr;
      return ExitCode::Done;
    }
    const auto& command = std::get<CommandLine>(parsed);
    Messages messages(terminal, form, command.global.quiet ? Volume::Quiet : Volume::Normal, colour);
    return RunCommand(command, terminal, files, variables, messages, report);
  });
}

}  // namespace

int RunCli(const std::vector<std::string>& arguments, Terminal& terminal, Files& files,
           const Variables& variables) {
  const MessageForm form = AsksForJson(arguments) ? MessageForm::JsonLines : MessageForm::Text;
  Json report = JsonObject();
  const ExitCode code = RunArguments(arguments, terminal, files, variables, form, report);
  Messages late(terminal, form, Volume::Normal, ColourFor(terminal, variables));
  return static_cast<int>(Reported(late, report, [&] {
    if (form == MessageForm::JsonLines && !report.is_null()) {
      report["exit_code"] = static_cast<int>(code);
      terminal.Write(JsonLine(report));
    }
    FinishOutput(terminal);
    return code;
  }));
}

}  // namespace tarnel
