#include "feeds/text/sentences.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ures.h>
#include <unicode/utext.h>

#include "feeds/text/ascii.h"
#include "feeds/text/joined_lines.h"
#include "feeds/text/sentence_ends.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

using TakeSentence = std::function<bool(std::string_view)>;

// The languages that ICU knows abbreviations of.
constexpr std::string_view kLanguagesWithAbbreviations[] = {"de", "en", "es", "fr", "it", "pt", "ru"};

// Abbreviations of timetables and street names that ICU's lists lack, also in spellings of agencies. In byte
// order, in lower case, without the full stop.
constexpr std::string_view kAbbreviations[] = {
    "abzw",       "al",   "allg", "approx",    "apr",          "aprox", "aug",   "av",   "avda", "ave",
    "bd",         "bf",   "bhf",  "bldg",      "blvd",         "bru",   "brux",  "bzw",  "ca",   "cres",
    "ct",         "ctr",  "ctra", "dec",       "dept",         "di",    "dir",   "do",   "dr",   "eing",
    "eng",        "esc",  "est",  "estr",      "evt",          "feb",   "fr",    "fri",  "ft",   "gen",
    "gov",        "gral", "gén",  "hausnr",    "hrs",          "hst",   "hts",   "hwy",  "imp",  "incl",
    "intl",       "jan",  "jct",  "jr",        "jul",          "jun",   "ks",    "lg",   "ln",   "lt",
    "mar",        "mass", "max",  "mi",        "min",          "mme",   "mo",    "mon",  "mt",   "mtn",
    "nov",        "nr",   "nám",  "obertürkh", "oct",          "okt",   "os",    "pkwy", "pl",   "pla",
    "pt",         "pza",  "pç",   "rd",        "resp",         "ri",    "rte",   "rtg",  "sa",   "sat",
    "sep",        "sept", "so",   "sq",        "sr",           "st",    "sta",   "staz", "ste",  "stn",
    "sto",        "str",  "sun",  "tel",       "thu",          "thur",  "thurs", "tue",  "tues", "ul",
    "untertürkh", "urb",  "usw",  "vorauss",   "voraussichtl", "vsl",   "vstl",  "wed",  "wg",   "zw",
    "św",
};
// The first letters of months, as in "27. Oktober".
constexpr std::string_view kMonthsAfterOrdinals[] = {"jan", "feb", "mar", "mär", "apr", "mai", "maj", "jun",
                                                     "jul", "aug", "sep", "okt", "nov", "dez", "dec"};

std::string withoutCase(std::string_view text) {
  std::string result;
  while (!text.empty()) appendCharacter(result, u_foldCase(takeCharacter(text), U_FOLD_CASE_DEFAULT));
  return result;
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

/// True when the full stop behind `word` may belong to an abbreviation or a date. `next` is the text behind
/// it.
bool mayBeAbbreviation(std::string_view word, std::string_view next) {
  const bool isInitial = countCharacters(word) == 1 && !isAsciiDigit(word.front());
  const bool isAddress = word.find("://") != std::string_view::npos || word.starts_with("www.");
  const bool isDotted = word.find('.') != std::string_view::npos && !isAddress;  // "a.m", "z.B"
  return isInitial || isDotted || isNumbered(word, next) ||
         std::ranges::binary_search(kAbbreviations, withoutCase(word)) || isDayBeforeMonth(word, next) ||
         (word.ends_with("str") && !next.empty() && isAsciiDigit(next.front()));  // "Bahnhofstr. 5"
}

struct CloseResource {
  void operator()(UResourceBundle* resource) const { ures_close(resource); }
};
using Resource = std::unique_ptr<UResourceBundle, CloseResource>;

/// How ICU cuts sentences of a language.
class SentenceRules {
 public:
  /// `language` is one of `kLanguagesWithAbbreviations`, or empty for any other.
  explicit SentenceRules(const std::string& language) {
    UErrorCode trouble = U_ZERO_ERROR;
    breaks_.reset(icu::BreakIterator::createSentenceInstance(icu::Locale(language.c_str()), trouble));
    if (U_FAILURE(trouble)) breaks_ = nullptr;
    if (!language.empty()) loadAbbreviations(language);
  }

  /// Null when ICU's data is missing.
  icu::BreakIterator* breaks() const { return breaks_.get(); }
  /// `word` is written with its full stop.
  bool isAbbreviation(std::string_view word) const { return abbreviations_.contains(std::string(word)); }

 private:
  // ICU's own filtered iterator compares only the ends of words: it takes the "r." of "weiter." for an
  // abbreviation. So its list is read here, and compared with whole words.
  void loadAbbreviations(const std::string& language) {
    UErrorCode trouble = U_ZERO_ERROR;
    const Resource data(ures_open(U_ICUDATA_NAME "-brkitr", language.c_str(), &trouble));
    const Resource exceptions(ures_getByKey(data.get(), "exceptions", nullptr, &trouble));
    const Resource list(ures_getByKey(exceptions.get(), "SentenceBreak", nullptr, &trouble));
    while (U_SUCCESS(trouble) && ures_hasNext(list.get()) != 0) {
      std::int32_t length = 0;
      const UChar* const text = ures_getNextString(list.get(), &length, nullptr, &trouble);
      std::string abbreviation;
      if (U_SUCCESS(trouble)) icu::UnicodeString(text, length).toUTF8String(abbreviation);
      abbreviations_.insert(std::move(abbreviation));
    }
  }

  std::unique_ptr<icu::BreakIterator> breaks_;
  std::unordered_set<std::string> abbreviations_;
};

/// The rules of this thread for a language tag, made when first used.
const SentenceRules& rulesFor(std::string_view tag) {
  static thread_local std::map<std::string, SentenceRules> rules;
  std::string language(tag.substr(0, tag.find_first_of("-_")));
  std::ranges::transform(language, language.begin(), asciiSmall);
  if (!std::ranges::binary_search(kLanguagesWithAbbreviations, language)) language.clear();
  return rules.try_emplace(language, language).first->second;
}

struct CloseText {
  void operator()(UText* text) const { utext_close(text); }
};

/// Cuts one line into its sentences.
class SentenceCutter {
 public:
  SentenceCutter(std::string_view line, std::string_view language, const TakeSentence& take)
      : line_(line), language_(language), take_(take) {}

  /// False when no more are wanted.
  bool cut() {
    if (mayHaveBreak()) cutAtBreaks(rulesFor(language_));
    return finish(line_.size());
  }

 private:
  // Most lines have no terminator but the last character, and need no iterator.
  bool mayHaveBreak() const {
    const auto mayEnd = [](char byte) {
      return byte == '.' || byte == '!' || byte == '?' || static_cast<unsigned char>(byte) >= 0xE2;
    };
    return line_.size() > 1 && std::any_of(line_.begin(), line_.end() - 1, mayEnd);
  }

  void cutAtBreaks(const SentenceRules& rules) {
    UErrorCode trouble = U_ZERO_ERROR;
    const std::unique_ptr<UText, CloseText> text(
        utext_openUTF8(nullptr, line_.data(), static_cast<std::int64_t>(line_.size()), &trouble));
    icu::BreakIterator* const breaks = rules.breaks();
    if (breaks == nullptr || U_FAILURE(trouble)) return;
    breaks->setText(text.get(), trouble);
    std::int32_t place = 0;
    while (U_SUCCESS(trouble) && wantsMore_ && (place = breaks->next()) != icu::BreakIterator::DONE) {
      if (isEnd(static_cast<std::size_t>(place), rules)) finish(static_cast<std::size_t>(place));
    }
  }

  bool isEnd(std::size_t place, const SentenceRules& rules) const {
    if (place <= start_ || place >= line_.size()) return false;
    const std::string_view sentence = withoutSpaces(line_.substr(start_, place - start_));
    const std::string_view next = line_.substr(place);
    if (sentence.empty() || startsLowerCase(next)) return false;
    const bool hasSpace = line_[place - 1] == ' ';
    if (!hasSpace) return endsSentence(sentence) && static_cast<unsigned char>(sentence.back()) >= 0x80;
    if (sentence.back() != '.' || sentence.ends_with("..")) return true;
    const std::string_view word = lastWord(sentence);
    return !rules.isAbbreviation(word) && !mayBeAbbreviation(word.substr(0, word.size() - 1), next);
  }

  static std::string_view withoutSpaces(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
  }

  bool finish(std::size_t end) {
    const std::string_view sentence = withoutSpaces(line_.substr(start_, end - start_));
    if (!sentence.empty() && wantsMore_) wantsMore_ = take_(sentence);
    start_ = std::min(end, line_.size());
    return wantsMore_;
  }

  std::string_view line_;
  std::string_view language_;
  const TakeSentence& take_;
  bool wantsMore_ = true;
  std::size_t start_ = 0;
};

}  // namespace

void forEachSentence(std::string_view plainText, std::string_view language,
                     const std::function<bool(std::string_view)>& take) {
  forEachJoinedLine(plainText, language,
                    [&](std::string_view line) { return SentenceCutter(line, language, take).cut(); });
}

}  // namespace linewatch
