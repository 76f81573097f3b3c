#include "retrieval/delete_list.h"

#include <set>

#include "base/formats.h"
#include "carrier/format.h"
#include "carrier/tags.h"
#include "retrieval/work_list.h"

namespace tarnel {

DeleteList::DeleteList(const std::vector<ExtractChoice>& chosen, const Catalogue& catalogue,
                       const Path& carrier) {
  ExtractRequest request;
  request.carrier = carrier;
  request.choices = chosen;
  for (const std::size_t row : ExtractWorkList(request, catalogue))
    Add(row, catalogue);
}

void DeleteList::Add(std::size_t mirrorRow, const Catalogue& catalogue) {
  const MirrorRow& row = catalogue.Rows().at(mirrorRow);
  m_rows.push_back({.mirrorRow = mirrorRow,
                    .name = std::string(row.Name()),
                    .size = GroupedKilobytes(ReadNumber(row.Field(tag::kPlainSize))) + " KB",
                    .folder = std::string(row.Folder())});
}

std::vector<std::size_t> DeleteList::MirrorRows() const {
  std::vector<std::size_t> rows;
  for (const Row& row : m_rows)
    rows.push_back(row.mirrorRow);
  return rows;
}

DeleteList::Unchecked DeleteList::Uncheck(std::size_t row) {
  if (m_isRunning) return Unchecked::StaysChecked;
  m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(row));
  return m_rows.empty() ? Unchecked::RemovedLast : Unchecked::Removed;
}

void DeleteList::RemoveSelected(const std::vector<std::size_t>& rows) {
  if (m_isRunning) return;
  const std::set<std::size_t> selected(rows.begin(), rows.end());
  std::size_t row = 0;
  std::erase_if(m_rows, [&](const Row&) { return selected.contains(row++); });
}

}  // namespace tarnel
