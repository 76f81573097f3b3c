#include "app/instance_lock.h"

#include <cstdlib>

#include "app/private_folder.h"

namespace tarnel {

namespace {

/// Another instance may make the file at the same moment.
std::unique_ptr<File> OpenOrCreate(Files& files, const Path& path) {
  try {
    return files.CreateNew(path, 0600);
  } catch (const Error& error) {
    if (error.Number() != ErrorNumber::FileExists) throw;
  }
  return files.OpenToChange(path);
}

std::unique_ptr<File> LockFileIn(const std::vector<Path>& places, Files& files) {
  for (const Path& path : places) {
    try {
      MakePrivateFolder(path.parent_path(), files);
      return OpenOrCreate(files, path);
    } catch (const Error&) {  // no place for a lock file
    }
  }
  return nullptr;
}

}  // namespace

InstanceLock::InstanceLock(Files& files, const std::vector<Path>& places)
    : m_file(LockFileIn(places, files)) {
  if (m_file == nullptr) return;
  try {
    m_file->Lock();
  } catch (const Error& error) {
    m_isOtherRunning = error.Number() == ErrorNumber::PermissionDenied;
  }
}

std::vector<Path> InstanceLockPlaces(const Path& settings) {
  constexpr const char* name = "tarnel.lock";
  std::vector<Path> places;
  const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime != nullptr && Path(runtime).is_absolute()) places.push_back(Path(runtime) / name);
  places.push_back(settings.parent_path() / name);
  return places;
}

}  // namespace tarnel
