#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>

#include "shellint/places.h"

namespace tarnel::bench {

/// "many" holds 100 folders of 100 folders each, and "wide" 50,000. Made once for the whole program.
class Folders {
 public:
  static const Path& Where() {
    static const Folders folders;
    return folders.m_where;
  }

 private:
  Folders() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tree-bench-XXXXXX").native();
    m_where = ::mkdtemp(pattern.data());
    for (int i = 0; i < 100; ++i)
      for (int j = 0; j < 100; ++j)
        std::filesystem::create_directories(m_where / "many" / std::to_string(i) / std::to_string(j));
    std::filesystem::create_directory(m_where / "wide");
    for (int i = 0; i < 50'000; ++i)
      std::filesystem::create_directory(m_where / "wide" / std::to_string(i));
  }
  ~Folders() { std::filesystem::remove_all(m_where); }

  Path m_where;
};

/// A machine whose one place holds those folders.
class Machine : public Places {
 public:
  Path Desktop() override { return Folders::Where(); }
  Path Documents() override { return {}; }
  DriveSurvey Drives() override { return {}; }
  int DrivesHandle() const override { return -1; }
};

}  // namespace tarnel::bench
