#include "retrieval/pending_file.h"

#include "base/permissions.h"
#include "base/temp_names.h"

namespace tarnel {

PendingFile::PendingFile(Folder& folder)
    : m_folder(folder), m_name(RandomName(".") + ".part"), m_file(folder.CreateNew(m_name, 0600)) {}

PendingFile::~PendingFile() {
  if (m_name.empty()) return;
  try {
    m_folder.Remove(m_name);
  } catch (const Error&) {  // the failure that brought us here is the one to report
  }
}

void PendingFile::Complete(std::string_view name, const RestoredAttributes& attributes) {
  SettleMode(*m_file, attributes.mode);
  if (attributes.modified) m_file->SetModified(*attributes.modified);
  m_file->Close();
  m_folder.Rename(m_name, name);
  m_name.clear();
}

}  // namespace tarnel
