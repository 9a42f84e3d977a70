#include "shared/file_contents.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stop_token>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "shared/failure.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class WriteWholeTest : public testing::Test {
 protected:
  /// The error; empty when the file was written.
  std::string write(const std::string& name, const std::string& bytes) const {
    const auto error = writeWhole(folder_ / name, bytes);
    return error ? sentenceOf(*error) : "";
  }

  TemporaryFolder folder_;
};

TEST_F(WriteWholeTest, ReplacesAFileAndTheTargetOfALink) {
  folder_.write("old", "before");
  fs::create_symlink("old", folder_ / "link");
  fs::create_symlink(folder_ / "link", folder_ / "second");
  fs::create_symlink("later", folder_ / "dangling");
  for (const std::string name : {"old", "new", "second", "dangling"}) {
    EXPECT_FALSE(whyNotWritable(folder_ / name)) << name;
    EXPECT_EQ(write(name, "now " + name), "");
    EXPECT_EQ(textIn(folder_ / name), "now " + name);
  }
  EXPECT_EQ(textIn(folder_ / "old"), "now second");
  EXPECT_TRUE(fs::is_symlink(folder_ / "second"));
  EXPECT_THAT(namesIn(folder_.path()), ElementsAre("dangling", "later", "link", "new", "old", "second"));
}

TEST_F(WriteWholeTest, AFileThatCannotBeWrittenStaysAsItWas) {
  folder_.write("old", "before");
  folder_.write("folder/file", "");
  fs::create_symlink("circle", folder_ / "circle");
  EXPECT_THAT(write("none/file", "now"), HasSubstr("none/file: No such file or directory"));
  EXPECT_THAT(write("folder", "now"), StartsWith(folder_ / "folder: "));
  EXPECT_THAT(write("circle", "now"), HasSubstr("circle: Too many levels of symbolic links"));
  for (const char* name : {"none/file", "folder", "circle", "old/file"}) {
    const auto foretold = whyNotWritable(folder_ / name);
    ASSERT_TRUE(foretold) << name;
    EXPECT_THAT(sentenceOf(*foretold), StartsWith(folder_ / name + ": "));
  }

  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit smaller{1000, before.rlim_max};
  const auto handled = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &smaller);
  EXPECT_THAT(write("old", std::string(100'000, 'x')), StartsWith(folder_ / "old: "));
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handled);
  EXPECT_EQ(textIn(folder_ / "old"), "before");
  EXPECT_THAT(namesIn(folder_.path()), ElementsAre("circle", "folder", "old"));
}

// Root may replace some of these files.
TEST_F(WriteWholeTest, PipesAndDevicesAreWrittenInPlace) {
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  fs::create_symlink("/dev/null", folder_ / "null");
  fs::create_symlink("/dev/full", folder_ / "full");
  std::string read;
  std::thread reader([&] { read = textIn(folder_ / "pipe"); });
  EXPECT_EQ(write("pipe", "through"), "");
  reader.join();
  EXPECT_EQ(read, "through");
  EXPECT_EQ(write("null", "now"), "");
  EXPECT_THAT(write("full", "now"), HasSubstr("full: No space left on device"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_THAT(namesIn(folder_.path()), ElementsAre("full", "null", "pipe"));
}

// The shell goes on with the file that it has open.
TEST_F(WriteWholeTest, WritesAnOpenDescriptorAtItsOffset) {
  const std::string file = folder_ / "open";
  const auto closed = [](std::FILE* open) { std::fclose(open); };
  const std::unique_ptr<std::FILE, decltype(closed)> open(std::fopen(file.c_str(), "w+"), closed);
  std::fputs("before", open.get());
  std::fflush(open.get());
  fs::create_symlink("/dev/fd/" + std::to_string(fileno(open.get())), folder_ / "output");
  EXPECT_EQ(write("output", "now"), "");
  std::fputs("after", open.get());
  std::rewind(open.get());
  std::array<char, 32> text{};
  std::fread(text.data(), 1, text.size() - 1, open.get());
  EXPECT_STREQ(text.data(), "beforenowafter");
}

class ContentsOfTest : public testing::Test {
 protected:
  ContentsOfTest() { EXPECT_EQ(mkfifo(pipe_.c_str(), 0600), 0); }

  /// The bytes read, or the error.
  std::string read(const ReadingLimits& limits) const {
    const auto contents = contentsOf(pipe_, limits);
    return contents ? *contents : sentenceOf(contents.error());
  }

  TemporaryFolder folder_;
  const std::string pipe_ = folder_ / "pipe";
};

TEST_F(ContentsOfTest, APipeIsReadToItsEndAfterItsWriterComes) {
  const std::string bytes(100'000, 'x');
  for (const ReadingLimits& limits : {ReadingLimits{.time = Seconds(20)}, ReadingLimits{}}) {
    std::thread writer([&] {
      std::ofstream stream(pipe_);  // waits for the reader
      // More than a pipe holds, so that the reader needs several reads.
      stream << "begun " << std::flush << bytes;
    });
    EXPECT_EQ(read(limits), "begun " + bytes);
    writer.join();
  }
}

TEST_F(ContentsOfTest, APipeWithoutAnEndIsAnError) {
  const auto isOutOfTime = HasSubstr("pipe: it did not end in time");
  EXPECT_THAT(read({.time = Seconds(0.05)}), isOutOfTime) << "without a writer";
  const int pipe = ::open(pipe_.c_str(), O_RDWR | O_NONBLOCK);
  EXPECT_THAT(read({.time = Seconds(0.05)}), isOutOfTime) << "with one that writes nothing";
  {
    const std::jthread endless([pipe](const std::stop_token& stop) {
      while (!stop.stop_requested()) {
        if (::write(pipe, "x", 1) < 0) std::this_thread::yield();
      }
    });
    EXPECT_THAT(read({.time = Seconds(0.2)}), isOutOfTime) << "with one that does not end";
  }
  ::close(pipe);
}

TEST_F(ContentsOfTest, AStopRequestEndsTheReading) {
  std::stop_source stop;
  std::ofstream writer;
  std::thread stopper([&] {
    writer.open(pipe_);  // waits for the reader
    stop.request_stop();
  });
  EXPECT_THAT(read({.stop = stop.get_token()}), HasSubstr("no longer wanted"));
  stopper.join();
}

}  // namespace
}  // namespace linewatch
