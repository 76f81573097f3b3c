#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "cli/shared_files.h"

namespace {

void Write(const std::filesystem::path& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.native());
}

std::string Read(const char* path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file) throw std::runtime_error(std::string("cannot read ") + path);
  return text.str();
}

}  // namespace

/// make_shared_files PAGE FOLDER: writes the manual page, made from PAGE, and the completions into FOLDER.
int main(int argc, char** argv) try {
  if (argc != 3) return 2;
  const std::filesystem::path folder = argv[2];
  Write(folder / "tarnel-cli.1", tarnel::ManualPage(Read(argv[1])));
  Write(folder / "tarnel-cli.bash", tarnel::BashCompletion());
  Write(folder / "_tarnel-cli", tarnel::ZshCompletion());
  Write(folder / "tarnel-cli.fish", tarnel::FishCompletion());
  return 0;
} catch (const std::exception& error) {
  std::cerr << error.what() << "\n";
  return 1;
}
