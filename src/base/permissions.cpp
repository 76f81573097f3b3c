#include "base/permissions.h"

#include <cerrno>

namespace tarnel {

namespace {

constexpr uid_t kSameOwner = static_cast<uid_t>(-1);
constexpr mode_t kGroupShift = 3;

/// False if the platform refuses; an owner that it can't express is EINVAL.
template <class Call>
bool IsLetDo(Call&& call) {
  try {
    call();
    return true;
  } catch (const Error& error) {
    if (!IsRefusalOfModes(error.Code()) && error.Code() != EINVAL) throw;
    return false;
  }
}

void TakeOwners(const FileStat& model, File& file) {
  const FileStat now = file.Stat();
  if (now.owner == model.owner && now.group == model.group) return;
  if (IsLetDo([&] { file.SetOwner(model.owner, model.group); })) return;
  if (now.group != model.group) IsLetDo([&] { file.SetOwner(kSameOwner, model.group); });
}

bool TakesAccessList(File& model, File& file) {
  return IsLetDo([&] {
    const std::string list = model.AccessList();
    if (file.AccessList() != list) file.SetAccessList(list);
  });
}

/// Whoever is in the new group may have been one of the others before, and the other way round.
mode_t ForAnotherGroup(mode_t mode) {
  const mode_t both = (mode & S_IRWXG) >> kGroupShift & mode & S_IRWXO;
  constexpr mode_t strangers = S_IRWXG | S_IRWXO;
  return (mode & ~strangers) | both << kGroupShift | both;
}

}  // namespace

void SettleMode(File& file, mode_t mode) {
  const mode_t now = file.Stat().mode;
  if (now == mode) return;
  try {
    file.SetMode(mode);
  } catch (const Error& error) {
    if (!IsRefusalOfModes(error.Code()) || (now & mode) != mode) throw;
  }
}

void TakeAccessOf(File& model, File& file, mode_t mode) {
  const FileStat wanted = model.Stat();
  TakeOwners(wanted, file);
  const FileStat now = file.Stat();
  if (now.group != wanted.group) mode = ForAnotherGroup(mode);
  if (now.group != wanted.group || now.owner != wanted.owner) mode &= kPermissionBits;
  if (!TakesAccessList(model, file)) mode &= S_IRWXU;
  SettleMode(file, mode);
}

}  // namespace tarnel
