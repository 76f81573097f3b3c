#pragma once

#include <utility>

#include "app/session.h"
#include "base/dialogue.h"

namespace tarnel {

/// A screen whose questions and yields are another dialogue's, and whose cancel request is a flag of the
/// window that shows it. `Screen` is any port derived from Dialogue; what it adds is left to the subclass.
template <class Screen>
class ForwardingScreen : public Screen {
 public:
  /// Both must outlive the screen.
  ForwardingScreen(Dialogue& dialogue, const bool& isCancelled)
      : m_dialogue(dialogue), m_isCancelled(isCancelled) {}

  Answer Ask(const Question& question) override { return m_dialogue.Ask(question); }
  void Yield() override { m_dialogue.Yield(); }
  bool CancelRequested() const override { return m_isCancelled; }

 private:
  Dialogue& m_dialogue;
  const bool& m_isCancelled;
};

/// The same for a port derived from ReadingScreen: the session hears what reading comes to. Faults of the
/// carrier are told as ReadingScreen tells them. Progress of the reading is left to the subclass.
template <class Screen>
class SessionScreen : public ForwardingScreen<Screen> {
 public:
  SessionScreen(Session& session, Dialogue& dialogue, const bool& isCancelled)
      : ForwardingScreen<Screen>(dialogue, isCancelled), m_session(session) {}

  void HideoutLoaded(TreeNode& root, std::size_t files) override { m_session.HideoutLoaded(root, files); }
  void HideoutGone() override { m_session.HideoutGone(); }

 protected:
  Session& GetSession() { return m_session; }

 private:
  Session& m_session;
};

/// The same for a RewriteScreen, which can leave a hideout without files.
template <class Screen>
class RewritingSessionScreen : public SessionScreen<Screen> {
 public:
  using SessionScreen<Screen>::SessionScreen;

  void HideoutEmptied() override { this->GetSession().HideoutEmptied(); }
};

/// Settles the views when an operation is over, whatever its end was.
class SettledAtEnd {
 public:
  explicit SettledAtEnd(Session& session) : m_session(session) {}
  SettledAtEnd(const SettledAtEnd&) = delete;
  SettledAtEnd& operator=(const SettledAtEnd&) = delete;
  ~SettledAtEnd() { m_session.SettleTree(); }

 private:
  Session& m_session;
};

}  // namespace tarnel
