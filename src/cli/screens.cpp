#include "cli/screens.h"

#include <cmath>

#include "carrier/stored_text.h"

namespace tarnel {

namespace {

std::string Counter(std::size_t number, std::size_t count) {
  return "[" + std::to_string(number) + "/" + std::to_string(count) + "] ";
}

}  // namespace

void HideOnTerminal::ShowStage(HideStage stage) {
  Talk().Progress().SetLabel(m_file.empty() ? StageText(stage) : m_file);
}

void HideOnTerminal::ShowFile(std::size_t number, std::size_t count, const Path& source, Length) {
  m_file = Counter(number, count) + source.filename().native();
  Talk().Progress().SetLabel(m_file);
}

void HideOnTerminal::ShowProgress(double value, double maximum) {
  Talk().Progress().Show(std::llround(value), std::llround(maximum));
}

void HideOnTerminal::ShowOriginal(OriginalStep step, const Path& original, std::size_t number,
                                  std::size_t count) {
  const char* const what = step == OriginalStep::Comparing ? "Comparing " : "Removing ";
  Talk().Progress().SetLabel(what + (number > 0 ? Counter(number, count) : "") +
                             original.filename().native());
}

void ExtractOnTerminal::ShowFile(std::size_t number, std::size_t count, std::string_view storedName, Length,
                                 const Path&) {
  Talk().Progress().SetLabel(Counter(number, count) + ToPlatform(storedName));
}

}  // namespace tarnel
