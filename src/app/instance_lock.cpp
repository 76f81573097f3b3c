#include "app/instance_lock.h"

#include <cstdlib>

namespace tarnel {

namespace {

std::unique_ptr<File> OpenOrCreate(Files& files, const Path& path) {
  if (files.Stat(path, Files::Links::DontFollow)) return files.OpenToChange(path);
  return files.CreateNew(path, 0600);
}

}  // namespace

InstanceLock::InstanceLock(Files& files, const Path& path) {
  try {
    m_file = OpenOrCreate(files, path);
  } catch (const Error&) {  // no place for a lock file
    return;
  }
  try {
    m_file->Lock();
  } catch (const Error& error) {
    m_isOtherRunning = error.Number() == ErrorNumber::PermissionDenied;
  }
}

Path InstanceLockPath(const Path& settings) {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  const Path folder = runtime == nullptr ? Path() : Path(runtime);
  return folder.is_absolute() ? folder / "tarnel.lock" : settings.parent_path() / "tarnel.lock";
}

}  // namespace tarnel
