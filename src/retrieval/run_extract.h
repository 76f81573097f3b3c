#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "carrier/format.h"
#include "carrier/reading.h"

namespace tarnel {

/// What an extraction shows while it runs.
class ExtractScreen : public virtual Dialogue {
 public:
  /// The target of `entry` is there already. Asks `question` (questions::Overwrite), which more can be shown
  /// with.
  virtual Answer AskToOverwrite(const Question& question, const FileStat&, const MirrorRow&) {
    return Ask(question);
  }
  /// File `number` of `count` begins. Whatever is said until the next call belongs to it.
  virtual void ShowFile(std::size_t number, std::size_t count, std::string_view storedName, Length size) = 0;
  /// Where it goes, once that is known.
  virtual void ShowTarget(const Path& target) = 0;
  virtual void ShowProgress(Length value, Length maximum) = 0;
};

/// A row of the visible list that was chosen: a file, or a folder that stands for all whose folder text
/// begins with it.
struct ExtractChoice {
  enum class Kind { File, Folder } kind = Kind::File;
  std::size_t row = 0;     ///< File: index in the mirror
  std::string itemFolder;  ///< Folder: its "?ItemFolder=<", stored text
};

struct ExtractRequest {
  Path carrier;      ///< whose rows are meant
  Path target;       ///< "ExtractTo"; made if missing, one level only
  bool all = false;  ///< every row of the carrier; `choices` plays no part
  std::vector<ExtractChoice> choices;
  bool useFolderNames = true;
  bool overwriteAll = false;
  /// Of the node selected in the tree, which folder texts are shortened by: its "?ItemFolder=<" and its
  /// FolderPath.
  std::string nodeItemFolder{kRootFolder};
  std::string nodePath;
};

enum class ExtractEnding { Done, NothingChosen, Cancelled, Aborted };

struct ExtractResult {
  ExtractEnding ending = ExtractEnding::Done;
  std::size_t extracted = 0;
  std::vector<Path> keptExisting;    ///< targets that stood already and were kept
  std::vector<std::string> damaged;  ///< stored names of entries that don't authenticate; no file was made
  std::vector<std::string> leftOut;  ///< stored names passed over by Ignore
};

/// Takes entries of the catalogue out of the carrier into the target folder. Each file appears under its name
/// only when it is whole and authentic; until then it lies beside it under a random name, which is removed on
/// every way out. Nothing is ever written outside the target folder: a name or folder with "..", an absolute
/// path, an empty component, or a symbolic link on the way is an Error BadFileName that names it. A target
/// that is a folder or the carrier itself is an Error PathFileAccess. Cancel is looked at before each file
/// and behind each full block.
ExtractResult RunExtract(const ExtractRequest& request, Reading& reading, ExtractScreen& screen);

}  // namespace tarnel
