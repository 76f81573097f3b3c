#include "cli/screens.h"

#include "carrier/stored_text.h"

namespace tarnel {

namespace {

std::string Counter(std::size_t number, std::size_t count) {
  return "[" + std::to_string(number) + "/" + std::to_string(count) + "] ";
}

}  // namespace

void HideOnTerminal::ShowStage(HideStage stage) {
  const bool isOfFile = !m_file.empty() && (stage == HideStage::Compressing ||
                                            stage == HideStage::Encrypting || stage == HideStage::Hiding);
  if (isOfFile) return Talk().Progress().SetLabel(m_file);
  Talk().Progress().SetLabel(StageText(stage));
  Talk().Progress().ShowStage();
}

void HideOnTerminal::ShowFile(std::size_t number, std::size_t count, const Path& source, Length) {
  m_file = Counter(number, count) + source.filename().native();
  Talk().Progress().SetLabel(m_file);
}

void HideOnTerminal::FileDone(std::size_t number) {
  m_done.insert(number);
  m_file.clear();
}

void HideOnTerminal::ShowProgress(Length value, Length maximum) {
  if (!m_file.empty()) Talk().Progress().Show(value, maximum);
}

void HideOnTerminal::ShowOriginal(OriginalStep step, const Path& original, std::size_t number,
                                  std::size_t count) {
  const char* const what = step == OriginalStep::Comparing ? "Comparing " : "Removing ";
  Talk().Progress().SetLabel(what + (number > 0 ? Counter(number, count) : "") +
                             original.filename().native());
}

void ExtractOnTerminal::ShowFile(std::size_t number, std::size_t count, std::string_view storedName, Length) {
  Talk().Progress().SetLabel(Counter(number, count) + ToPlatform(storedName));
}

void ExtractOnTerminal::ShowProgress(Length value, Length maximum) {
  Talk().Progress().Show(value, maximum);
}

}  // namespace tarnel
