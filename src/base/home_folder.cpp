#include "base/home_folder.h"

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

namespace tarnel {

Path AbsoluteFromEnvironment(const char* variable) {
  const char* value = ::getenv(variable);
  return value != nullptr && *value == '/' ? Path(value) : Path();
}

Path HomeFolder() {
  Path home = AbsoluteFromEnvironment("HOME");
  if (!home.empty()) return home;
  const passwd* user = ::getpwuid(::geteuid());
  return user != nullptr && user->pw_dir != nullptr ? Path(user->pw_dir) : Path();
}

}  // namespace tarnel
