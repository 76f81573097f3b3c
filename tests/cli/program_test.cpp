#include "tests/cli/program.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace tarnel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const Start kAtTerminal = {.terminal = Start::Terminal::Given};

class RealProgram : public testing::Test {
 protected:
  RealProgram() {
    folder.Put("carrier", Pattern(5000));
    folder.Put("a.txt", "alpha");
    folder.Put("key", "secret\n", 0600);
  }
  std::string At(const char* name) const { return (folder / name).native(); }
  /// Words with the password from the file; "@name" is a path in the folder.
  std::vector<std::string> Words(std::vector<std::string> words) const {
    for (std::string& word : words) {
      if (word.starts_with('@')) word = At(word.c_str() + 1);
    }
    words.insert(words.end(), {"--password-file", At("key")});
    return words;
  }
  int Run(std::vector<std::string> words, const Start& start = {}) const {
    Program program(Words(std::move(words)), start);
    const int code = program.Wait();
    if (code != 0) std::cerr << program.Err();
    return code;
  }
  std::uintmax_t SizeOf(const char* name) const {
    std::error_code failed;
    const auto size = std::filesystem::file_size(folder / name, failed);
    return failed ? 0 : size;
  }
  /// A file so large that hiding it can be interrupted, without taking room.
  void PutLargeFile() const {
    folder.Put("large", "");
    std::filesystem::resize_file(folder / "large", 1500U << 20);
  }

  TempFolder folder;
};

TEST_F(RealProgram, APictureStaysAPictureAndAProgramStillRuns) {
  std::filesystem::copy_file("/bin/true", folder / "true");
  ASSERT_EQ(Run({"hide", "@true", "@a.txt"}), 0);
  EXPECT_EQ(std::system((folder / "true").c_str()), 0);
  ASSERT_EQ(Run({"extract", "@true", "--to", "@out"}), 0);
  EXPECT_EQ(ReadAll(folder / "out/a.txt"), "alpha");
}

TEST_F(RealProgram, PasswordsAreTypedWithoutEcho) {
  Program hide({"hide", At("carrier"), At("a.txt")}, kAtTerminal);
  hide.Expect("Password: ");
  EXPECT_FALSE(hide.EchoIsOn());
  hide.Type(
          "sec\x7f"
          "cret\n")
      .Expect("Confirmation: ")
      .Type("secret\n");
  EXPECT_EQ(hide.Wait(), 0) << hide.Err();
  EXPECT_TRUE(hide.EchoIsOn());
  EXPECT_EQ(hide.Shown().find("cret"), std::string::npos);
  EXPECT_EQ(Run({"list", "@carrier"}), 0);
}

TEST_F(RealProgram, EchoComesBackWhateverEndsThePrompt) {
  for (const char* keys : {"\x03", "\x1c", "\x04", "half\x03"}) {
    Program program({"list", At("carrier")}, kAtTerminal);
    program.Expect("Password: ").Type(keys);
    EXPECT_EQ(program.Wait(), 130) << program.Err();
    EXPECT_TRUE(program.EchoIsOn());
  }
  for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
    Program program({"list", At("carrier")}, kAtTerminal);
    program.Expect("Password: ").Signal(number);
    EXPECT_EQ(program.Wait(), 130) << program.Err();
    EXPECT_TRUE(program.EchoIsOn());
  }
}

TEST_F(RealProgram, WithoutATerminalNobodyIsAsked) {
  Program program({"list", At("carrier")}, {.inChild = [] { ::unsetenv("TARNEL_PASSWORD_FILE"); }});
  EXPECT_EQ(program.Wait(), 2);
  EXPECT_THAT(program.Err(), HasSubstr("--password-file"));
}

TEST_F(RealProgram, ThePasswordCanComeThroughStandardInput) {
  ASSERT_EQ(Run({"hide", "@carrier", "@a.txt"}), 0);
  Program program({"list", At("carrier"), "--password-file", "-"}, {.input = "secret\r\nmore"});
  EXPECT_EQ(program.Wait(), 0) << program.Err();
  EXPECT_THAT(program.Out(), HasSubstr("a.txt\n"));
}

TEST_F(RealProgram, AQuestionIsAskedAtTheTerminal) {
  ASSERT_EQ(Run({"hide", "@carrier", "@a.txt"}), 0);
  folder.Put("out/a.txt", "there");
  Program program(Words({"extract", "@carrier", "--to", "@out"}), kAtTerminal);
  program.Expect("overwrite").Expect("[N]o").Type("y\n");
  EXPECT_EQ(program.Wait(), 0) << program.Err();
  EXPECT_EQ(ReadAll(folder / "out/a.txt"), "alpha");
}

TEST_F(RealProgram, ASignalInTheMiddleOfAHideLeavesTheCarrierAsItWas) {
  PutLargeFile();
  const std::string before = ReadAll(folder / "carrier");
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    Program hide(Words({"hide", "@carrier", "@large"}));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (SizeOf("carrier") < 1000000 && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    hide.Signal(number);
    hide.Signal(number);
    EXPECT_EQ(hide.Wait(), 130) << hide.Err();
    EXPECT_TRUE(ReadAll(folder / "carrier") == before);
    EXPECT_EQ(SizeOf("carrier.bak"), 0U);
  }
}

TEST_F(RealProgram, AFileThatMayNotGrowLeavesTheCarrierAsItWas) {
  folder.Put("big", Pattern(300000));
  const std::string before = ReadAll(folder / "carrier");
  for (const rlim_t limit : {rlim_t{3000}, rlim_t{100000}}) {
    Program hide(Words({"hide", "@carrier", "@big"}), {.inChild = [limit] {
                   const rlimit most{limit, limit};
                   ::setrlimit(RLIMIT_FSIZE, &most);
                 }});
    EXPECT_EQ(hide.Wait(), 5) << hide.Err();
    EXPECT_TRUE(ReadAll(folder / "carrier") == before) << limit;
    EXPECT_EQ(SizeOf("carrier.bak"), 0U) << limit;
  }
}

TEST_F(RealProgram, ATinyFileSystemThatIsFullLeavesTheCarrierAsItWas) {
  const Path mount = folder / "tiny";
  std::filesystem::create_directory(mount);
  if (std::system(("mount -t tmpfs -o size=256k tarnel-test " + mount.native() + " 2>/dev/null").c_str()) !=
      0) {
    GTEST_SKIP() << "a small file system can't be mounted here";
  }
  folder.Put("tiny/carrier", Pattern(50000));
  folder.Put("big", Pattern(400000));
  EXPECT_EQ(Run({"hide", "@tiny/carrier", "@big", "--no-input"}), 5);
  const std::string after = ReadAll(mount / "carrier");
  const bool hasBackup = std::filesystem::exists(mount / "carrier.bak");
  EXPECT_EQ(std::system(("umount " + mount.native()).c_str()), 0);
  EXPECT_TRUE(after == Pattern(50000));
  EXPECT_FALSE(hasBackup);
}

TEST_F(RealProgram, OutputThatCannotBeWrittenIsNeverASuccess) {
  ASSERT_EQ(Run({"hide", "@carrier", "@a.txt"}), 0);
  EXPECT_EQ(Run({"list", "@carrier"}, {.output = "/dev/full"}), 1);
  EXPECT_NE(Run({"list", "@carrier"}, {.inChild = [] { ::close(STDOUT_FILENO); }}), 0);
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ::close(ends[0]);
  EXPECT_EQ(Run({"list", "@carrier"}, {.inChild = [&ends] { ::dup2(ends[1], STDOUT_FILENO); }}), 1);
  ::close(ends[1]);
}

TEST_F(RealProgram, ClosedStandardStreamsNeverBecomeTheCarrier) {
  const auto closeAll = [] {
    for (int stream = 0; stream <= 2; ++stream)
      ::close(stream);
  };
  EXPECT_EQ(Run({"hide", "@carrier", "@a.txt", "--title", "T"}, {.inChild = closeAll}), 0);
  EXPECT_EQ(Run({"verify", "@carrier"}), 0);
  EXPECT_EQ(ReadAll(folder / "carrier").substr(0, 5000), Pattern(5000));
}

TEST_F(RealProgram, HelpWorksWithoutAnything) {
  Program program({"--help"});
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_THAT(program.Out(), HasSubstr("Examples:"));
  EXPECT_THAT(program.Err(), IsEmpty());
}

}  // namespace
}  // namespace tarnel::test
