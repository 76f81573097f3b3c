#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "carrier/catalogue.h"
#include "retrieval/run_extract.h"

namespace tarnel {

/// The list of `FrmDelete`: what is to go, as far as the person hasn't taken it off the list again.
class DeleteList {
 public:
  struct Row {
    std::size_t mirrorRow;
    std::string name;    ///< stored text
    std::string size;    ///< "12 KB"
    std::string folder;  ///< stored text
  };

  /// One row for each chosen file, and for each file of a chosen folder, found as extraction finds them.
  DeleteList(const std::vector<ExtractChoice>& chosen, const Catalogue& catalogue, const Path& carrier);

  const std::vector<Row>& Rows() const { return m_rows; }
  std::vector<std::size_t> MirrorRows() const;

  /// While the deletion runs, rows stay and stay checked.
  void BeginRunning() { m_isRunning = true; }
  /// The deletion was refused before it began.
  void EndRunning() { m_isRunning = false; }
  bool Running() const { return m_isRunning; }

  enum class Unchecked { StaysChecked, Removed, RemovedLast };
  /// Unchecking a row takes it off the list. RemovedLast: the form closes.
  Unchecked Uncheck(std::size_t row);

  /// The Delete key: takes the selected rows off. The form stays, even with an empty list.
  void RemoveSelected(const std::vector<std::size_t>& rows);

 private:
  void Add(std::size_t mirrorRow, const Catalogue& catalogue);

  std::vector<Row> m_rows;
  bool m_isRunning = false;
};

}  // namespace tarnel
