#pragma once

#include <cstddef>
#include <string>

#include "base/dialogue.h"
#include "search/search_folder.h"

namespace tarnel {

/// What the search window shows, and what can be pressed in it.
class FindState {
 public:
  enum class Stage { Idle, Searching, Canceling };

  /// What the directory tree calls by a name. Folders may end in "/".
  struct Places {
    Path computer;   ///< what stands for all drives, and is no folder
    Path desktop;    ///< empty for none
    Path documents;  ///< the same
  };
  explicit FindState(Places places) : m_places(std::move(places)) {}

  Stage CurrentStage() const { return m_stage; }

  /// The directory tree has selected this path, or nothing.
  void Select(const Path& path) { m_selected = path; }
  const Path& Selected() const { return m_selected; }

  void Begin();
  void Cancel();
  void End(SearchEnding ending);
  void CountNotSearched() { ++m_notSearched; }

  /// Of the line "Search in:": a name, or the path where there is none.
  std::string Txt_SearchIn() const;

  struct Enabled {
    bool Cmd_Search = false;
    bool Cmd_Cancel = false;
    bool menu_open = false;
    bool operator==(const Enabled&) const = default;
  };
  Enabled CanPress(bool isRowSelected) const;

  /// Of what could not be read in the last search; empty if all could.
  std::string NotSearchedText() const;

  /// Why the list is empty, for when it is.
  std::string EmptyText() const;

 private:
  bool IsFolder() const { return !m_selected.empty() && m_selected != m_places.computer; }

  Places m_places;
  Stage m_stage = Stage::Idle;
  Path m_selected;
  std::size_t m_notSearched = 0;
  bool m_hasSearched = false;
  SearchEnding m_ending = SearchEnding::Done;
};

}  // namespace tarnel
