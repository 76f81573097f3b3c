#include "app/private_folder.h"

namespace tarnel {

void MakePrivateFolder(const Path& folder, Files& files) {
  for (const Path& missing : {folder.parent_path(), folder}) {
    if (files.Stat(missing)) continue;
    try {
      files.CreateFolder(missing, 0700);
    } catch (const Error& error) {
      if (error.Number() != ErrorNumber::FileExists) throw;
    }
  }
}

}  // namespace tarnel
