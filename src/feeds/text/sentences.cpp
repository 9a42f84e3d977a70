#include "feeds/text/sentences.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>

#include <unicode/uchar.h>

#include "feeds/text/ascii.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

using TakeSentence = std::function<bool(std::string_view)>;

// What agencies cut short, in the languages of their texts; in byte order and without the full stop.
constexpr std::string_view kAbbreviations[] = {
    "abs",    "abzw",  "al",   "approx", "apr",     "aprox", "aug",  "av",   "avda",    "ave",
    "bd",     "bf",    "bhf",  "bldg",   "blvd",    "bru",   "brux", "bzw",  "ca",      "col",
    "cres",   "ct",    "ctr",  "ctra",   "dec",     "dept",  "dez",  "di",   "dir",     "do",
    "dr",     "dra",   "ed",   "ehem",   "einschl", "eng",   "esc",  "est",  "estr",    "evt",
    "evtl",   "feb",   "fr",   "fri",    "ft",      "gen",   "ggf",  "gov",  "gral",    "gén",
    "hausnr", "hbf",   "hr",   "hrs",    "hst",     "hts",   "hwy",  "imp",  "incl",    "inkl",
    "intl",   "jan",   "jct",  "jr",     "jul",     "jun",   "ks",   "lg",   "ln",      "lt",
    "mar",    "mass",  "max",  "mi",     "min",     "mme",   "mo",   "mon",  "mr",      "mrs",
    "ms",     "mt",    "mtn",  "nov",    "nr",      "nám",   "oct",  "okt",  "os",      "pkwy",
    "pl",     "pla",   "prof", "pt",     "pza",     "pç",    "rd",   "resp", "ri",      "rte",
    "rtg",    "sa",    "sat",  "sep",    "sept",    "so",    "sog",  "sq",   "sr",      "st",
    "sta",    "staz",  "std",  "ste",    "stn",     "sto",   "str",  "sun",  "tel",     "thu",
    "thur",   "thurs", "tue",  "tues",   "ul",      "urb",   "usw",  "vgl",  "vorauss", "voraussichtl",
    "vs",     "wed",   "wg",   "zw",     "zzgl",    "św",
};
// Articles, and words that stand before them: a line that ends so was wrapped there. Without those that may
// end a sentence too: "fällt aus", "way in", "8 am".
constexpr std::string_view kLeadingOn[] = {
    "al",   "and",   "at",   "au",  "aux", "between", "da",       "dans", "das",  "de",    "dei",
    "del",  "della", "dem",  "den", "der", "des",     "di",       "die",  "dos",  "du",    "e",
    "ed",   "eine",  "el",   "em",  "en",  "et",      "for",      "from", "für",  "gegen", "into",
    "la",   "las",   "le",   "les", "los", "na",      "och",      "of",   "or",   "os",    "por",
    "pour", "près",  "sur",  "the", "to",  "und",     "until",    "van",  "vers", "via",   "vom",
    "von",  "voor",  "with", "y",   "zum", "zur",     "zwischen", "à",
};
// Months as "27. Oktober" has them behind the day.
constexpr std::string_view kMonthsAfterOrdinals[] = {"jan", "feb", "mar", "mär", "apr", "mai", "maj", "jun",
                                                     "jul", "aug", "sep", "okt", "nov", "dez", "dec"};

constexpr std::size_t kShortestWrappedLine = 60;
constexpr std::size_t kLongestWrappedLine = 90;

std::string withoutCase(std::string_view text) {
  std::string result;
  while (!text.empty()) appendCharacter(result, u_foldCase(takeCharacter(text), U_FOLD_CASE_DEFAULT));
  return result;
}

bool isTerminator(std::int32_t character) {
  return character == '.' || character == '!' || character == '?' || character == 0x2026;
}
// Of scripts that set no space behind it.
bool isFullWidthTerminator(std::int32_t character) {
  return character == 0x3002 || character == 0xFF01 || character == 0xFF1F;
}
bool isCloser(std::int32_t character) {
  constexpr std::u32string_view kClosers = U")]}\"'»”’";
  return kClosers.find(static_cast<char32_t>(character)) != std::u32string_view::npos;
}

/// The word that ends the text, up to a space or an opening bracket.
std::string_view lastWord(std::string_view text) {
  const std::size_t before = text.find_last_of(" \n([/\"");
  return before == std::string_view::npos ? text : text.substr(before + 1);
}

bool isDayBeforeMonth(std::string_view word, std::string_view next) {
  if (word.size() > 2 || !std::ranges::all_of(word, isAsciiDigit)) return false;
  const std::string month = withoutCase(next.substr(0, 8));
  return std::ranges::any_of(kMonthsAfterOrdinals,
                             [&](std::string_view name) { return month.starts_with(name); });
}

// "stop No. 1234", "kl. 7": a short word with a number behind it.
bool isNumbered(std::string_view word, std::string_view next) {
  constexpr std::size_t kLongestAbbreviated = 4;
  return !next.empty() && isAsciiDigit(next.front()) && countCharacters(word) <= kLongestAbbreviated &&
         std::ranges::none_of(word, isAsciiDigit);
}

// `word` stands before the full stop, `next` behind it and the space.
bool mayGoOn(std::string_view word, std::string_view next) {
  const bool isInitial = countCharacters(word) == 1 && !isAsciiDigit(word.front());
  const bool isAddress = word.find("://") != std::string_view::npos || word.starts_with("www.");
  const bool isDotted = word.find('.') != std::string_view::npos && !isAddress;  // "a.m", "z.B"
  return isInitial || isDotted || isNumbered(word, next) ||
         std::ranges::binary_search(kAbbreviations, withoutCase(word)) || isDayBeforeMonth(word, next) ||
         (word.ends_with("str") && !next.empty() && isAsciiDigit(next.front()));  // "Bahnhofstr. 5"
}

/// "Detour at": what belongs to it stands on the next line.
bool leadsOn(std::string_view line) {
  return std::ranges::binary_search(kLeadingOn, lastWord(line)) && lastWord(line).size() < line.size();
}

bool startsLowerCase(std::string_view text) { return !text.empty() && u_islower(takeCharacter(text)) != 0; }

bool endsWithAny(std::string_view text, std::string_view bytes) {
  return !text.empty() && bytes.find(text.back()) != std::string_view::npos;
}

/// Cuts a line into its sentences.
class SentenceCutter {
 public:
  SentenceCutter(std::string_view line, const TakeSentence& take) : line_(line), take_(take) {}

  /// False when no more are wanted.
  bool cut() {
    while (wantsMore_ && (place_ = nextCandidate()) < line_.size()) {
      const std::size_t stop = place_;
      const std::int32_t character = takeAt(place_);
      if (isFullWidthTerminator(character)) {
        finish(place_);
      } else if (isTerminator(character)) {
        consider(stop, character);
      }
    }
    finish(line_.size());
    return wantsMore_;
  }

 private:
  // Where the next byte is that may belong to a terminator.
  std::size_t nextCandidate() const {
    const auto mayEnd = [](char byte) {
      return byte == '.' || byte == '!' || byte == '?' || static_cast<unsigned char>(byte) >= 0xE2;
    };
    const auto* const found = std::find_if(line_.begin() + place_, line_.end(), mayEnd);
    return static_cast<std::size_t>(found - line_.begin());
  }

  // The character at a place, which moves behind it.
  std::int32_t takeAt(std::size_t& place) const {
    std::string_view rest = line_.substr(place);
    const std::int32_t character = takeCharacter(rest);
    place = line_.size() - rest.size();
    return character;
  }

  void consider(std::size_t stop, std::int32_t terminator) {
    bool isSingle = true;
    for (std::size_t after = place_; after < line_.size(); place_ = after) {
      const std::int32_t next = takeAt(after);
      if (!isTerminator(next) && !isCloser(next)) break;
      isSingle = false;
    }
    if (place_ >= line_.size() || line_[place_] != ' ') return;
    const std::string_view next = line_.substr(place_ + 1);
    const std::string_view word = lastWord(line_.substr(start_, stop - start_));
    if (startsLowerCase(next) || (terminator == '.' && isSingle && mayGoOn(word, next))) return;
    finish(place_);
  }

  void finish(std::size_t end) {
    const std::string_view sentence = line_.substr(start_, end - start_);
    if (!sentence.empty() && wantsMore_) wantsMore_ = take_(sentence);
    start_ = std::min(line_.find_first_not_of(' ', end), line_.size());
    place_ = std::max(place_, start_);
  }

  std::string_view line_;
  const TakeSentence& take_;
  bool wantsMore_ = true;
  std::size_t start_ = 0;
  std::size_t place_ = 0;
};

/// Puts lines that belong together on one line.
class LineJoiner {
 public:
  explicit LineJoiner(const TakeSentence& take) : take_(take) {}

  void add(std::string_view line, bool startsParagraph) {
    const bool isItem = removeBullet(line);
    if (line.empty()) return;
    const char* joint = current_.empty() ? "" : jointBefore(line, startsParagraph, isItem);
    if (!joint) flush();
    if (joint) current_ += joint;
    current_ += line;
    lastLineLength_ = countCharacters(line);
  }
  void flush() {
    wantsMore_ = wantsMore_ && SentenceCutter(current_, take_).cut();
    current_.clear();
    isInList_ = false;
  }

  bool wantsMore() const { return wantsMore_; }

 private:
  static bool removeBullet(std::string_view& line) {
    for (const std::string_view bullet : {"\xE2\x80\xA2 ", "- ", "\xE2\x80\x93 ", "* ", "\xC2\xB7 "}) {
      if (!line.starts_with(bullet)) continue;
      line.remove_prefix(bullet.size());
      return true;
    }
    return false;
  }

  // What to put between; null when the line starts anew.
  const char* jointBefore(std::string_view line, bool startsParagraph, bool isItem) {
    if (endsWithAny(current_, ":")) {
      if (startsParagraph && line.ends_with(':')) return nullptr;
      isInList_ = isInList_ || !startsParagraph || isItem;
      return " ";
    }
    if (startsParagraph) return nullptr;
    if (isInList_ || isItem) return jointInList();
    if (startsLowerCase(line) || endsWithAny(current_, ",") || leadsOn(current_)) return " ";
    const bool isWrapped = lastLineLength_ >= kShortestWrappedLine && lastLineLength_ <= kLongestWrappedLine;
    return isWrapped && !endsSentence(current_) ? " " : nullptr;
  }

  const char* jointInList() const {
    if (endsSentence(current_)) return nullptr;
    return endsWithAny(current_, ",;") ? " " : ", ";
  }

  const TakeSentence& take_;
  bool wantsMore_ = true;
  std::string current_;
  bool isInList_ = false;
  std::size_t lastLineLength_ = 0;
};

}  // namespace

void forEachSentence(std::string_view plainText, const std::function<bool(std::string_view)>& take) {
  LineJoiner joiner(take);
  bool startsParagraph = false;
  while (!plainText.empty() && joiner.wantsMore()) {
    const std::size_t end = std::min(plainText.find('\n'), plainText.size());
    const std::string_view line = plainText.substr(0, end);
    joiner.add(line, startsParagraph);
    startsParagraph = line.empty();
    plainText.remove_prefix(std::min(end + 1, plainText.size()));
  }
  joiner.flush();
}

namespace {

/// The last character that is no closing bracket or quotation mark; 0 when there is none among the last few.
std::int32_t lastCharacterInside(std::string_view text) {
  constexpr std::size_t kMostClosers = 16;  // bytes
  text.remove_prefix(text.size() - std::min(text.size(), kMostClosers));
  std::int32_t last = 0;
  while (!text.empty()) {
    const std::int32_t character = takeCharacter(text);
    if (!isCloser(character)) last = character;
  }
  return last;
}

}  // namespace

bool endsSentence(std::string_view text) {
  const std::int32_t last = lastCharacterInside(text);
  return isTerminator(last) || isFullWidthTerminator(last);
}

std::string_view jointAfter(std::string_view text) {
  if (text.empty() || isFullWidthTerminator(lastCharacterInside(text))) return "";
  return endsSentence(text) ? " " : ". ";
}

}  // namespace linewatch
