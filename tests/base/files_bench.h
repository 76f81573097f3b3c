#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/support/faulty_files.h"
#include "tests/support/scripted_dialogue.h"
#include "tests/support/surroundings.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {

using testing::ElementsAre;

/// A folder of its own, the real files, and a person to be asked.
class FilesBench : public testing::Test {
 protected:
  /// Runs `statement` undisturbed, then once for each of its operations with that one failing.
  void FailEach(const std::function<void(FaultyFiles&, bool fails)>& statement) {
    std::size_t count = 0;
    for (std::size_t k = 0; k <= count; ++k) {
      FaultyFiles files(posix);
      if (k > 0) files.Fail({.at = k, .writes = Writes::FirstHalf});
      SCOPED_TRACE("failing operation " + std::to_string(k));
      statement(files, k > 0);
      if (k == 0) count = files.Count();
    }
  }

  static std::vector<std::string> OperationsOf(const FaultyFiles& files) {
    std::vector<std::string> names;
    for (const Operation& operation : files.Record())
      names.push_back(operation.name);
    return names;
  }

  static Error ErrorOf(const std::function<void()>& statement) {
    try {
      statement();
    } catch (const Error& error) {
      return error;
    }
    ADD_FAILURE() << "nothing was thrown";
    return Error(ErrorNumber::ObjectNotSet, "");
  }

  void Link(const std::string& target, std::string_view name) {
    std::filesystem::create_symlink(target, folder / name);
  }

  TempFolder folder;
  PosixFiles posix;
  Scripted<> person;
};

}  // namespace tarnel::test
