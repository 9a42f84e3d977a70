#include "feeds/alerts/row_text.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <unordered_set>
#include <utility>

#include <unicode/uchar.h>

#include "feeds/text/ascii.h"
#include "feeds/text/comparable_words.h"
#include "feeds/text/no_news.h"
#include "feeds/text/referrals.h"
#include "feeds/text/sentence_ends.h"
#include "feeds/text/sentences.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

// In code points. A row shows about four lines at the usual text size and ends the last one with an ellipsis.
// The text itself is only cut where it is endless.
constexpr std::size_t kEnough = 60;        // a further sentence follows only a shorter text ...
constexpr std::size_t kComfortable = 110;  // ... and only if a row has room for both ...
constexpr std::size_t kTooLittle = 40;     // ... or for most, where a shorter text alone says next to nothing
constexpr std::size_t kTolerable = 160;
constexpr std::size_t kLongestRowText = 400;

// How labels of what is affected begin, as comparable words.
constexpr std::string_view kAffected[] = {" affected ", " betroffene", " concerné",
                                          " afectad",   " afetad",     " interessat"};

// In front of the date of an update, as comparable words.
constexpr std::string_view kUpdateNotes[] = {" aktualisiert ", " maj ", " update ", " updated "};

constexpr std::string_view kMarksAfterTitle[] = {
    ": ", " : ", " | ", " - ", " \xE2\x80\x93 ", " \xE2\x80\x94 "};

std::string cutAtWord(std::string text) {
  if (countCharacters(text) <= kLongestRowText) return text;
  std::string_view rest = text;
  for (std::size_t taken = 0; taken + 1 < kLongestRowText; ++taken) takeCharacter(rest);
  const std::size_t end = text.size() - rest.size();
  const std::size_t word = text.rfind(' ', end);
  text.resize(word != std::string::npos && word > end / 2 ? word : end);
  while (!text.empty() && std::string_view(" ,;:-").find(text.back()) != std::string_view::npos)
    text.pop_back();
  return text.append(kEllipsis);
}

std::string withoutLooseEnd(std::string text) {
  for (;;) {
    const std::size_t before = text.size();
    while (!text.empty() && std::string_view(" -:;,|/").find(text.back()) != std::string_view::npos)
      text.pop_back();
    for (const std::string_view dash : {"\xE2\x80\x93", "\xE2\x80\x94"}) {
      if (text.ends_with(dash)) text.resize(text.size() - dash.size());
    }
    if (text.size() == before) return text;
  }
}

void appendSentence(std::string& text, std::string_view sentence) {
  text += jointAfter(text);
  text += sentence;
}

bool isMarkAfterTitle(std::string_view rest) {
  return std::ranges::any_of(kMarksAfterTitle, [&](std::string_view mark) { return rest.starts_with(mark); });
}

/// True when a new sentence, line or field starts after the title: "Works 3" goes on in "Works 3 - 7 May",
/// and "Line 5" in "Line 5 is late".
bool endsTitle(std::string_view rest) {
  const std::size_t next = rest.find_first_not_of(" \n.!?)]\"'|:-");
  if (next == std::string_view::npos) return true;
  const std::string_view gap = rest.substr(0, next), follower = rest.substr(next);
  std::string_view after = follower;
  const bool isLowerCase = u_islower(takeCharacter(after)) != 0;
  if (gap.find('\n') != std::string_view::npos) return !isLowerCase;
  if (endsSentence(gap.substr(0, gap.find(' '))) && !isLowerCase) return true;
  if (isMarkAfterTitle(rest)) return !isAsciiDigit(follower.front());
  const bool isLabel = follower.substr(0, follower.find(' ')).ends_with(':');
  return isLabel && !isLowerCase;
}

/// "Route 5 detour - Use stop 12" below the title "Route 5 detour" says "Use stop 12". `titleWords` are
/// comparable words.
std::string_view withoutTitle(std::string_view text, std::string_view titleWords) {
  std::string_view rest = text;
  if (titleWords.size() <= 1 || !takeWords(rest, titleWords) || !endsTitle(rest)) return text;
  for (const std::string_view mark : kMarksAfterTitle) {
    if (rest.starts_with(mark)) return rest.substr(mark.size());
  }
  const std::size_t next = rest.find_first_not_of(" \n.!?)]\"'|");
  return next == std::string_view::npos ? std::string_view() : rest.substr(next);
}

bool hasDigit(std::string_view word) { return word.find_first_of("0123456789") != std::string_view::npos; }

/// Every word of `words` that has a digit stands in `others`; both are comparable words.
bool hasAllNumbersOf(std::string_view others, std::string_view words) {
  while (true) {
    const std::string_view word = takeWord(words);
    if (word.empty()) return true;
    if (hasDigit(word) && others.find(comparableWords(word)) == std::string_view::npos) return false;
  }
}

/// "Lines 2 and 4: stop A is closed" below the title "Lines 2 and 4: works" says "stop A is closed". Where
/// the title has more numbers than the lead, the lead tells which of them is meant, and stays.
std::string_view withoutKnownLead(std::string_view sentence, std::string_view titleWords) {
  const std::size_t colon = sentence.find(':');
  if (colon == std::string_view::npos || sentence.substr(colon + 1, 1) != " ") return sentence;
  const std::string lead = comparableWords(sentence.substr(0, colon));
  const bool isKnown = hasDigit(lead) && titleWords.find(lead) != std::string_view::npos;
  const std::string_view rest = sentence.substr(colon + 2);
  return isKnown && hasAllNumbersOf(lead, titleWords) && !rest.empty() ? rest : sentence;
}

/// "Affected stations: Harbour" below the title "Harbour closed" says nothing new.
bool isKnownField(std::string_view sentence, std::string_view titleWords) {
  const std::size_t colon = sentence.find(": ");
  if (colon == std::string_view::npos) return false;
  const std::string label = comparableWords(sentence.substr(0, colon));
  const bool isAboutAffected = std::ranges::any_of(
      kAffected, [&](std::string_view start) { return label.find(start) != std::string::npos; });
  return isAboutAffected &&
         titleWords.find(comparableWords(sentence.substr(colon))) != std::string_view::npos;
}

/// The sentence without a note at its start that it was updated: "Update 3 May, ...".
std::string_view withoutUpdateNote(std::string_view sentence) {
  std::string_view rest = sentence;
  const std::string word = comparableWords(takeWord(rest));
  if (std::ranges::find(kUpdateNotes, word) == std::end(kUpdateNotes)) return sentence;
  const std::size_t end = rest.find_first_not_of(" 0123456789/.,:-");
  return end == std::string_view::npos || end == 0 ? sentence : rest.substr(end);
}

/// "Line 5, works in Long Street, detour until Friday" below the title "Line 5: works in Long Street" says
/// "detour until Friday". Only what goes on in lower case is no further item of a list.
std::string_view withoutKnownClauses(std::string_view sentence, std::string_view titleWords) {
  constexpr std::ptrdiff_t kFewestWords = 4;
  std::string_view rest = withoutUpdateNote(sentence);
  std::ptrdiff_t known = 0;
  for (std::size_t comma = 0; (comma = rest.find(", ")) != std::string_view::npos;) {
    const std::string clause = comparableWords(rest.substr(0, comma));
    if (titleWords.find(clause) == std::string_view::npos) break;
    known += std::ranges::count(clause, ' ') - 1;
    rest = rest.substr(comma + 2);
  }
  return known >= kFewestWords && startsLowerCase(rest) ? rest : sentence;
}

/// Collects sentences as long as they are news and the text is short.
class SecondaryText {
 public:
  explicit SecondaryText(std::string_view title) : titleWords_(comparableWords(title)) {}

  const std::string& titleWords() const { return titleWords_; }

  void offer(std::string_view written) {
    std::string_view told = withoutTitle(withoutSalutation(written), titleWords_);
    told = withoutKnownClauses(withoutKnownLead(told, titleWords_), titleWords_);
    const std::string sentence = withoutReferrals(withoutKnownFields(told, titleWords_));
    const std::string words = comparableWords(sentence);
    const bool isKnown = titleWords_.find(words) != std::string::npos || isKnownField(sentence, titleWords_);
    const bool isNews = !isKnown && !isNoNews(sentence);
    if (!isNews || !said_.insert(words).second) return;
    if (!text_.empty() && countCharacters(text_) + countCharacters(sentence) > roomForBoth()) {
      isFull_ = true;
      return;
    }
    appendSentence(text_, capitalized(withoutLooseEnd(sentence)));
  }
  bool isFull() const { return isFull_ || countCharacters(text_) >= kEnough; }
  std::string finish() && { return cutAtWord(std::move(text_)); }

 private:
  std::size_t roomForBoth() const { return countCharacters(text_) < kTooLittle ? kTolerable : kComfortable; }

  std::string titleWords_;
  std::unordered_set<std::string> said_;
  std::string text_;
  bool isFull_ = false;
};

// Words beside a line's name that tell nothing of what happens to it.
constexpr std::string_view kLineWords[] = {
    " line ",   " lines ", " route ", " routes ", " bus ",   " tram ",  " train ", " linie ",
    " linien ", " zug ",   " ligne ", " lignes ", " línea ", " linha ", " linea ", " lijn ",
};

/// "IR 36": the category of a train and a number are what riders call it.
bool isTrainName(std::string_view title) {
  constexpr std::size_t kLongestCategory = 4;
  const std::size_t space = title.find(' ');
  if (space > kLongestCategory) return false;  // also when there is no space
  const std::string_view number = title.substr(space + 1);
  return std::ranges::all_of(title.substr(0, space), isAsciiCapital) && !number.empty() &&
         std::ranges::all_of(number, isAsciiDigit);
}

}  // namespace

std::string rowTitle(std::string_view header, std::string_view language) {
  std::string title, whole;
  forEachSentence(header, language, [&](std::string_view sentence) {
    appendSentence(whole, sentence);
    const std::string told = withoutReferrals(withoutSalutation(sentence));
    if (comparableWords(told).size() > 1) appendSentence(title, told);
    return true;
  });
  return cutAtWord(withoutLooseEnd(title.empty() ? std::move(whole) : std::move(title)));
}

std::string rowSecondaryText(std::string_view description, std::string_view title,
                             std::string_view language) {
  SecondaryText text(title);
  // The title goes before sentences are cut: without a full stop it would run into the first one.
  for (std::string_view rest; (rest = withoutTitle(description, text.titleWords())) != description;)
    description = rest;
  forEachSentence(description, language, [&text](std::string_view sentence) {
    text.offer(sentence);
    return !text.isFull();
  });
  return std::move(text).finish();
}

bool titleSays(std::string_view title, std::string_view text) {
  return comparableWords(title).find(comparableWords(text)) != std::string::npos;
}

bool onlyNamesLine(std::string_view title, std::string_view shortName, std::string_view longName) {
  if (isTrainName(title)) return false;
  const std::string names = comparableWords(shortName) + comparableWords(longName);
  bool isNamed = false;
  for (std::string_view word; !(word = takeWord(title)).empty();) {
    const std::string comparable = comparableWords(word);
    const bool isOfName = names.find(comparable) != std::string::npos;
    if (!isOfName && std::ranges::find(kLineWords, comparable) == std::end(kLineWords)) return false;
    isNamed = isNamed || isOfName;
  }
  return isNamed;
}

}  // namespace linewatch
