#include "app/progress_line.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

#include "app/terminal_text.h"
#include "app/terminal_width.h"

namespace linewatch::app {

namespace {

constexpr std::chrono::milliseconds kShortestPause{100};
constexpr std::size_t kShortestBar = 6;
constexpr std::size_t kLongestBar = 40;
constexpr std::size_t kUsualColumns = 80;

/// "3 of 12 MB", "830 kB"; in kB while the whole is small.
std::string amountText(std::uint64_t bytes, std::optional<std::uint64_t> total) {
  const bool isSmall = total.value_or(bytes) < 10'000'000;
  const std::uint64_t unit = isSmall ? 1000 : 1'000'000;
  std::string text = std::to_string(bytes / unit);
  if (total) text += "/" + std::to_string((*total + unit - 1) / unit);
  return text + (isSmall ? " kB" : " MB");
}

std::string barText(std::uint64_t bytes, std::uint64_t total, std::size_t columns) {
  const double share = std::min(1.0, static_cast<double>(bytes) / static_cast<double>(total));
  const auto full = static_cast<std::size_t>(share * static_cast<double>(columns));
  return "[" + std::string(full, '#') + std::string(columns - full, '.') + "] ";
}

}  // namespace

std::string progressText(const std::string& label, std::uint64_t bytes, std::optional<std::uint64_t> total,
                         std::size_t columns) {
  if (bytes == 0 && !total) return label;
  const std::string amount = amountText(bytes, total);
  const std::size_t used = terminalWidth(label) + 1 + amount.size();
  const std::size_t left = columns - std::min(columns, used + 3);
  if (!total || *total == 0 || left < kShortestBar) return label + " " + amount;
  return label + " " + barText(bytes, *total, std::min(left, kLongestBar)) + amount;
}

ProgressLine::ProgressLine() : isTerminal_(::isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine() {
  if (shown_) std::fputs("\r\x1B[K", stderr);
}

void ProgressLine::show(const std::string& label, std::uint64_t bytes, std::optional<std::uint64_t> total) {
  const auto now = Clock::now();
  if (!isTerminal_ || (shown_ && label == label_ && now - *shown_ < kShortestPause)) return;
  shown_ = now;
  label_ = label;
  const std::size_t known = TerminalStyle::ofStandardError().columns;
  // One column stays free, because a full line may move the cursor to the next one.
  const std::size_t columns = (known > 0 ? known : kUsualColumns) - 1;
  std::fputs(("\r\x1B[K" + progressText(label, bytes, total, columns)).c_str(), stderr);
}

}  // namespace linewatch::app
