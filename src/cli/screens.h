#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "carrier/open_hideout.h"
#include "cli/terminal_dialogue.h"
#include "hiding/selection.h"
#include "retrieval/carrier_rewrite.h"
#include "retrieval/run_extract.h"
#include "retrieval/salvage.h"
#include "retrieval/verify.h"
#include "search/search_folder.h"

namespace tarnel {

/// A reading screen whose work shows as one progress line.
template <class Screen>
class ReadingOnTerminal : public OnTerminal<Screen> {
 public:
  using OnTerminal<Screen>::OnTerminal;

  void ShowReading(Length passed, Length size) override {
    this->Talk().Progress().SetLabel("Reading the hideout");
    this->Talk().Progress().Show(passed, size);
  }
  void HideoutLoaded(TreeNode&, std::size_t) override {}
  void HideoutGone() override {}
};

class OpeningOnTerminal : public ReadingOnTerminal<OpeningScreen> {
 public:
  OpeningOnTerminal(TerminalDialogue& talk, ReadingGuards& guards)
      : ReadingOnTerminal(talk), m_guards(guards) {}

  Answer Ask(const Question& question) override {
    const Answer answer = ReadingOnTerminal::Ask(question);
    CarryCancel(*this, m_guards.AbortReadingFlag);
    return answer;
  }
  void Yield() override {
    ReadingOnTerminal::Yield();
    CarryCancel(*this, m_guards.AbortReadingFlag);
  }
  void ShowTry(int) override {}
  void ShowFaults(const ChainFaults& faults) override { m_faults = faults; }
  const ChainFaults& Faults() const { return m_faults; }

 private:
  ReadingGuards& m_guards;
  ChainFaults m_faults;
};

class HideOnTerminal : public ReadingOnTerminal<HideScreen> {
 public:
  using ReadingOnTerminal::ReadingOnTerminal;

  void ShowStage(HideStage stage) override;
  void ShowFile(std::size_t number, std::size_t count, const Path& source, Length size) override;
  void FileDone(std::size_t number) override;
  void ShowProgress(Length value, Length maximum) override;
  void ShowBackup(Length copied, Length size) override { Talk().Progress().Show(copied, size); }
  void ShowOriginal(OriginalStep step, const Path& original, std::size_t number, std::size_t count) override;

  /// Numbers of the rows that were hidden, from 1.
  const std::set<std::size_t>& Done() const { return m_done; }

 private:
  std::string m_file;  ///< "[2/5] letter.txt" while a file is being hidden
  std::set<std::size_t> m_done;
};

class ExtractOnTerminal : public OnTerminal<ExtractScreen> {
 public:
  using OnTerminal::OnTerminal;

  void ShowFile(std::size_t number, std::size_t count, std::string_view storedName, Length size) override;
  void ShowTarget(const Path&) override {}
  void ShowProgress(Length value, Length maximum) override;
};

class SalvageOnTerminal : public OnTerminal<SalvageScreen> {
 public:
  using OnTerminal::OnTerminal;

  void ShowProgress(Length value, Length maximum) override {
    Talk().Progress().SetLabel("Salvaging");
    Talk().Progress().Show(value, maximum);
  }
  void FileSalvaged(const Path&) override {}
};

class VerifyOnTerminal : public OnTerminal<VerifyScreen> {
 public:
  using OnTerminal::OnTerminal;

  void ShowProgress(Length value, Length maximum) override {
    Talk().Progress().SetLabel("Verifying");
    Talk().Progress().Show(value, maximum);
  }
};

class RewriteOnTerminal : public ReadingOnTerminal<RewriteScreen> {
 public:
  RewriteOnTerminal(TerminalDialogue& talk, std::string label)
      : ReadingOnTerminal(talk), m_label(std::move(label)) {}

  void ShowProgress(Length value, Length maximum) override {
    Talk().Progress().SetLabel(m_label);
    Talk().Progress().Show(value, maximum);
  }
  void HideoutEmptied() override {}

 private:
  std::string m_label;
};

/// Each carrier that is found goes to `found` at once.
class SearchOnTerminal : public OnTerminal<SearchScreen> {
 public:
  SearchOnTerminal(TerminalDialogue& talk, std::function<void(const SearchRow&)> found)
      : OnTerminal(talk), m_found(std::move(found)) {}

  void ShowFolder(const Path& folder) override { Talk().Progress().ShowText(SearchingText(folder)); }
  void ShowFound(const SearchRow& row) override {
    Talk().Progress().Clear();
    m_found(row);
  }

 private:
  std::function<void(const SearchRow&)> m_found;
};

class SelectionOnTerminal : public OnTerminal<SelectionScreen> {
 public:
  using OnTerminal::OnTerminal;

  void ShowAdded(const Path&, std::size_t) override { Yield(); }
};

}  // namespace tarnel
