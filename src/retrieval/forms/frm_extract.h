#pragma once

#include <QTimer>
#include <memory>
#include <optional>

#include "app/choice.h"
#include "formkit/working_form.h"
#include "retrieval/run_extract.h"

class QCheckBox;
class QRadioButton;

namespace tarnel {

class FolderWatch;
class PathField;
class Places;
class ucDirectoryTree;

/// Asks where to extract to and how. Nothing is extracted here.
class FrmExtract : public WorkingForm {
  Q_OBJECT

 public:
  FrmExtract(Session& session, Dialogue& dialogue, Choice choice, QWidget* parent);
  /// With another machine's folders.
  FrmExtract(Session& session, Dialogue& dialogue, Choice choice, std::unique_ptr<Places> places,
             std::unique_ptr<FolderWatch> watch, QWidget* parent);
  ~FrmExtract() override;

  /// Shows it and waits. What is to be extracted, for which the target was tried; nothing after Cancel, or
  /// where the carrier was read again, so that what was chosen is no more.
  std::optional<ExtractRequest> Ask();

 protected:
  QPushButton* CancelButton() const override { return m_cancel; }

 private:
  void Build(std::unique_ptr<Places> places, std::unique_ptr<FolderWatch> watch);
  QWidget* MakeFrame1();
  QWidget* MakeFrame2();
  QWidget* MakeButtons();
  void Connect();
  void ShowCount();
  void TreeActivate();
  void TakeTreePath();
  void FollowTree();
  void ShowTyped();
  void ShowInTree(const Path& folder);
  void TextChanged();
  void MakeFolder();
  void PressExtract();
  bool MayExtract(const ExtractRequest& request);
  ExtractRequest Request() const;

  const Choice m_choice;
  Path m_desktop;
  std::optional<ExtractRequest> m_accepted;
  bool m_isTyped = false;      ///< the text is the person's, and not the tree's
  bool m_isTreeMoved = false;  ///< the tree is being moved to what was typed
  QTimer m_afterTyping;
  ucDirectoryTree* m_tree = nullptr;
  QPushButton* m_newFolder = nullptr;
  PathField* m_extractTo = nullptr;
  QRadioButton* m_all = nullptr;
  QRadioButton* m_selected = nullptr;
  QCheckBox* m_useFolder = nullptr;
  QCheckBox* m_overwrite = nullptr;
  QPushButton* m_extract = nullptr;
  QPushButton* m_cancel = nullptr;
};

}  // namespace tarnel
