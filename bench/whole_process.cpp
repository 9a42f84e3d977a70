// Compares the whole program with minimal Qt programs: `show` of the sample city with a program that does
// nothing, and `render` of its expanded widget with one that draws as many lines of text into a picture of
// that size and saves it; and `status` of a small and a large feed with a Python script that decodes the same
// bytes. The time is the processor time of the whole process, which
// other work on the machine changes little.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace linewatch {
namespace {

/// A new folder for the pictures, and as a home without saved state.
const std::string& scratch() {
  static const std::string folder = [] {
    std::string name = (std::filesystem::temp_directory_path() / "linewatch-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) std::abort();
    static const std::string made = name;
    std::atexit([] { std::filesystem::remove_all(made); });
    return name;
  }();
  return folder;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// The processor time in seconds; absent unless the program exited with status 0.
std::optional<double> timeOf(std::vector<std::string> words) {
  std::vector<std::string> variables{"HOME=" + scratch(), "LANG=en_US.UTF-8", "XDG_RUNTIME_DIR=" + scratch(),
                                     "QT_QPA_PLATFORM=offscreen"};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  const int failed = posix_spawn(&process, words.front().c_str(), &actions, nullptr, pointersTo(words).data(),
                                 pointersTo(variables).data());
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  rusage usage{};
  if (failed != 0 || wait4(process, &status, 0, &usage) != process || status != 0) return std::nullopt;
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void measure(benchmark::State& state, const std::vector<std::string>& words) {
  for (auto _ : state) {
    const auto time = timeOf(words);
    if (!time) {
      state.SkipWithError("the program failed");
      break;
    }
    state.SetIterationTime(*time);
  }
}

/// A file with the sample city's alerts, so many times. Messages one after the other are one message.
std::string repeatedFeed(int copies) {
  std::ifstream city(CITY "/alerts.pb", std::ios::binary);
  const std::string alerts{std::istreambuf_iterator<char>(city), {}};
  const std::string file = scratch() + "/alerts-" + std::to_string(copies) + ".pb";
  std::ofstream repeated(file, std::ios::binary);
  for (int i = 0; i < copies; ++i) repeated << alerts;
  return file;
}

double least(const std::vector<double>& values) { return *std::min_element(values.begin(), values.end()); }

void add(const char* name, const std::vector<std::string>& words) {
  benchmark::RegisterBenchmark(name, measure, words)
      ->Unit(benchmark::kMillisecond)
      ->UseManualTime()
      ->Iterations(5)
      ->Repetitions(9)
      ->ComputeStatistics("least", least)
      ->ReportAggregatesOnly();
}

}  // namespace
}  // namespace linewatch

int main(int argc, char** argv) {
  using linewatch::add;
  // The five rows of the sample city have nineteen lines of text.
  const std::string own = linewatch::scratch() + "/own.png", other = linewatch::scratch() + "/other.png";
  add("Show", {LINEWATCH_PROGRAM, "show"});
  add("EmptyQtCore", {EMPTY_CORE_PROGRAM});
  add("RenderExpanded", {LINEWATCH_PROGRAM, "render", "--expanded", "--scale", "2", "-o", own});
  add("QtTextPicture", {TEXT_PICTURE_PROGRAM, other, "718", "1100", "19"});
  add("Status", {LINEWATCH_PROGRAM, "status"});
  for (const auto& [name, copies] : {std::pair("Small", 1), std::pair("Large", 1000)}) {
    const std::string feed = linewatch::repeatedFeed(copies);
    add((std::string("StatusOf") + name).c_str(), {LINEWATCH_PROGRAM, "--gtfs", CITY, "--alerts", feed,
                                                   "--favorite", "M1", "--favorite", "T3", "status"});
    add((std::string("PythonOf") + name).c_str(),
        {"/usr/bin/python3", PYTHON_PROGRAM, PYTHON_MODULES, feed, "M1", "T3"});
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
