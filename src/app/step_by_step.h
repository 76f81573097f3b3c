#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "app/commands.h"

namespace tarnel {

class SettingsFile;

/// A line of a page. Where a button is shown, the text has a gap of several blanks for its picture.
struct GuideLine {
  const char* text;
  std::optional<CommandId> button = std::nullopt;  ///< of the toolbar
};

struct GuidePage {
  const char* frame;  ///< name of the page; the hide guide's come first
  std::vector<GuideLine> above;
  const char* picture;  ///< file name without suffix; it stands between the lines
  std::vector<GuideLine> below = {};
};

/// What leads from one page to another.
struct GuideControl {
  enum class Kind { Arrow, Link } kind;
  const char* name;
  const char* caption;
  std::size_t from;
  std::size_t to;

  bool IsForward() const { return kind == Kind::Link || to > from; }
};

/// The picture book for beginners: two guides of four pages, of which one is open. It executes nothing.
class StepbyStepGuide {
 public:
  /// Milliseconds from one change of colour to the next, and for how long a page blinks.
  static constexpr int kArrBlink = 700;
  static constexpr int kBlinkTime = 10'000;

  static const std::vector<GuidePage>& Pages();
  static const std::vector<GuideControl>& Controls();

  std::size_t Page() const { return m_page; }
  const char* Title() const;

  /// The number of the open page in its guide, from 1, and how many that guide has.
  std::size_t Number() const;
  static constexpr std::size_t kPagesOfAGuide = 4;

  /// The way on: an arrow, on a guide's last page the link to the other guide.
  const GuideControl& Forward() const;
  /// The arrow back; null on a guide's first page.
  const GuideControl* Back() const;

  /// Opens the page that `control` leads to. One that doesn't stand on the open page does nothing.
  void Follow(const GuideControl& control);

  /// One kArrBlink has passed. The way on changes its colour until the page is kBlinkTime old, and is plain
  /// from then on.
  void Tick();
  bool IsBlinking() const { return m_ticks * kArrBlink < kBlinkTime; }
  bool IsForwardLit() const { return m_isLit; }

 private:
  std::size_t m_page = 0;
  int m_ticks = 0;
  bool m_isLit = false;
};

/// Whether the guide opens by itself: "Show" of section "StepbyStep" is "Yes" to the letter, or missing.
bool ShowsGuideAtStart(const SettingsFile& settings);

}  // namespace tarnel
