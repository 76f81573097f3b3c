#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "base/attempt.h"
#include "base/file_streams.h"
#include "base/files.h"
#include "base/partial_file.h"
#include "carrier/load_hideout.h"
#include "retrieval/block_source.h"

namespace tarnel {

/// What the rewriting operations show.
class RewriteScreen : public ReadingScreen {
 public:
  virtual void ShowProgress(Length value, Length maximum) = 0;

  /// The new carrier is in the old one's place: from here on nothing can be cancelled.
  virtual void CarrierReplaced() {}

  /// The reload found no entry: the visible list is to be emptied, the status bar shows "0 File(s) ".
  virtual void HideoutEmptied() = 0;
};

/// What to do with a file that already has the temporary carrier's name: an interrupted run left it, or it is
/// a file of the user's own.
enum class Leftover { Refuse, Replace };

enum class RewriteEnding {
  Done,         ///< the carrier is the new one, and durable
  Cancelled,    ///< the carrier has its old bytes; nothing is left beside it
  Aborted,      ///< at an error; otherwise like Cancelled
  NotReplaced,  ///< the carrier has its old bytes; the complete new one lies beside it under the ".tmp" name
};

/// In what one rewriter differs from the others.
struct RewriteManner {
  /// ReadFirst: the carrier is made writable for the time of the run, and a cancel inside a copy gives it its
  /// mode back. ReadLast: nothing is known of the attributes while a copy runs, so a cancel inside one sets
  /// them to 0, and a read-only carrier ends up writable.
  enum class SavedAttributes { ReadFirst, ReadLast } savedAttributes;
  ErrorHandler handler;
  std::function<Question(const Path& temporary, const Error& cause)> notReplaced;
};

/// An entry as the catalogue knows it.
struct KnownEntry {
  Position start;
  Length size = 0;  ///< of the payload
  EntryTail tail;
  Position End() const { return start + size + tail.length; }
};

/// The frame that delete, update and change of password share: what stays and what is made anew goes, in file
/// order, through a temporary carrier beside the carrier; one rename puts that in the carrier's place. Until
/// then the carrier keeps its bytes, so that no way out can lose them.
///
/// The carrier stays locked until it is replaced or the object dies. A carrier that is reached through a
/// symbolic link is replaced where it really lies. A carrier with several names in its folder loses them to
/// the old bytes.
class CarrierRewrite {
 public:
  /// Locks the carrier and makes the temporary one. Throws Error and leaves all as it was: PermissionDenied
  /// for a carrier that another process works on, FileExists for a leftover that may not be replaced, and
  /// BadRecordNumber for an entry of `treated` that doesn't lie where the catalogue says: such positions
  /// would cut through other entries.
  CarrierRewrite(const Path& carrier, const std::vector<KnownEntry>& treated, RewriteManner manner,
                 Leftover leftover, Files& files, RewriteScreen& screen);

  /// The carrier as it still is, for reading.
  File& Carrier() { return *m_carrier; }
  Length CarrierSize() const { return m_carrierSize; }
  Length Written() const { return m_written; }
  const Path& TemporaryPath() const { return m_temporaryPath; }

  /// Copies what lies from the keep position up to before `end`, and moves the keep position there. Nothing
  /// happens if the keep position is not below it.
  void KeepUntil(Position end);
  void KeepRest() { KeepUntil(Position{m_carrierSize + 1}); }
  /// Moves the keep position on, over bytes that are to go.
  void PassOver(Position behind) { m_keep = std::max(m_keep, behind); }

  /// Lets `part` append to the temporary carrier. On Retry what it wrote is taken back and it runs again.
  /// Ignored means that it appended nothing; Append ends the run there, as Abort does, for without the part
  /// there is no whole carrier. A carrier of 2 GiB or more is an Error DiskFull.
  using Part = std::function<void(ByteSink&)>;
  Outcome TryAppend(const Part& part);
  void Append(const Part& part);

  /// The stretch [from, from + length) of the carrier, in blocks that count in the progress.
  std::unique_ptr<ByteSource> Stretch(Position from, Length length);
  /// `source`, in blocks that count in the progress.
  std::unique_ptr<ByteSource> InBlocks(ByteSource& source, Length length);
  void SetProgress(Length value, Length maximum);

  /// Puts the temporary carrier in the carrier's place, written through, with the carrier's mode, owner and
  /// group as TakeAccessOf gives them; nothing is locked then. A cancel that was requested by the time all is
  /// written ends the run, and leaves the carrier's mode as it was. False if the rename failed, which the
  /// person has been told: Abort at giving the old carrier its mode back changes nothing of that. Once the
  /// rename is made Abort means no more than Ignore. Where a sync fails, Retry writes all bytes again first:
  /// those kept from the carrier, the others if they still read as they were written. Yields while the
  /// platform writes.
  bool Replace();

  /// Runs a statement under the manner's handler; Ignore ends the run as Abort does.
  void Must(const std::function<void()>& statement);

 private:
  class TemporarySink;

  struct MadeBlock {
    std::size_t size = 0;
    std::size_t hash = 0;
  };
  /// A stretch of the temporary carrier: copied from the carrier, or made of these blocks.
  struct Piece {
    Length at = 0;
    Length length = 0;
    std::optional<Position> from = std::nullopt;
    std::vector<MadeBlock> made = {};
  };

  Outcome TryWrite(const std::function<void(TemporarySink&)>& part);
  void CopyStretch(Position from, Length length, TemporarySink& sink);
  BlockCount CountBlocks(Length length);
  void MustHold(const KnownEntry& entry);
  void RefuseOrRemoveLeftover(Leftover leftover);
  void GiveAttributesBack();
  void SetCarrierMode(mode_t mode);
  void SyncTemporary();
  void WriteAgain();
  void WriteAgain(const Piece& piece);
  void LockTemporary();
  bool RenameOver();

  Files& m_files;
  RewriteScreen& m_screen;
  RewriteManner m_manner;
  Path m_carrierPath;
  Path m_temporaryPath;
  std::unique_ptr<File> m_carrier;
  std::unique_ptr<File> m_temporary;
  std::optional<PartialFile> m_partial;
  std::optional<mode_t> m_savedMode;
  Length m_carrierSize = 0;
  Length m_written = 0;
  bool m_hasRest = false;         ///< of a part that has failed, behind m_written
  std::vector<Piece> m_pieces;    ///< up to m_written
  bool m_mustWriteAgain = false;  ///< a sync has failed, which may have lost any of them
  Position m_keep;
  Length m_progress = 0;
  Length m_maximum = 0;
};

/// How a run ends that was stopped before the carrier was replaced.
RewriteEnding EndingOf(const Stop& stop);

/// Reads the current hideout again, whatever is open.
LoadResult Reload(const Key& password, Reading& reading, RewriteScreen& screen);

}  // namespace tarnel
