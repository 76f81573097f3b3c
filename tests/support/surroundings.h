#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "base/files.h"

namespace tarnel::test {

/// An environment variable with another value, or with none, until the end of the scope.
class Variable {
 public:
  Variable(const char* name, const std::optional<std::string>& value);
  ~Variable();
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const char* m_name;
  std::optional<std::string> m_before;
};

/// Another umask until the end of the scope.
class Umask {
 public:
  explicit Umask(mode_t mask);
  ~Umask();
  Umask(const Umask&) = delete;
  Umask& operator=(const Umask&) = delete;

 private:
  mode_t m_before;
};

/// Another current folder until the end of the scope.
class CurrentFolder {
 public:
  explicit CurrentFolder(const Path& folder);
  ~CurrentFolder();
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;

 private:
  Path m_before;
};

/// While it lives, a test that runs as root is held to the permissions of its files like anybody else.
class OrdinaryUser {
 public:
  OrdinaryUser();
  ~OrdinaryUser();
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  unsigned m_before[2];  ///< the effective capabilities
};

}  // namespace tarnel::test
