#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/files.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {

/// A hidden file: its path in the hideout, parts joined by "/", and what is in it.
struct Entry {
  std::string path;
  std::string content;
  friend bool operator==(const Entry&, const Entry&) = default;
};
using Entries = std::vector<Entry>;  ///< oldest first

/// How a run of the program ended, and all that it said.
struct Said {
  int code = 0;
  std::string out;
  std::string err;
};

/// The program called in this process, at a terminal where every question is answered with "y". Asked to stop
/// when it looks for that the n-th time; 0 is never.
Said RunAgreeing(const std::vector<std::string>& words, Files& files, std::size_t cancelAt = 0);

/// Somebody who calls tarnel-cli in this process, answers every question with "y" and keeps each password in
/// a file. A password costs one key derivation per process.
class Person {
 public:
  explicit Person(Files& files) : m_files(files) {}

  Said Says(const std::string& password, const std::vector<std::string>& words) const;
  /// The command line for a process of its own.
  std::vector<std::string> Words(const std::string& password, const std::vector<std::string>& rest) const;
  Path PasswordFile(const std::string& password) const;

  /// From now on the person asks the program to stop when it looks for that the n-th time; 0 is never.
  void CancelAt(std::size_t n) { m_cancelAt = n; }

  /// What the password lists, each with what its extraction gives: "(damaged)" where that is no file. No
  /// entries if nothing opens.
  Entries Reads(const Path& carrier, const std::string& password) const;

 private:
  Files& m_files;
  TempFolder m_passwords;
  std::size_t m_cancelAt = 0;
};

/// Every file below the folder by its path there.
std::map<std::string, std::string> FilesBelow(const Path& folder);

}  // namespace tarnel::test
