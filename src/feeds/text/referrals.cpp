#include "feeds/text/referrals.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "feeds/text/ascii.h"

namespace linewatch {

namespace {

constexpr std::size_t kNone = std::string_view::npos;

// First words of sentences that only introduce an address: "For more information, visit …".
constexpr std::string_view kInvitations[] = {
    "check", "details", "find",  "for",  "further", "für",    "info", "infos", "karte",   "learn", "mais",
    "map",   "meer",    "mehr",  "more", "más",     "nähere", "para", "per",   "please",  "plan",  "plus",
    "pour",  "see",     "siehe", "to",   "view",    "visit",  "voir", "voor",  "weitere",
};

/// Where the first address begins, with its scheme; `kNone` when there is no address.
std::size_t findAddress(std::string_view text) {
  const std::size_t place = std::min(text.find("://"), text.find("www."));
  if (place == kNone) return kNone;
  const std::size_t before = text.find_last_of(" ([<", place);
  return before == kNone ? 0 : before + 1;
}

/// Removes the brackets around the address at `place` with their content. False when there are no brackets.
bool removeBrackets(std::string& text, std::size_t place) {
  const std::size_t open = text.find_last_of("()", place), close = text.find(')', place);
  if (open == kNone || close == kNone || text[open] == ')') return false;
  std::size_t start = open;
  if (start > 0 && text[start - 1] == ' ') --start;
  text.erase(start, close + 1 - start);
  // Some agencies write links as "[the map](https://…)".
  if (start == open && start > 0 && text[start - 1] == ']') {
    text.erase(start - 1, 1);
    if (const std::size_t label = text.rfind('[', start - 1); label != kNone) text.erase(label, 1);
  }
  return true;
}

std::string firstWord(std::string_view text) {
  std::string word(text.substr(0, text.find_first_of(" ,:")));
  std::ranges::transform(word, word.begin(), asciiSmall);
  return word;
}

bool isInvitation(std::string_view clause) {
  return std::ranges::find(kInvitations, firstWord(clause)) != std::end(kInvitations);
}

/// Where the clause with the address at `place` begins, with the comma or dash before it; `kNone` when it is
/// the first clause.
std::size_t boundaryBefore(std::string_view text, std::size_t place) {
  std::size_t boundary = kNone;
  for (const std::string_view mark : {", ", "; ", " - ", " \xE2\x80\x93 ", " \xE2\x80\x94 "}) {
    const std::size_t found = text.substr(0, place).rfind(mark);
    if (found != kNone && (boundary == kNone || found > boundary)) boundary = found;
  }
  return boundary;
}

std::string_view withoutMarkAtStart(std::string_view clause) {
  const std::size_t start = clause.find_first_not_of(",;- \xE2\x80\x93\x94");
  return start == kNone ? std::string_view() : clause.substr(start);
}

// Words that introduce the address behind them. In byte order.
constexpr std::string_view kBeforeAddress[] = {
    "at", "auf", "en",    "in",    "on",  "op",    "see",  "siehe",
    "su", "sur", "unter", "using", "via", "visit", "voir",
};
constexpr std::size_t kFewestWordsBehind = 2;

/// "The timetable at https://… starts on Monday" gives "The timetable starts on Monday". Empty when fewer
/// than two words follow the address.
std::string aroundAddress(std::string_view text, std::size_t place) {
  const std::size_t end = text.find(' ', place);
  if (place == 0 || end == kNone) return {};
  const std::string_view behind = text.substr(end);
  if (std::ranges::count(behind, ' ') < static_cast<std::ptrdiff_t>(kFewestWordsBehind)) return {};
  std::string_view before = text.substr(0, place - 1);
  const std::size_t space = before.rfind(' ');
  const std::string_view word = space == kNone ? before : before.substr(space + 1);
  if (space != kNone && std::ranges::binary_search(kBeforeAddress, word)) before = before.substr(0, space);
  const char last = text[end - 1];
  const bool keepsMark = last == ',' || last == ';' || last == ':';
  return std::string(before).append(keepsMark ? 1U : 0U, last).append(behind);
}

std::string withoutAddresses(std::string_view sentence) {
  constexpr int kMostAddresses = 4;  // each costs a copy of the sentence
  std::string text(sentence);
  std::size_t place = 0;
  for (int count = 0; (place = findAddress(text)) != kNone; ++count) {
    if (count == kMostAddresses) return text.substr(0, place);
    if (removeBrackets(text, place)) continue;
    if (isInvitation(text)) return {};
    const std::size_t boundary = boundaryBefore(text, place);
    std::string before = boundary == kNone ? std::string() : text.substr(0, boundary);
    if (boundary != kNone && isInvitation(withoutMarkAtStart(std::string_view(text).substr(boundary))))
      return before;
    std::string rest = aroundAddress(text, place);
    if (rest.empty()) return before;
    text = std::move(rest);
  }
  return text;
}

}  // namespace

std::string withoutReferrals(std::string_view sentence) {
  const std::string text = withoutAddresses(sentence);
  const std::size_t start = std::min(text.find_first_not_of(' '), text.size());
  return text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

}  // namespace linewatch
