#include "feeds/text/referrals.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "feeds/text/ascii.h"

namespace linewatch {

namespace {

constexpr std::size_t kNone = std::string_view::npos;

// How sentences begin whose first half only leads to an address: "For more information, visit …".
constexpr std::string_view kInvitations[] = {
    "details", "find", "for", "further", "für",  "info", "learn", "mais", "meer", "mehr",  "more", "más",
    "nähere",  "para", "per", "please",  "plus", "pour", "see",   "to",   "view", "visit", "voor", "weitere",
};

/// Where the first address begins, its scheme included; `kNone` without one.
std::size_t findAddress(std::string_view text) {
  const std::size_t place = std::min(text.find("://"), text.find("www."));
  if (place == kNone) return kNone;
  const std::size_t before = text.find_last_of(" ([<", place);
  return before == kNone ? 0 : before + 1;
}

/// Takes out the brackets around the address at `place`, with all in them; false when there are none.
bool removeBrackets(std::string& text, std::size_t place) {
  const std::size_t open = text.find_last_of("()", place), close = text.find(')', place);
  if (open == kNone || close == kNone || text[open] == ')') return false;
  std::size_t start = open;
  if (start > 0 && text[start - 1] == ' ') --start;
  text.erase(start, close + 1 - start);
  // "[the map](https://…)" is how some write a link.
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

/// What stands before the clause with the address; empty when that is part of the invitation.
std::string_view clausesBefore(std::string_view text, std::size_t place) {
  std::size_t end = kNone;
  for (const std::string_view boundary : {", ", "; ", " - ", " \xE2\x80\x93 ", " \xE2\x80\x94 "}) {
    const std::size_t found = text.substr(0, place).rfind(boundary);
    if (found != kNone && (end == kNone || found > end)) end = found;
  }
  if (end == kNone || isInvitation(text)) return {};
  return text.substr(0, end);
}

}  // namespace

std::string withoutReferrals(std::string_view sentence) {
  std::string text(sentence);
  for (std::size_t place = 0; (place = findAddress(text)) != kNone;) {
    if (!removeBrackets(text, place)) return std::string(clausesBefore(text, place));
  }
  return text;
}

}  // namespace linewatch
