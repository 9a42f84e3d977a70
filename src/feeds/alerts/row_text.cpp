#include "feeds/alerts/row_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_set>

#include <unicode/uchar.h>

#include "feeds/text/ascii.h"
#include "feeds/text/referrals.h"
#include "feeds/text/sentences.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

// In code points. A row shows four lines or so at the usual text size and ends them with an ellipsis; in the
// text itself only what nobody meant to be read is cut.
constexpr std::size_t kEnough = 60;        // a further sentence follows only a shorter text ...
constexpr std::size_t kComfortable = 110;  // ... and only if a row has room for both ...
constexpr std::size_t kTooLittle = 40;     // ... or for most, where a shorter text alone says next to nothing
constexpr std::size_t kTolerable = 160;
constexpr std::size_t kLongestRowText = 400;

std::string onOneLine(std::string_view text) {
  std::string line;
  forEachSentence(text, [&line](std::string_view sentence) {
    line += jointAfter(line);
    line += sentence;
    return true;
  });
  return line;
}

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

/// The words alone, to compare what two texts say: " route 5 detour ".
std::string comparableWords(std::string_view text) {
  std::string words = " ";
  while (!text.empty()) {
    if (const char byte = text.front(); isAsciiAlphanumeric(byte)) {
      words += asciiSmall(byte);
      text.remove_prefix(1);
      continue;
    }
    const std::int32_t character = takeCharacter(text);
    if (u_isalnum(character) || u_charType(character) == U_NON_SPACING_MARK) {
      appendCharacter(words, u_foldCase(character, U_FOLD_CASE_DEFAULT));
    } else if (words.back() != ' ') {
      words += ' ';
    }
  }
  if (words.back() != ' ') words += ' ';
  return words;
}

// What agencies put before the numbers of the lines, as comparable words.
constexpr std::string_view kBeforeLineNumbers[] = {
    " affected route ",   " affected routes ",   " affected line ",    " affected lines ",
    " routes affected ",  " lines affected ",    " betroffene linie ", " betroffene linien ",
    " ligne concernée ",  " lignes concernées ", " líneas afectadas ", " linhas afetadas ",
    " linee interessate "};

bool areAllNumbered(std::string_view words) {
  while (!words.empty()) {
    const std::string_view word = words.substr(0, words.find(' '));
    if (word.find_first_of("0123456789") == std::string_view::npos) return false;
    words.remove_prefix(word.size() + 1);
  }
  return true;
}

/// "Affected routes: 215, 225": the row's shield and names tell those that the user follows.
bool onlyNumbersLines(std::string_view words) {
  const auto* const before = std::ranges::find_if(
      kBeforeLineNumbers, [&](std::string_view start) { return words.starts_with(start); });
  return before != std::end(kBeforeLineNumbers) && areAllNumbered(words.substr(before->size()));
}

// "Route 5 detour - Use stop 12" below the title "Route 5 detour" says "Use stop 12".
std::string_view withoutTitle(std::string_view sentence, std::string_view title) {
  if (title.empty() || !sentence.starts_with(title)) return sentence;
  const std::string_view rest = sentence.substr(title.size());
  for (const std::string_view mark : {": ", " : ", " | ", " - ", " \xE2\x80\x93 ", " \xE2\x80\x94 "}) {
    if (!rest.starts_with(mark)) continue;
    const std::string_view text = rest.substr(mark.size());
    // "Works 3 - 7 May" goes on where the title "Works 3" ends.
    const bool isRange = !text.empty() && isAsciiDigit(text.front());
    return text.empty() || isRange ? sentence : text;
  }
  return sentence;
}

/// Collects sentences as long as they are news and the text is short.
class SecondaryText {
 public:
  explicit SecondaryText(std::string_view title) : title_(title), known_(comparableWords(title)) {}

  bool isEnough() const { return countCharacters(text_) >= kEnough; }

  void offer(std::string_view written) {
    const std::string sentence = withoutReferrals(withoutTitle(written, title_));
    const std::string words = comparableWords(sentence);
    const bool isNews =
        words.size() > 1 && known_.find(words) == std::string::npos && !onlyNumbersLines(words);
    if (!isNews || !said_.insert(words).second) return;
    if (!text_.empty() && countCharacters(text_) + countCharacters(sentence) > roomForBoth()) {
      isFull_ = true;
      return;
    }
    text_ += jointAfter(text_);
    text_ += withoutLooseEnd(sentence);
  }
  bool isFull() const { return isFull_ || isEnough(); }
  std::string finish() && { return cutAtWord(std::move(text_)); }

 private:
  std::size_t roomForBoth() const { return countCharacters(text_) < kTooLittle ? kTolerable : kComfortable; }

  std::string_view title_;
  std::string known_;
  std::unordered_set<std::string> said_;
  std::string text_;
  bool isFull_ = false;
};

}  // namespace

std::string rowTitle(std::string_view header) { return cutAtWord(withoutLooseEnd(onOneLine(header))); }

std::string rowSecondaryText(std::string_view description, std::string_view title) {
  SecondaryText text(title);
  forEachSentence(description, [&text](std::string_view sentence) {
    text.offer(sentence);
    return !text.isFull();
  });
  return std::move(text).finish();
}

bool titleSays(std::string_view title, std::string_view text) {
  return comparableWords(title).find(comparableWords(text)) != std::string::npos;
}

}  // namespace linewatch
