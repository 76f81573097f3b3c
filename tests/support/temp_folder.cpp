#include "tests/support/temp_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace tarnel::test {

namespace fs = std::filesystem;

namespace {

constexpr uid_t nobody = 65534;

void Check(bool ok, const std::string& what) {
  if (!ok) throw std::runtime_error("test support: " + what);
}

void MakeRemovable(const Path& folder) {
  std::error_code ignored;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder, ignored)) {
    if (!entry.is_symlink() && entry.is_directory())
      fs::permissions(entry.path(), fs::perms::owner_all, fs::perm_options::add, ignored);
  }
}

}  // namespace

TempFolder::TempFolder() {
  std::string name = (fs::temp_directory_path() / "test-XXXXXX").native();
  Check(::mkdtemp(name.data()) != nullptr, "mkdtemp");
  m_where = name;
}

TempFolder::~TempFolder() {
  MakeRemovable(m_where);
  std::error_code ignored;
  fs::remove_all(m_where, ignored);
}

Path TempFolder::Put(std::string_view name, std::string_view bytes, mode_t mode) const {
  Path path = m_where / name;
  fs::create_directories(path.parent_path());
  WriteAll(path, bytes, mode);
  return path;
}

std::vector<std::string> TempFolder::Names() const {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_where))
    names.push_back(entry.path().lexically_relative(m_where).native());
  std::sort(names.begin(), names.end());
  return names;
}

std::string ReadAll(const Path& path) {
  std::ifstream file(path, std::ios::binary);
  Check(file.good(), "cannot read " + path.native());
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return std::move(bytes).str();
}

void WriteAll(const Path& path, std::string_view bytes, mode_t mode) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  Check(file.good(), "cannot write " + path.native());
  Check(::chmod(path.c_str(), mode) == 0, "chmod");
}

std::string Pattern(std::size_t size, unsigned seed) {
  std::mt19937 generator(seed);
  std::string bytes(size, '\0');
  for (char& byte : bytes)
    byte = static_cast<char>(generator() & 0xFF);
  return bytes;
}

OrdinaryUser::OrdinaryUser(const TempFolder& folder) : m_wasRoot(::geteuid() == 0) {
  if (!m_wasRoot) return;
  Check(::chown(folder.Where().c_str(), nobody, nobody) == 0, "chown");
  for (const std::string& name : folder.Names())
    Check(::lchown((folder / name).c_str(), nobody, nobody) == 0, "chown");
  Check(::setegid(nobody) == 0 && ::seteuid(nobody) == 0, "seteuid");
}

OrdinaryUser::~OrdinaryUser() {
  if (m_wasRoot && (::seteuid(0) != 0 || ::setegid(0) != 0)) std::terminate();
}

}  // namespace tarnel::test
