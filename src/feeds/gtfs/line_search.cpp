#include "feeds/gtfs/line_search.h"

#include <algorithm>
#include <string>
#include <utility>

#include "feeds/text/ascii.h"
#include "feeds/text/folded_words.h"

namespace linewatch {

namespace {

enum class Fit { name, startOfName, startsOfWords, partsOfWords, none };

/// In bytes: three Latin letters, or one of a script without spaces between words. Shorter parts would match
/// too many words, and digits would match inside other numbers.
constexpr std::size_t kShortestPart = 3;

/// For a query that finds nothing otherwise.
constexpr std::size_t kShortestRarePart = 2;

bool isWorthFindingWithin(std::string_view word, std::size_t shortest) {
  return word.size() >= shortest && std::none_of(word.begin(), word.end(), isAsciiDigit);
}

class Query {
 public:
  Query(std::string_view text, std::size_t shortestPart)
      : shortestPart_(shortestPart), text_(comparableName(text)), words_(wordsOf(text_)) {}
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  Fit fitOf(const LineIndex& index, std::size_t route, const std::string& name) const {
    if (name == text_) return Fit::name;
    if (name.starts_with(text_)) return Fit::startOfName;
    return words_.empty() ? Fit::none : fitOfWords(textsOf(index, route));
  }

 private:
  static std::string textsOf(const LineIndex& index, std::size_t route) {
    const FeedRoute& entry = index.routes()[route];
    std::string texts = entry.shortName + '\n' + entry.longName;
    if (entry.agency) texts += '\n' + index.agencies()[*entry.agency].name;
    return folded(texts);
  }

  /// The worst fit among the words of the query.
  Fit fitOfWords(const std::string& texts) const {
    const std::vector<std::string_view> words = wordsOf(texts);
    Fit worst = Fit::startsOfWords;
    for (const std::string_view wanted : words_) worst = std::max(worst, fitOfWord(wanted, words));
    return worst;
  }

  Fit fitOfWord(std::string_view wanted, const std::vector<std::string_view>& words) const {
    const auto isStart = [wanted](std::string_view word) { return word.starts_with(wanted); };
    const auto isPart = [wanted](std::string_view word) {
      return word.find(wanted) != std::string_view::npos;
    };
    if (std::any_of(words.begin(), words.end(), isStart)) return Fit::startsOfWords;
    const bool mayBePart = isWorthFindingWithin(wanted, shortestPart_);
    return mayBePart && std::any_of(words.begin(), words.end(), isPart) ? Fit::partsOfWords : Fit::none;
  }

  std::size_t shortestPart_;
  std::string text_;
  std::vector<std::string_view> words_;
};

struct Candidate {
  Fit fit;
  std::string comparableName;
  FoundLine line;
};

bool comesBefore(const Candidate& a, const Candidate& b) {
  if (a.fit != b.fit) return a.fit < b.fit;
  return a.fit < Fit::startsOfWords && naturallyBefore(a.comparableName, b.comparableName);
}

std::vector<Candidate> candidatesFor(const Query& wanted, std::span<const SharedLineIndex> indexes) {
  std::vector<Candidate> candidates;
  for (const SharedLineIndex& index : indexes) {
    for (std::size_t route = 0; route < index->routes().size(); ++route) {
      std::string name = comparableName(index->nameOfRoute(route));
      const Fit fit = wanted.fitOf(*index, route, name);
      if (fit != Fit::none) candidates.push_back({fit, std::move(name), {index, route}});
    }
  }
  return candidates;
}

}  // namespace

std::vector<FoundLine> searchLines(std::span<const SharedLineIndex> indexes, std::string_view query) {
  std::vector<Candidate> candidates = candidatesFor({query, kShortestPart}, indexes);
  if (candidates.empty()) candidates = candidatesFor({query, kShortestRarePart}, indexes);
  std::stable_sort(candidates.begin(), candidates.end(), comesBefore);
  std::vector<FoundLine> lines;
  lines.reserve(candidates.size());
  for (Candidate& candidate : candidates) lines.push_back(std::move(candidate.line));
  return lines;
}

}  // namespace linewatch
