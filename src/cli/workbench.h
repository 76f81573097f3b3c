#pragma once

#include <string>
#include <vector>

#include "base/files.h"
#include "carrier/open_hideout.h"
#include "cli/messages.h"
#include "cli/options.h"
#include "cli/password_source.h"
#include "cli/terminal.h"
#include "cli/terminal_dialogue.h"

namespace tarnel {

/// What every verb works with.
struct Surroundings {
  const GlobalOptions& options;
  Terminal& terminal;
  Files& files;
  const Variables& variables;
  Messages& messages;
  TerminalDialogue& talk;
};

/// One carrier and what a password opens in it.
class Workbench {
 public:
  /// `given` is the carrier as the person named it. Symbolic links are followed, so that files beside it lie
  /// beside the real one. Throws CliFailure(CarrierNotFound), or Error for what is no readable regular file.
  Workbench(const std::string& given, Surroundings& around);

  /// Gets the password and opens the hideout. Throws CliFailure: what ObtainPassword throws, NoHideout,
  /// Cancelled.
  void Open();
  /// False if no hideout opens. Throws CliFailure(Cancelled).
  bool TryOpen(const Secret& password);

  const Path& Carrier() const { return m_carrier; }
  const std::string& GivenName() const { return m_given; }
  Reading& GetReading() { return m_reading; }
  const CurrentHideout& Current() const { return m_current; }
  /// The entries of the open hideout, newest first.
  const std::vector<MirrorRow>& Rows() const { return m_catalogue.Rows(); }
  const HideoutKey& Key() const { return *m_catalogue.Roots().front()->hideout; }

  /// The title as the platform's bytes.
  std::string Title() const;
  std::string Algorithm() const;
  /// Damaged if the walk broke off at an entry that can't be, else `otherwise`.
  ExitCode CodeOfReading(ExitCode otherwise) const;

 private:
  Surroundings& m_around;
  std::string m_given;
  Path m_carrier;
  Catalogue m_catalogue;
  FileTypes m_types;
  ReadingGuards m_guards;
  CurrentHideout m_current;
  Reading m_reading;
};

/// Throws CliFailure(Busy) if another process works on the carrier.
void RefuseBusy(const Path& carrier, Files& files);

/// The absolute path that names the same file; a last component that is a symbolic link stays one.
Path FullPath(const std::string& given, Files& files);

}  // namespace tarnel
