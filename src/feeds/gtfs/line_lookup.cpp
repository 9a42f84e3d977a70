#include "feeds/gtfs/line_lookup.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "feeds/gtfs/shield_text.h"
#include "feeds/text/folded_words.h"
#include "shared/failure.h"
#include "shared/nearest_name.h"

namespace linewatch {

namespace {

/// "12 (Airport – Harbour)"
std::string withLongName(const std::string& text, const FoundLine& line) {
  const std::string& longName = line.entry().longName;
  return longName.empty() || longName == text ? text : text + " (" + longName + ")";
}

std::string byId(const FoundLine& line) {
  return withLongName(line.index->feedName() + ":" + line.entry().id, line);
}

constexpr std::size_t kMostSuggestions = 5;

template <class Describe>
std::string listed(std::span<const FoundLine> lines, Describe describe) {
  std::string text;
  for (const FoundLine& line : lines.first(std::min(lines.size(), kMostSuggestions))) {
    text.append(text.empty() ? "" : ", ").append(describe(line));
  }
  return lines.size() > kMostSuggestions ? text + " …" : text;
}

template <class Predicate>
std::vector<FoundLine> linesWhere(std::span<const SharedLineIndex> indexes, Predicate fits) {
  std::vector<FoundLine> lines;
  for (const SharedLineIndex& index : indexes) {
    for (std::size_t route = 0; route < index->routes().size(); ++route) {
      if (fits(*index, route)) lines.push_back({index, route});
    }
  }
  return lines;
}

std::vector<FoundLine> linesWithId(std::span<const SharedLineIndex> indexes, std::string_view id) {
  std::vector<FoundLine> lines;
  for (const SharedLineIndex& index : indexes) {
    if (const auto route = index->routeWithId(id)) lines.push_back({index, *route});
  }
  return lines;
}

// The names by which a user may call a line, in the order in which they are tried.
using Naming = std::string (*)(const LineIndex& index, std::size_t route);
constexpr Naming kNamings[] = {
    [](const LineIndex& index, std::size_t route) { return std::string(index.nameOfRoute(route)); },
    [](const LineIndex& index, std::size_t route) { return std::string(index.routes()[route].longName); },
    [](const LineIndex& index, std::size_t route) { return shieldText(index.routes()[route]); }};

std::vector<FoundLine> linesNamed(std::span<const SharedLineIndex> indexes, std::string_view name) {
  const std::string wanted = comparableName(name);
  for (const Naming& nameOf : kNamings) {
    auto lines = linesWhere(
        indexes, [&](const LineIndex& index, std::size_t route) { return nameOf(index, route) == name; });
    if (lines.empty() && !wanted.empty()) {
      lines = linesWhere(indexes, [&](const LineIndex& index, std::size_t route) {
        return comparableName(nameOf(index, route)) == wanted;
      });
    }
    if (!lines.empty()) return lines;
  }
  return {};
}

/// The lines that `find` finds by "feed:line". Feed names and route ids may both hold colons.
template <class Find>
std::vector<FoundLine> linesBehindFeed(std::span<const SharedLineIndex> indexes, std::string_view name,
                                       Find find) {
  std::vector<FoundLine> lines;
  for (const SharedLineIndex& index : indexes) {
    const std::string prefix = index->feedName() + ":";
    if (!name.starts_with(prefix)) continue;
    std::ranges::move(find(std::span(&index, 1), name.substr(prefix.size())), std::back_inserter(lines));
  }
  return lines;
}

/// Suggestions for a misspelt name: the lines that a search finds; if there are none, the lines whose names
/// are within an edit distance of a quarter of the length, plus one.
std::vector<FoundLine> linesLike(std::span<const SharedLineIndex> indexes, std::string_view name) {
  const std::string wanted = comparableName(name);
  if (wanted.empty()) return {};
  std::vector<FoundLine> lines = searchLines(indexes, name);
  if (!lines.empty()) return lines;
  const std::size_t slips = greatestSlip(wanted.size());
  const auto isNear = [&](const std::string& known) {
    const std::string like = comparableName(known);
    return like.size() <= wanted.size() + slips && wanted.size() <= like.size() + slips &&
           like.size() > slips && editDistance(wanted, like) <= slips;
  };
  return linesWhere(indexes, [&](const LineIndex& index, std::size_t route) {
    return isNear(index.nameOfRoute(route)) || isNear(index.routes()[route].longName);
  });
}

constexpr const char* kLikelyLinesKey = "likelyLines";

Error withLikelyLines(Error error, const std::string& likely) {
  error.info.emplace(kLikelyLinesKey, likely);
  return error;
}

Error severalLines(const std::string& what, std::span<const FoundLine> lines) {
  const std::string likely = listed(lines, byId);
  return withLikelyLines(
      failure(FailureCode::invalid, what, "", "several lines have this name; name one as " + likely), likely);
}

Error noLine(const std::string& what, std::span<const FoundLine> lines) {
  if (lines.empty()) return failure(FailureCode::notFound, what, "", "no feed has such a line");
  const std::string likely = listed(lines, byId);
  return withLikelyLines(
      failure(FailureCode::notFound, what, "", "no feed has such a line; did you mean " + likely + "?"),
      likely);
}

}  // namespace

Outcome<FoundLine> findLine(std::span<const SharedLineIndex> indexes, std::string_view name) {
  // Names come last: comparing them reads every line.
  std::vector<FoundLine> lines = linesWithId(indexes, name);
  if (lines.empty()) lines = linesBehindFeed(indexes, name, linesWithId);
  if (lines.empty()) lines = linesNamed(indexes, name);
  if (lines.empty()) lines = linesBehindFeed(indexes, name, linesNamed);
  if (lines.size() == 1) return lines.front();
  const std::string what = "line \"" + std::string(name) + "\"";
  return lines.empty() ? noLine(what, linesLike(indexes, name)) : severalLines(what, lines);
}

std::string likelyLinesOf(const Error& error) {
  const auto likely = error.info.find(kLikelyLinesKey);
  const std::string* const text = likely == error.info.end() ? nullptr : likely->second.get<std::string>();
  return text ? *text : std::string();
}

}  // namespace linewatch
