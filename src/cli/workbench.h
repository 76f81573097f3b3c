#pragma once

#include <string>
#include <vector>

#include "base/files.h"
#include "carrier/open_hideout.h"
#include "cli/json_output.h"
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
  Json& report;  ///< printed at the end of the run where --json is given
};

/// One carrier and what a password opens in it.
class Workbench {
 public:
  /// `given` is the carrier as the person named it. Symbolic links are followed, so that files beside it lie
  /// beside the real one. Throws CliFailure(CarrierNotFound), or Error for what is no readable regular file.
  Workbench(const std::string& given, Surroundings& around);

  /// Gets the password and opens the hideout. Throws CliFailure: what ObtainPassword and OpenWith throw.
  void Open();
  /// Throws CliFailure: what TryOpen throws, NoHideout, and where nothing can be read of a hideout that is or
  /// may be there, Damaged or Failed; but Busy for all of these while another process works on the carrier.
  void OpenWith(const Key& password);
  /// False if no hideout opens. Throws CliFailure: Cancelled, Unreadable for what the disk doesn't give.
  bool TryOpen(const Key& password);

  /// What the last opening has found wrong with the carrier.
  const ChainFaults& Faults() const { return m_faults; }
  void WarnOfFaults() const;

  const Path& Carrier() const { return m_carrier; }
  const std::string& GivenName() const { return m_given; }
  Reading& GetReading() { return m_reading; }
  const CurrentHideout& Current() const { return m_current; }
  /// The entries of the open hideout, newest first.
  const std::vector<MirrorRow>& Rows() const { return m_catalogue.Rows(); }

  /// The title as the platform's bytes.
  std::string Title() const;
  std::string Algorithm() const;
  /// Damaged where something is wrong with the carrier's chain, PartlyDone where entries are closed to this
  /// version and `otherwise` is Done; else `otherwise`.
  ExitCode CodeOfReading(ExitCode otherwise) const;

 private:
  Surroundings& m_around;
  std::string m_given;
  Path m_carrier;
  Catalogue m_catalogue;
  ReadingGuards m_guards;
  CurrentHideout m_current;
  Reading m_reading;
  ChainFaults m_faults;
};

/// Throws CliFailure(Busy) if another process works on the carrier.
void RefuseBusy(const Path& carrier, Files& files);

/// The absolute path that names the same file; a last component that is a symbolic link stays one.
Path FullPath(const std::string& given, Files& files);

}  // namespace tarnel
