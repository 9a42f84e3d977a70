#include "feeds/alerts/row_text.h"

#include <algorithm>
#include <cstddef>
#include <unordered_set>
#include <utility>

#include "feeds/alerts/known_title.h"
#include "feeds/text/ascii.h"
#include "feeds/text/comparable_words.h"
#include "feeds/text/no_news.h"
#include "feeds/text/referrals.h"
#include "feeds/text/sentence_ends.h"
#include "feeds/text/sentences.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

// In code points. A row shows about four lines at the usual text size.
constexpr std::size_t kEnough = 60;        // no sentence is added to a text as long as this
constexpr std::size_t kComfortable = 110;  // a text with an added sentence is at most as long as this ...
constexpr std::size_t kTooLittle = 40;     // ... but where it is shorter than this without it,
constexpr std::size_t kTolerable = 160;    // it may be as long as this
constexpr std::size_t kLongestRowText = 400;

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

/// Collects sentences with news until the text is long enough.
class SecondaryText {
 public:
  explicit SecondaryText(const KnownTitle& title) : title_(title) {}

  void offer(std::string_view written) {
    const std::string sentence = newsIn(written);
    if (isReasonHeading(sentence)) {
      label_ = withoutLooseEnd(sentence) + ": ";
      return;
    }
    const std::string label = std::exchange(label_, {});
    const bool isNews = !title_.says(sentence) && !isNoNews(sentence);
    if (!isNews || !said_.insert(comparableWords(sentence)).second) return;
    const std::string labelled = label + capitalized(withoutLooseEnd(sentence));
    if (!text_.empty() && countCharacters(text_) + countCharacters(labelled) > roomForBoth()) {
      isFull_ = true;
      return;
    }
    appendSentence(text_, labelled);
  }
  bool isFull() const { return isFull_ || countCharacters(text_) >= kEnough; }
  std::string finish() && { return cutToRow(std::move(text_)); }

 private:
  std::string newsIn(std::string_view written) const {
    const std::string_view told = title_.withoutTitle(withoutUpdateNote(withoutPreamble(written)));
    return withoutReferrals(withoutKnownFields(title_.newPartOf(told), title_.words()));
  }
  std::size_t roomForBoth() const { return countCharacters(text_) < kTooLittle ? kTolerable : kComfortable; }

  const KnownTitle& title_;
  std::unordered_set<std::string> said_;
  std::string label_;  // of the next sentence: "Reason: "
  std::string text_;
  bool isFull_ = false;
};

std::string secondaryTextOf(std::string_view description, const KnownTitle& title,
                            std::string_view language) {
  SecondaryText text(title);
  // The title is removed before sentences are cut, because without a full stop the first one would include
  // it.
  for (std::string_view rest; (rest = title.withoutTitle(description)) != description;) description = rest;
  forEachSentence(description, language, [&text](std::string_view sentence) {
    text.offer(sentence);
    return !text.isFull();
  });
  return std::move(text).finish();
}

/// A category of trains and a number, e.g. "IR 36".
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
    const std::string told = withoutReferrals(withoutPreamble(sentence));
    if (comparableWords(told).size() > 1) appendSentence(title, told);
    return true;
  });
  return capitalized(cutToRow(withoutLooseEnd(title.empty() ? std::move(whole) : std::move(title))));
}

std::string rowSecondaryText(std::string_view description, std::string_view title,
                             std::string_view language) {
  const KnownTitle known(title);
  const std::string_view change = underChangeHeading(description);
  std::string text = change.empty() ? std::string() : secondaryTextOf(change, known, language);
  return text.empty() ? secondaryTextOf(description, known, language) : text;
}

std::string titleFromText(std::string_view description, std::string_view language) {
  std::string title;
  forEachSentence(description, language, [&title](std::string_view sentence) {
    const std::string told = withoutReferrals(withoutUpdateNote(withoutPreamble(sentence)));
    if (!isNoNews(told)) title = capitalized(withoutLooseEnd(told));
    return title.empty();
  });
  return countCharacters(title) <= kTolerable ? title : std::string();
}

std::string cutToRow(std::string text) {
  if (countCharacters(text) <= kLongestRowText) return text;
  std::string_view rest = text;
  for (std::size_t taken = 0; taken + 1 < kLongestRowText; ++taken) takeCharacter(rest);
  const std::size_t end = text.size() - rest.size();
  const auto isNear = [end](std::size_t place) { return place != std::string::npos && place > end / 2; };
  const std::size_t item = text.rfind(", ", end), word = text.rfind(' ', end);
  text.resize(isNear(item) ? item : isNear(word) ? word : end);
  while (!text.empty() && std::string_view(" ,;:-").find(text.back()) != std::string_view::npos)
    text.pop_back();
  return text.append(kEllipsis);
}

void appendSentence(std::string& text, std::string_view sentence) {
  text += jointAfter(text);
  text += sentence;
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
    if (!isOfName && !isLineWord(comparable)) return false;
    isNamed = isNamed || isOfName;
  }
  return isNamed;
}

}  // namespace linewatch
