#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "app/encoded_alerts.h"
#include "app/program_run.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Pixels {
  std::uint32_t width = 0;
  std::uint32_t height = 0;

  bool operator==(const Pixels&) const = default;
};

std::uint32_t bigEndian(const std::string& bytes, std::size_t place) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < 4; ++i) number = number << 8 | static_cast<unsigned char>(bytes.at(place + i));
  return number;
}

/// The size in the PNG's header; zero when the file is not a PNG.
Pixels sizeOfPng(const std::string& file) {
  const std::string bytes = textIn(file);
  if (bytes.size() < 24 || !bytes.starts_with("\x89PNG")) return {};
  return {bigEndian(bytes, 16), bigEndian(bytes, 20)};
}

class RenderTest : public testing::Test {
 protected:
  std::string picture() const { return folder_ / "widget.png"; }

  /// Draws the sample city, or the feed in the options.
  ProgramRun render(std::vector<std::string> options, const std::string& file) const {
    options.insert(options.begin(), {"--state-dir", folder_ / "state", "render", "-o", file});
    return runProgram(options);
  }

  /// The size of the picture, which must be drawn without any output but that the city is made up.
  Pixels sizeWith(const std::vector<std::string>& options) const {
    std::filesystem::remove(picture());
    const auto run = render(options, picture());
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, IsEmpty());
    const bool isOfFeed = std::ranges::find(options, "--gtfs") != options.end();
    EXPECT_EQ(run.errors.find("linewatch feed add") == std::string::npos, isOfFeed) << run.errors;
    return sizeOfPng(picture());
  }

  /// Writes a city with this many routes, each with an alert, and returns the options of a run with all of
  /// them as favourites.
  std::vector<std::string> city(int routes, const std::string& header) const {
    std::string table = "route_id,route_short_name,route_type\n", entities;
    std::vector<std::string> options{"--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"};
    for (int i = 0; i < routes; ++i) {
      const std::string id = "r" + std::to_string(i);
      table += id + "," + std::to_string(i) + ",3\n";
      entities += alertEntity("a" + std::to_string(i), id, header + std::to_string(i));
      options.insert(options.end(), {"--favorite", id});
    }
    folder_.write("gtfs/routes.txt", table);
    folder_.write("alerts.pb", alertsFeed(entities));
    return options;
  }

  TemporaryFolder folder_;
};

TEST_F(RenderTest, OptionsDetermineThePicturesSize) {
  using Options = std::vector<std::string>;
  EXPECT_EQ(sizeWith({}), (Pixels{718, 220}));
  const std::string usual = textIn(picture());
  for (const auto& [options, size] : {std::pair{Options{"--scale", "1"}, Pixels{359, 110}},
                                      {{"--scale", "0.5", "--width", "201"}, {101, 55}},
                                      {{"--width", "240", "--scale", "3"}, {720, 330}},
                                      {{"--expanded"}, {718, 1320}},
                                      {{"--expanded", "--max-rows", "3"}, {718, 660}},
                                      {{"--text-size", "XS"}, {718, 220}},
                                      {{"--text-size", "AX5", "--expanded", "--max-rows", "2"}, {718, 1372}},
                                      {{"--dark"}, {718, 220}},
                                      {{"--locale", "ar"}, {718, 220}}}) {
    EXPECT_EQ(sizeWith(options), size) << testing::PrintToString(options);
    EXPECT_NE(textIn(picture()), usual) << testing::PrintToString(options);
  }
  EXPECT_EQ(sizeWith({}), (Pixels{718, 220}));
  EXPECT_EQ(textIn(picture()), usual) << "the same options give the same file";
}

TEST_F(RenderTest, TheExtensionDeterminesTheFormat) {
  for (const auto& [name, words] : {std::pair{"widget.svg", "<svg"}, {"widget.pdf", "/MediaBox"}}) {
    EXPECT_EQ(render({"--expanded"}, folder_ / name).status, 0);
    EXPECT_THAT(textIn(folder_ / name), HasSubstr(words));
  }
}

TEST_F(RenderTest, RefusesInOneLine) {
  using Options = std::vector<std::string>;
  folder_.write("folder.png/file", "");
  for (const auto& [options, file, words] : std::vector<std::tuple<Options, std::string, std::string>>{
           {{}, folder_ / "widget.gif", "widget.gif: the name must end in .png, .svg or .pdf"},
           {{}, folder_ / "widget", ".png, .svg or .pdf"},
           {{}, folder_ / "none/widget.png", "none/widget.png: No such file"},
           {{}, folder_ / "folder.png", "folder.png"},
           {{"--scale", "0"}, picture(), "--scale"},
           {{"--scale", "nan"}, picture(), "--scale"},
           {{"--scale", "two"}, picture(), "--scale"},
           {{"--width", "199"}, picture(), "--width"},
           {{"--width", "1e9"}, picture(), "--width"},
           {{"--text-size", "XXXXL"}, picture(), "XXXXL"},
           {{"--expanded=perhaps"}, picture(), "--expanded"},
           {{"--locale", "?"}, picture(), "?"}}) {
    const auto run = render(options, file);
    EXPECT_EQ(run.status, 2) << words;
    EXPECT_THAT(run.errors, AllOf(StartsWith("linewatch: "), HasSubstr(words)));
    EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << run.errors;
    EXPECT_FALSE(std::filesystem::exists(picture()));
  }
  EXPECT_EQ(runProgram({"render"}).status, 2);
}

TEST_F(RenderTest, AFailedRunLeavesTheFileUnchanged) {
  folder_.write("widget.png", "before");
  EXPECT_EQ(render({"--scale", "9"}, picture()).status, 2);
  EXPECT_EQ(textIn(picture()), "before");
}

TEST_F(RenderTest, DrawsTheErrorRowAndReportsTheFailure) {
  folder_.write("gtfs/routes.txt", "route_id,route_short_name,route_type\nr0,1,3\n");
  const auto run =
      render({"--gtfs", folder_ / "gtfs", "--alerts", folder_ / "none.pb", "--favorite", "r0"}, picture());
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.errors, AllOf(StartsWith("linewatch: "), HasSubstr("none.pb")));
  EXPECT_EQ(sizeOfPng(picture()), (Pixels{718, 220}));
}

TEST_F(RenderTest, LeavesOutRowsBeyondTheLargestPicture) {
  std::vector<std::string> options = city(120, "Works on ");
  options.emplace_back("--expanded");
  EXPECT_EQ(sizeWith(options), (Pixels{718, 74 * 220}));
}

TEST_F(RenderTest, DrawsHostileTexts) {
  std::string marks;
  while (marks.size() < 100'000) marks += "\u0301";
  for (const std::string& text : {marks, "e" + marks, std::string("\xED\xA0\x80\xED\xB0\x80\xFF\xC0"),
                                  std::string(100'000, '\n'), std::string("\u202E\u2066\u2067 abc"),
                                  std::string(100'000, 'W'), std::string("🚧👨‍👩‍👧 ﷺ")}) {
    std::vector<std::string> options = city(2, text);
    options.emplace_back("--expanded");
    EXPECT_EQ(sizeWith(options), (Pixels{718, 440})) << text.substr(0, 20);
  }
}

}  // namespace
}  // namespace linewatch::app
