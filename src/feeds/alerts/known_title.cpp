#include "feeds/alerts/known_title.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include <unicode/uchar.h>

#include "feeds/text/ascii.h"
#include "feeds/text/comparable_words.h"
#include "feeds/text/sentence_ends.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

// All lists but the marks hold comparable words.

// The beginnings of labels such as "Affected stops".
constexpr std::string_view kAffected[] = {" affected ", " betroffene", " concerné",
                                          " afectad",   " afetad",     " interessat"};

constexpr std::string_view kMarksAfterTitle[] = {
    ": ", " : ", " | ", " - ", " \xE2\x80\x93 ", " \xE2\x80\x94 "};

constexpr std::string_view kLineWords[] = {
    " line ",   " lines ", " route ", " routes ", " bus ",   " tram ",  " train ", " linie ",
    " linien ", " zug ",   " ligne ", " lignes ", " línea ", " linha ", " linea ", " lijn ",
};

// Short words that change the meaning. They are not small words.
constexpr std::string_view kShortNegations[] = {" no ", " ne "};

// Where and why a sentence goes on behind the words of the title.
constexpr std::string_view kContinuations[] = {
    " ab ",     " at ",    " aufgrund ", " because ", " between ", " bis ",   " desde ",    " due ",
    " durch ",  " en ",    " entre ",    " for ",     " from ",    " für ",   " hasta ",    " im ",
    " in ",     " jusqu ", " on ",       " por ",     " pour ",    " sur ",   " tot ",      " tra ",
    " tussen ", " until ", " vanaf ",    " via ",     " von ",     " wegen ", " zwischen ",
};

template <std::size_t Count>
bool isOneOf(std::string_view word, const std::string_view (&words)[Count]) {
  return std::ranges::find(words, word) != std::end(words);
}

bool hasDigit(std::string_view word) { return word.find_first_of("0123456789") != std::string_view::npos; }

std::size_t countWords(std::string_view comparable) {
  return static_cast<std::size_t>(std::ranges::count(comparable, ' ')) - 1;
}

/// "du", "of": a word that two wordings of one title may differ in.
bool isSmallWord(std::string_view comparable) {
  constexpr std::size_t kLongest = 2;
  return isLineWord(comparable) || (countCharacters(comparable) <= kLongest + 2 && !hasDigit(comparable) &&
                                    !isOneOf(comparable, kShortNegations));
}

/// True when `others` has every word of `words` for which `isMeant` is true. Both are comparable words.
template <class Meant>
bool hasAll(std::string_view others, std::string_view words, Meant isMeant) {
  for (std::string_view word; !(word = takeWord(words)).empty();) {
    const std::string comparable = comparableWords(word);
    if (isMeant(comparable) && others.find(comparable) == std::string_view::npos) return false;
  }
  return true;
}

bool isNoSmallWord(std::string_view comparable) { return !isSmallWord(comparable); }

bool isMarkAfterTitle(std::string_view rest) {
  return std::ranges::any_of(kMarksAfterTitle, [&](std::string_view mark) { return rest.starts_with(mark); });
}

/// True when a new sentence, line or field starts after the title: "Works 3" goes on in "Works 3 - 7 May",
/// and "Line 5" in "Line 5 is late".
bool endsTitle(std::string_view rest) {
  const std::size_t next = rest.find_first_not_of(" \n.!?)]\"'|:-");
  if (next == std::string_view::npos) return true;
  const std::string_view gap = rest.substr(0, next), follower = rest.substr(next);
  const bool isLowerCase = startsLowerCase(follower);
  if (gap.find('\n') != std::string_view::npos) return !isLowerCase;
  if (endsSentence(gap.substr(0, gap.find(' '))) && !isLowerCase) return true;
  if (isMarkAfterTitle(rest)) return !isAsciiDigit(follower.front());
  const bool isLabel = follower.substr(0, follower.find(' ')).ends_with(':');
  return isLabel && !isLowerCase;
}

/// "Affected stations: Harbour" gives ": Harbour"; empty for another field or no field.
std::string_view valueOfAffected(std::string_view sentence) {
  const std::size_t colon = sentence.find(": ");
  if (colon == std::string_view::npos) return {};
  const std::string label = comparableWords(sentence.substr(0, colon));
  const bool isAboutAffected = std::ranges::any_of(
      kAffected, [&](std::string_view start) { return label.find(start) != std::string::npos; });
  return isAboutAffected ? sentence.substr(colon) : std::string_view();
}

}  // namespace

bool isLineWord(std::string_view comparable) { return isOneOf(comparable, kLineWords); }

KnownTitle::KnownTitle(std::string_view title) : words_(comparableWords(title)), count_(countWords(words_)) {}

std::string_view KnownTitle::withoutTitle(std::string_view text) const {
  std::string_view rest = text;
  if (words_.size() <= 1 || !takeWords(rest, words_) || !endsTitle(rest)) return text;
  for (const std::string_view mark : kMarksAfterTitle) {
    if (rest.starts_with(mark)) return rest.substr(mark.size());
  }
  const std::size_t next = rest.find_first_not_of(" \n.!?)]\"'|");
  return next == std::string_view::npos ? std::string_view() : rest.substr(next);
}

std::string_view KnownTitle::newPartOf(std::string_view sentence) const {
  return continuationOf(withoutKnownClauses(withoutKnownLead(sentence)));
}

bool KnownTitle::says(std::string_view sentence) const {
  if (hasWord(comparableWords(sentence))) return true;
  const std::string_view value = valueOfAffected(sentence);
  return !value.empty() && hasWord(comparableWords(value));
}

bool KnownTitle::hasAllButSmallWordsOf(std::string_view text) const {
  return hasAll(words_, text, isNoSmallWord);
}

/// True when the words before a colon are the title, or a part of it that has a line's number.
bool KnownTitle::isRepeatedBy(std::string_view lead) const {
  const std::string words = comparableWords(lead);
  // Where the title has more numbers than the lead, the lead tells which of them is meant.
  if (hasDigit(words) && hasWord(words)) return hasAll(words, words_, hasDigit);
  return hasAllButSmallWordsOf(words) && hasAll(words, words_, isNoSmallWord);
}

std::string_view KnownTitle::withoutKnownLead(std::string_view sentence) const {
  const std::size_t colon = sentence.find(':');
  if (colon == std::string_view::npos || sentence.substr(colon + 1, 1) != " ") return sentence;
  const std::string_view rest = sentence.substr(colon + 2);
  return !rest.empty() && isRepeatedBy(sentence.substr(0, colon)) ? rest : sentence;
}

/// The rest must start in lower case; otherwise it may be the next item of a list.
std::string_view KnownTitle::withoutKnownClauses(std::string_view sentence) const {
  constexpr std::size_t kFewestWords = 4;
  std::string_view rest = sentence;
  std::size_t known = 0;
  for (std::size_t comma = 0; (comma = rest.find(", ")) != std::string_view::npos;) {
    const std::string clause = comparableWords(rest.substr(0, comma));
    if (!hasAllButSmallWordsOf(clause)) break;
    known += countWords(clause);
    rest = rest.substr(comma + 2);
  }
  return known >= kFewestWords && startsLowerCase(rest) ? rest : sentence;
}

/// A short title that has a number may only name what the sentence is about: "Line 5 from the zoo is late".
std::string_view KnownTitle::continuationOf(std::string_view sentence) const {
  constexpr std::size_t kMostOfEffect = 2, kFewestOfSentence = 6;
  const bool isEffect = count_ <= kMostOfEffect && !hasDigit(words_);
  std::string_view rest = sentence;
  if ((!isEffect && count_ < kFewestOfSentence) || !takeWords(rest, words_) || !rest.starts_with(' '))
    return sentence;
  rest.remove_prefix(1);
  std::string_view next = rest;
  const bool goesOn = isOneOf(comparableWords(takeWord(next)), kContinuations);
  return goesOn || (count_ == 1 && isEffect && isAsciiDigit(rest.front())) ? rest : sentence;
}

}  // namespace linewatch
