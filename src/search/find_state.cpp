#include "search/find_state.h"

#include <string_view>

namespace tarnel {

namespace {

std::string_view WithoutEnd(const Path& folder) {
  std::string_view text = folder.native();
  while (text.size() > 1 && text.back() == '/')
    text.remove_suffix(1);
  return text;
}

bool IsPlace(const Path& path, const Path& place) {
  return !place.empty() && WithoutEnd(path) == WithoutEnd(place);
}

}  // namespace

void FindState::Begin() {
  m_stage = Stage::Searching;
  m_notSearched = 0;
}

void FindState::Cancel() {
  if (m_stage == Stage::Searching) m_stage = Stage::Canceling;
}

void FindState::End(SearchEnding ending) {
  m_stage = Stage::Idle;
  m_ending = ending;
  m_hasSearched = ending != SearchEnding::NoPassword;
}

std::string FindState::Txt_SearchIn() const {
  if (IsPlace(m_selected, m_places.computer)) return "My Computer";
  if (IsPlace(m_selected, m_places.desktop)) return "Desktop";
  if (IsPlace(m_selected, m_places.documents)) return "My Documents";
  return m_selected.native();
}

FindState::Enabled FindState::CanPress(bool isRowSelected) const {
  return {.Cmd_Search = m_stage == Stage::Idle && IsFolder(),
          .Cmd_Cancel = m_stage != Stage::Canceling,
          .menu_open = isRowSelected};
}

std::string FindState::NotSearchedText() const {
  return m_notSearched == 0 ? std::string() : std::to_string(m_notSearched) + " could not be read...";
}

std::string FindState::EmptyText() const {
  if (m_stage != Stage::Idle) return "Nothing found yet";
  if (!IsFolder()) return "Choose a folder or a drive to search in";
  if (!m_hasSearched) return "No results yet";
  if (m_ending == SearchEnding::Cancelled) return "Nothing was found until the search was cancelled";
  return m_notSearched == 0 ? "No carrier file was found that opens with this password"
                            : "No carrier file was found, but not all could be read";
}

}  // namespace tarnel
