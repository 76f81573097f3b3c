#include "tests/support/surroundings.h"

#include <linux/capability.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <stdexcept>
#include <system_error>

namespace tarnel::test {

namespace {

void Set(const char* name, const std::optional<std::string>& value) {
  if (value)
    ::setenv(name, value->c_str(), 1);
  else
    ::unsetenv(name);
}

std::optional<std::string> Get(const char* name) {
  const char* const value = ::getenv(name);
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

/// Makes `effective` this thread's effective capabilities, and leaves there what they were.
bool Exchange(unsigned (&effective)[2]) {
  __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
  __user_cap_data_struct data[2] = {};
  if (::syscall(SYS_capget, &header, data) != 0) return false;
  for (const int word : {0, 1})
    std::swap(data[word].effective, effective[word]);
  return ::syscall(SYS_capset, &header, data) == 0;
}

}  // namespace

Variable::Variable(const char* name, const std::optional<std::string>& value)
    : m_name(name), m_before(Get(name)) {
  Set(name, value);
}

Variable::~Variable() {
  Set(m_name, m_before);
}

Umask::Umask(mode_t mask) : m_before(::umask(mask)) {}

Umask::~Umask() {
  ::umask(m_before);
}

CurrentFolder::CurrentFolder(const Path& folder) : m_before(std::filesystem::current_path()) {
  std::filesystem::current_path(folder);
}

CurrentFolder::~CurrentFolder() {
  std::error_code ignored;
  std::filesystem::current_path(m_before, ignored);
}

OrdinaryUser::OrdinaryUser() : m_before{} {
  if (!Exchange(m_before)) throw std::runtime_error("test support: cannot lay down root's rights");
}

OrdinaryUser::~OrdinaryUser() {
  if (!Exchange(m_before)) std::terminate();
}

}  // namespace tarnel::test
