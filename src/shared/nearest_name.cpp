#include "shared/nearest_name.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace linewatch {

namespace {

std::string comparable(std::string_view name) {
  std::string text(name);
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c == '_') c = '-';
  }
  return text;
}

}  // namespace

std::size_t editDistance(std::string_view a, std::string_view b) {
  // Three rows of the table of distances between the beginnings of both texts.
  std::vector<std::size_t> beforeLast(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::swap(beforeLast, last);
    std::swap(last, row);
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      row[j + 1] = std::min({last[j] + (a[i] == b[j] ? 0 : 1), last[j + 1] + 1, row[j] + 1});
      const bool isSwapped = i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j];
      if (isSwapped) row[j + 1] = std::min(row[j + 1], beforeLast[j - 1] + 1);
    }
  }
  return row.back();
}

std::optional<std::string_view> nearestName(std::string_view word, std::span<const std::string_view> names) {
  constexpr std::size_t kLongestWord = 100;
  constexpr std::size_t kShortestBeginning = 3;
  if (word.empty() || word.size() > kLongestWord) return std::nullopt;
  const std::string wanted = comparable(word);
  std::optional<std::string_view> nearest;
  std::size_t least = greatestSlip(wanted.size()) + 1;
  for (const std::string_view name : names) {
    if (name.size() > wanted.size() + kLongestWord) continue;
    const std::string like = comparable(name);
    const bool isBeginning = wanted.size() >= kShortestBeginning && like.starts_with(wanted);
    const std::size_t distance = isBeginning ? 1 : editDistance(wanted, like);
    // A name that shares nothing with the word is no suggestion.
    if (distance >= least || distance >= like.size()) continue;
    least = distance;
    nearest = name;
  }
  return nearest;
}

}  // namespace linewatch
