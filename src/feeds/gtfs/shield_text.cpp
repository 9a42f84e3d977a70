#include "feeds/gtfs/shield_text.h"

#include <algorithm>
#include <optional>
#include <span>

#include <unicode/uchar.h>

#include "feeds/text/ascii.h"
#include "feeds/text/folded_words.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

// In characters. A feed's own short name may be longer than an abbreviation made here.
constexpr std::size_t kLongestShortName = 12;
constexpr std::size_t kLongestAbbreviation = 6;
constexpr std::size_t kMostInitials = 4;
constexpr std::size_t kStartOfWord = 3;

constexpr std::string_view kBetweenEnds[] = {" - ", " – ", " — ", " ↔ ", " <> ", " <-> "};

// Words that a shield need not repeat; folded.
constexpr std::string_view kWordsForLine[] = {"line",  "route", "linie", "ligne", "linea", "linha",
                                              "linia", "lijn",  "linje", "bus",   "tram",  "metro"};

bool isShort(std::string_view text) { return countCharacters(text) <= kLongestAbbreviation; }

bool isWordForLine(std::string_view word) {
  const std::string plain = folded(word);
  return std::find(std::begin(kWordsForLine), std::end(kWordsForLine), plain) != std::end(kWordsForLine);
}

bool startsSmall(std::string_view word) { return u_islower(takeCharacter(word)); }

bool isNumber(std::string_view word) {
  return countCharacters(word) <= kLongestShortName && std::all_of(word.begin(), word.end(), isAsciiDigit);
}

bool hasDigit(std::string_view word) { return word.find_first_of("0123456789") != std::string_view::npos; }

std::string initialOf(std::string_view word) {
  std::string initial;
  appendCharacter(initial, u_toupper(takeCharacter(word)));
  return initial;
}

std::string startOf(std::string_view text, std::size_t characters) {
  std::string start;
  for (; characters > 0 && !text.empty(); --characters) appendCharacter(start, takeCharacter(text));
  return start;
}

/// The initials of both ends of a line: "A–S" for "Antioch - SFIA/Millbrae".
std::optional<std::string> initialsOfEnds(std::string_view name) {
  for (const std::string_view between : kBetweenEnds) {
    const std::size_t first = name.find(between);
    if (first == std::string_view::npos) continue;
    const auto start = wordsOf(name.substr(0, first));
    const auto end = wordsOf(name.substr(name.rfind(between) + between.size()));
    if (!start.empty() && !end.empty()) return initialOf(start.front()) + "–" + initialOf(end.front());
  }
  return std::nullopt;
}

std::string joined(std::span<const std::string_view> words) {
  std::string text;
  for (const std::string_view word : words) text.append(text.empty() ? "" : " ").append(word);
  return text;
}

/// Leaves out lower-case words ("of", "de la") unless all words are lower-case.
std::string initialsOf(std::span<const std::string_view> words) {
  const bool allSmall = std::all_of(words.begin(), words.end(), startsSmall);
  std::string initials;
  std::size_t count = 0;
  for (const std::string_view word : words) {
    if (count == kMostInitials) break;
    if (!allSmall && startsSmall(word)) continue;
    initials += initialOf(word);
    ++count;
  }
  return initials;
}

std::string abbreviationOfWords(std::string_view name) {
  const std::vector<std::string_view> words = wordsOf(name);
  if (words.size() > 1) return initialsOf(words);
  return startOf(words.empty() ? name : words.front(), kStartOfWord);
}

std::string abbreviationOfLine(std::string_view name) {
  if (isShort(name)) return std::string(name);
  if (std::optional<std::string> ends = initialsOfEnds(name)) return *ends;
  std::vector<std::string_view> words = wordsOf(name);
  std::erase_if(words, isWordForLine);
  std::string telling = joined(words);
  if (!telling.empty() && isShort(telling)) return telling;
  const auto number = std::find_if(words.begin(), words.end(), hasDigit);
  // A number cut short would be another line's number.
  if (number != words.end() && (isShort(*number) || isNumber(*number))) return std::string(*number);
  return abbreviationOfWords(telling.empty() ? name : telling);
}

bool isAcronym(std::string_view text) {
  return text.size() >= 2 && text.size() <= kLongestAbbreviation &&
         std::all_of(text.begin(), text.end(), isAsciiCapital);
}

}  // namespace

std::string shieldText(const FeedRoute& route) {
  if (!route.shortName.empty() && countCharacters(route.shortName) <= kLongestShortName)
    return route.shortName;
  if (!route.shortName.empty()) return abbreviationOfLine(route.shortName);
  return abbreviationOfLine(route.longName.empty() ? route.id : route.longName);
}

std::string badgeText(const FeedAgency& agency) {
  if (!agency.name.empty() && isShort(agency.name)) return agency.name;
  if (isAcronym(agency.id)) return agency.id;
  return abbreviationOfWords(agency.name.empty() ? agency.id : agency.name);
}

}  // namespace linewatch
