#pragma once

#include <functional>

#include "app/session_screen.h"
#include "hiding/forms/frm_hide_pages.h"
#include "hiding/hide_wizard.h"
#include "hiding/run_hide.h"
#include "hiding/selection.h"

namespace tarnel {

class HideRowsModel;

/// What collecting shows in its panel. The wizard's stop ends it as a cancel request does.
class CollectingOnForm : public ForwardingScreen<SelectionScreen> {
 public:
  CollectingOnForm(Dialogue& dialogue, const bool& isCancelled, const HideWizard& wizard,
                   CollectingPanel& panel);

  bool CancelRequested() const override;
  void ShowFolder(const Path& folder, std::size_t entries) override;
  void EntryPassed() override;
  void ShowAdded(const Path& file, std::size_t found) override;

 private:
  const HideWizard& m_wizard;
  CollectingPanel& m_panel;
};

/// What the hide shows on the form: the progress, and in the list what is done.
class HideOnForm : public SessionScreen<HideScreen> {
 public:
  HideOnForm(Session& session, Dialogue& dialogue, const bool& isCancelled, FilesFrame& frame,
             HideRowsModel& rows, std::function<void()> loadingBegins);

  void ShowStage(HideStage stage) override;
  void ShowFile(std::size_t number, std::size_t count, const Path& source, Length size) override;
  void FileDone(std::size_t number) override;
  void ShowProgress(Length value, Length maximum) override;
  void ShowBackup(Length copied, Length size) override;
  void ShowOriginal(OriginalStep step, const Path& original, std::size_t number, std::size_t count) override;
  void ShowReading(Length passed, Length size) override;

 private:
  void ShowNumber(std::size_t number, std::size_t count);

  FileTable& m_list;
  HideRowsModel& m_rows;
  HideFrame& m_frame;
  std::function<void()> m_loadingBegins;
  OriginalStep m_step = OriginalStep::Comparing;
};

}  // namespace tarnel
