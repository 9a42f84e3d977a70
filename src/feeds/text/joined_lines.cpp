#include "feeds/text/joined_lines.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>

#include "feeds/text/sentence_ends.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

// Articles, prepositions and nouns that a name follows. A line that ends with one continues on the next line.
// Words that can also end a sentence are left out: "fällt aus", "way in", "8 am". In byte order.
constexpr std::string_view kWordsBeforeName[] = {
    "Fahrtrichtung",
    "Haltestelle",
    "Haltestellen",
    "Linie",
    "Linien",
    "Praça",
    "Richtung",
    "Rua",
    "a",
    "al",
    "an",
    "and",
    "arrêt",
    "arrêts",
    "at",
    "au",
    "aux",
    "avec",
    "bei",
    "between",
    "bis",
    "by",
    "chez",
    "da",
    "dans",
    "das",
    "de",
    "dei",
    "del",
    "della",
    "dem",
    "den",
    "depuis",
    "der",
    "des",
    "desde",
    "di",
    "die",
    "dos",
    "du",
    "durante",
    "durch",
    "e",
    "ed",
    "eine",
    "el",
    "em",
    "en",
    "entre",
    "et",
    "for",
    "fra",
    "from",
    "für",
    "gegen",
    "hasta",
    "into",
    "jusqu'à",
    "la",
    "las",
    "le",
    "les",
    "ligne",
    "lignes",
    "los",
    "na",
    "naar",
    "nach",
    "near",
    "och",
    "of",
    "ohne",
    "onto",
    "or",
    "os",
    "por",
    "pour",
    "près",
    "rue",
    "sous",
    "sur",
    "the",
    "their",
    "to",
    "tot",
    "toward",
    "towards",
    "tra",
    "tussen",
    "und",
    "until",
    "van",
    "vers",
    "via",
    "vom",
    "von",
    "voor",
    "wegen",
    "with",
    "y",
    "your",
    "zum",
    "zur",
    "zwischen",
    "à",
    "über",
};
// A line that starts with one of these continues the line before.
constexpr std::string_view kContinuingWords[] = {"Fahrtrichtung", "Richtung"};
// Words that have a capital only at the start of a sentence, so that such a line does not continue the one
// before. In byte order.
constexpr std::string_view kSentenceStarts[] = {
    "A",          "Ab",    "Afin",     "Alle",      "Allow",   "Am",    "An",      "At",     "Au",     "Auf",
    "Aufgrund",   "Aus",   "Bei",      "Beide",     "Between", "Bis",   "Bitte",   "Board",  "Buses",  "By",
    "Ce",         "Ces",   "Cette",    "Customers", "Da",      "Dafür", "Daher",   "Dans",   "Das",    "De",
    "Dem",        "Den",   "Der",      "Des",       "Deshalb", "Die",   "Diese",   "Dieser", "Dieses", "Do",
    "Du",         "Due",   "During",   "Ein",       "Eine",    "En",    "Es",      "Expect", "Face",   "For",
    "From",       "Für",   "Grund",    "Hier",      "Il",      "Im",    "In",      "It",     "La",     "Le",
    "Les",        "Merci", "Mit",      "Nach",      "No",      "Note",  "Nous",    "Nur",    "On",     "Our",
    "Passengers", "Per",   "Please",   "Pour",      "Riders",  "See",   "Seit",    "Sie",    "Since",  "So",
    "Suite",      "Sur",   "The",      "There",     "These",   "This",  "To",      "Trains", "Um",     "Un",
    "Une",        "Until", "Use",      "Veuillez",  "Via",     "Vom",   "Von",     "Vor",    "Votre",  "Vous",
    "We",         "Wegen", "When",     "While",     "Wir",     "With",  "Während", "You",    "Your",   "Zu",
    "Zum",        "Zur",   "Zwischen", "À",
};
constexpr std::string_view kBullets[] = {
    "\xC2\xB7",     "\xE2\x80\xA2", "\xE2\x80\xA3", "\xE2\x81\x83", "\xE2\x88\x99", "\xE2\x8B\x85",
    "\xE2\x96\xA0", "\xE2\x96\xA1", "\xE2\x96\xAA", "\xE2\x96\xAB", "\xE2\x96\xB6", "\xE2\x96\xB8",
    "\xE2\x96\xBA", "\xE2\x97\x86", "\xE2\x97\x8B", "\xE2\x97\x8F", "\xE2\x97\xA6", "\xE2\x9C\x93",
    "\xE2\x9E\x94", "\xE2\x9E\xA2", "\xE2\x9E\xA4", "\xE2\xA6\x81", "\xEF\x82\xA7", "\xEF\x82\xB7",
};
// These also occur inside texts, so that they are bullets only before a space.
constexpr std::string_view kDashBullets[] = {"- ", "* ", "+ ", "o ", "\xE2\x80\x93 ", "\xE2\x80\x94 "};

constexpr std::size_t kNarrowestWrap = 60;
constexpr std::size_t kWidestWrap = 90;
// A full line of a wrapped text is at most this much shorter than the longest one.
constexpr std::size_t kRaggedness = 15;

bool endsWithAny(std::string_view text, std::string_view bytes) {
  return !text.empty() && bytes.find(text.back()) != std::string_view::npos;
}

std::string_view wordAtStart(std::string_view text) { return text.substr(0, text.find_first_of(" ,:;.\n")); }

template <std::size_t Count>
bool isOneOf(std::string_view word, const std::string_view (&words)[Count]) {
  return std::ranges::binary_search(words, word);
}

/// True for a line like "Detour at": the place stands on the next line.
bool endsBeforeName(std::string_view line) {
  const std::string_view word = lastWord(line);
  return word.size() < line.size() && isOneOf(word, kWordsBeforeName);
}

bool startsAsContinuation(std::string_view line) {
  const std::string_view word = wordAtStart(line);
  return isOneOf(word, kContinuingWords) && !line.substr(word.size()).starts_with(':');
}

std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

bool removePrefix(std::string_view& line, std::string_view prefix) {
  if (!line.starts_with(prefix)) return false;
  line.remove_prefix(prefix.size());
  return true;
}

bool removeBullet(std::string_view& line) {
  if (std::ranges::any_of(kDashBullets, [&](std::string_view dash) { return removePrefix(line, dash); }))
    return true;
  if (line.empty() || static_cast<unsigned char>(line.front()) < 0x80) return false;
  if (std::ranges::none_of(kBullets, [&](std::string_view bullet) { return removePrefix(line, bullet); }))
    return false;
  removePrefix(line, " ");
  return true;
}

/// The bullet that a line starts with, or that follows the colon of a list on one line ("Stops: • A • B").
/// Empty when there is none.
std::string_view bulletOfList(std::string_view line) {
  const std::size_t colon = line.find(": ");
  const std::string_view list = colon == std::string_view::npos ? std::string_view() : line.substr(colon + 2);
  const auto* const bullet = std::ranges::find_if(
      kBullets, [&](std::string_view each) { return line.starts_with(each) || list.starts_with(each); });
  return bullet == std::end(kBullets) ? std::string_view() : *bullet;
}

/// Removes a row of stars or dashes from the start of the line.
void removeOrnament(std::string_view& line) {
  constexpr std::size_t kShortest = 3;
  const std::size_t end = std::min(line.find_first_not_of("*-_=#~+. "), line.size());
  if (end >= kShortest || end == line.size()) line.remove_prefix(end);
}

/// The width at which the lines of a text were wrapped, if they were.
class Wrap {
 public:
  Wrap(std::string_view text, std::string_view language) {
    if (text.find('\n') == std::string_view::npos) return;
    std::size_t longest = 0;
    for (std::string_view rest = text; !rest.empty() && longest <= kWidestWrap;) {
      longest = std::max(longest, countCharacters(takeLine(rest)));
    }
    if (longest < kNarrowestWrap || longest > kWidestWrap) return;
    // One long line alone does not show that the text was wrapped. In German it is enough, because most words
    // with a capital are nouns, which also stand inside sentences.
    const bool isGerman = language.starts_with("de");
    if (isGerman || countLinesFrom(text, longest - kRaggedness) > 1) width_ = longest;
  }

  /// True when a line of this length had no room for the first word of the next one.
  bool isFull(std::size_t length, std::string_view next) const {
    return width_ > 0 && length + 1 + countCharacters(wordAtStart(next)) > width_;
  }

 private:
  static std::size_t countLinesFrom(std::string_view text, std::size_t length) {
    std::size_t count = 0;
    while (!text.empty()) count += countCharacters(takeLine(text)) >= length ? 1 : 0;
    return count;
  }

  std::size_t width_ = 0;
};

/// Joins the lines of a text one by one.
class LineJoiner {
 public:
  LineJoiner(const Wrap& wrap, const std::function<bool(std::string_view)>& take)
      : wrap_(wrap), take_(take) {}

  void add(std::string_view line, bool startsParagraph) {
    const std::string_view bullet = bulletOfList(line);
    if (bullet.empty()) return addItem(line, startsParagraph);
    const std::string separator = std::string(" ").append(bullet).append(" ");
    for (std::size_t end = 0; (end = line.find(separator)) != std::string_view::npos;) {
      addItem(line.substr(0, end), startsParagraph);
      startsParagraph = false;
      line.remove_prefix(end + 1);
    }
    addItem(line, startsParagraph);
  }
  void flush() {
    if (!current_.empty()) wantsMore_ = wantsMore_ && take_(current_);
    current_.clear();
    isInList_ = hasItems_ = false;
  }

  bool wantsMore() const { return wantsMore_; }

 private:
  void addItem(std::string_view line, bool startsParagraph) {
    removeOrnament(line);
    const bool isItem = removeBullet(line);
    if (line.empty()) return;
    const char* joint = current_.empty() ? "" : jointBefore(line, startsParagraph, isItem);
    if (!joint) flush();
    if (joint) current_ += joint;
    current_ += line;
    lastLineLength_ = countCharacters(line);
  }

  // The text to join the lines with; null when the line is not joined.
  const char* jointBefore(std::string_view line, bool startsParagraph, bool isItem) {
    if (endsWithAny(current_, ":")) {
      if (startsParagraph && line.ends_with(':')) return nullptr;
      isInList_ = true;
      return " ";
    }
    if (startsParagraph) return continuesAcrossParagraphs(line, isItem) ? " " : nullptr;
    const bool isWrapped = !isItem && startsLowerCase(line) && wrap_.isFull(lastLineLength_, line);
    if ((isInList_ && !isWrapped) || isItem) return jointInList(line);
    return continues(line) ? " " : nullptr;
  }

  const char* jointInList(std::string_view line) {
    if (endsSentence(current_)) return nullptr;
    hasItems_ = true;
    const bool isField = line.find(": ") != std::string_view::npos || line.ends_with(':');
    if (isField && !endsWithAny(current_, ",;")) return "; ";
    return endsWithAny(current_, ",;") ? " " : ", ";
  }

  // Some editors write every line as a paragraph.
  bool continuesAcrossParagraphs(std::string_view line, bool isItem) const {
    return !hasItems_ && !isItem && startsLowerCase(line) && !endsSentence(current_) &&
           !endsWithAny(current_, ";");
  }

  bool continues(std::string_view line) const {
    if (startsLowerCase(line) || endsWithAny(current_, ",") || endsBeforeName(current_)) return true;
    if (endsSentence(current_) || endsWithAny(current_, ":;)")) return false;
    return startsAsContinuation(line) ||
           (wrap_.isFull(lastLineLength_, line) && !isOneOf(wordAtStart(line), kSentenceStarts));
  }

  const Wrap& wrap_;
  const std::function<bool(std::string_view)>& take_;
  bool wantsMore_ = true;
  std::string current_;
  bool isInList_ = false;  // below a colon
  bool hasItems_ = false;  // joined as items of a list
  std::size_t lastLineLength_ = 0;
};

}  // namespace

void forEachJoinedLine(std::string_view plainText, std::string_view language,
                       const std::function<bool(std::string_view)>& take) {
  const Wrap wrap(plainText, language);
  LineJoiner joiner(wrap, take);
  bool startsParagraph = false;
  while (!plainText.empty() && joiner.wantsMore()) {
    const std::string_view line = takeLine(plainText);
    joiner.add(line, startsParagraph);
    startsParagraph = line.empty();
  }
  joiner.flush();
}

}  // namespace linewatch
