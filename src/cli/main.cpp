#include <clocale>
#include <cstdlib>

#include "base/core_dumps.h"
#include "cli/run_cli.h"
#include "cli/signals.h"

int main(int argc, char** argv) {
  tarnel::FillStandardStreams();
  tarnel::ForbidCoreDumps(tarnel::Dumpable::Off);
  tarnel::CatchSignals();
  std::setlocale(LC_TIME, "");
  tarnel::ProcessTerminal terminal;
  tarnel::PosixFiles files;
  const tarnel::Variables variables = [](const char* name) -> std::optional<std::string> {
    const char* value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
  };
  return tarnel::RunCli({argv + 1, argv + argc}, terminal, files, variables);
}
