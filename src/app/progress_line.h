#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace linewatch::app {

/// The text of a line that shows a progress, e.g. "Timetable [####....] 12 of 40 MB", in at most so many
/// columns. Without a total it has no bar, and without bytes only the label.
std::string progressText(const std::string& label, std::uint64_t bytes, std::optional<std::uint64_t> total,
                         std::size_t columns);

/// A line on standard error that shows how far a download is, and that the destructor removes. Shows nothing
/// when standard error is not a terminal.
class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// Shows the progress, but not more often than a reader can follow.
  void show(const std::string& label, std::uint64_t bytes, std::optional<std::uint64_t> total);

 private:
  using Clock = std::chrono::steady_clock;

  bool isTerminal_;
  std::string label_;
  std::optional<Clock::time_point> shown_;
};

}  // namespace linewatch::app
