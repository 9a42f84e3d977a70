#include "feeds/text/no_news.h"

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

// All lists hold comparable words. `kHeadings` is in byte order, because it is searched.

constexpr std::string_view kGreetings[] = {
    " attention ",    " beste ",         " bonjour ",   " cara ",     " caras ",     " care ",
    " cari ",         " caro ",          " caros ",     " cher ",     " chers ",     " chères ",
    " dear ",         " estimada ",      " estimadas ", " estimado ", " estimados ", " geachte ",
    " gentile ",      " gentili ",       " hallo ",     " hello ",    " liebe ",     " lieber ",
    " sehr geehrte ", " sehr geehrter ", " werte "};
constexpr std::string_view kAddressees[] = {
    "client",      "cliente",   "clientes",   "clienti",    "clients",    "commuters",   "customer",
    "customers",   "damen",     "fahrgast",   "fahrgäste",  "fahrgästen", "herren",      "kunden",
    "kundinnen",   "messieurs", "monsieur",   "passager",   "passagers",  "passageiros", "passasjerer",
    "passeggeri",  "passenger", "passengers", "patrons",    "pasajeros",  "reisende",    "reisenden",
    "reizigers",   "rider",     "riders",     "travellers", "travelers",  "utentes",     "utenti",
    "viaggiatori", "viajeros",  "voyageur",   "voyageurs",  "usagers",
};

constexpr std::string_view kPairsOfAddressees[] = {" madame monsieur ", " mesdames messieurs ",
                                                   " mesdames et messieurs "};

constexpr std::string_view kHeadings[] = {
    // clang-format off
    " achtung ", " additional information ", " advisory ", " affected direction ", " affected lines ",
    " affected route ", " affected routes ", " affected stops ", " alert ", " alternatives ", " attention ",
    " auswirkung ", " auswirkungen ", " aviso ", " avviso ", " background ", " beschreibung ", " betrifft ",
    " causa ", " cause ", " change ", " changes ", " conséquence ", " conséquences ", " contexte ",
    " dauer ", " descripción ", " description ", " descrizione ", " detail ", " details ", " detalles ",
    " detour ", " dettagli ", " détail ", " détails ", " en bref ", " fahrplanänderung ",
    " fahrplanänderungen ", " fermata ", " grund ", " hinfahrt ", " hinweis ", " hinweise ", " impact ", " important ",
    " info ", " información ", " information ", " informationen ", " informations ", " informazione ",
    " informazioni ", " informação ", " infos ", " korrektur ", " let op ", " location ", " maßnahme ",
    " meldung ", " mise à jour ", " more info ", " more information ", " motif ", " motivo ", " neuigkeit ",
    " note ", " notice ", " nouvelle ", " oorzaak ", " ort ", " overview ", " período ", " pourquoi ",
    " problem ", " période ", " qu est ce qui change ", " que se passe t il ", " quoi ", " qué pasa ",
    " raison ", " reason ", " reason for change ", " reason for the change ", " reden ", " rider alert ",
    " route ", " rückfahrt ", " service advisory ", " service alert ", " service change ", " service changes ",
    " summary ", " survey results ", " terminänderung ", " travel advice ", " update ", " ursache ",
    " verkehrsmeldung ", " warning ", " warum ", " was bedeutet das ", " was ist los ", " was passiert ",
    " was ändert sich ", " weitere informationen ", " what ", " what does this mean ", " what is changing ",
    " what is happening ", " what s changing ", " what s going on ", " what s happening ",
    " what this means ", " what to expect ", " what you need to know ", " when ", " where ", " why ",
    " why is this happening ", " wichtig ", " wichtiger hinweis ", " wo ", " zeitraum ", " änderung ",
    " änderungen ",
    // clang-format on
};

// How sentences begin that thank, apologise or refer to a map or page.
constexpr std::string_view kStartsOfNoNews[] = {
    " bitte beachten sie den aushang ",
    " bitte beachten sie die aushänge ",
    " ci scusiamo ",
    " click here ",
    " danke für ",
    " disculpen las molestias ",
    " gracias por ",
    " karte der ",
    " map of ",
    " merci de votre compréhension ",
    " merci pour votre compréhension ",
    " nous vous prions de nous excuser ",
    " nous vous remercions ",
    " pedimos desculpa ",
    " please check for updated ",
    " please see map ",
    " please see the map ",
    " rogamos disculpen ",
    " see a map ",
    " see attached map ",
    " see map ",
    " see the attached map ",
    " see the map ",
    " siehe karte ",
    " siehe plan ",
    " thank you for ",
    " thanks for ",
    " veuillez nous excuser ",
    " ver mapa ",
    " ver plano ",
    " vielen dank ",
    " view a map ",
    " view map ",
    " view the map ",
    " voir la carte ",
    " voir le plan ",
    " we apologise ",
    " we apologize ",
    " we are sorry ",
    " we regret ",
    " wir bedanken uns ",
    " wir bitten sie um verständnis ",
    " wir bitten um entschuldigung ",
    " wir bitten um ihr verständnis ",
    " wir bitten um verständnis ",
    " wir danken ",
    " wir entschuldigen uns ",
};

// Notes on the alert itself, in brackets or in front of a date or a colon.
constexpr std::string_view kUpdateNotes[] = {
    " aktualisiert ", " aktualisierung ", " correction ", " erneute terminänderung ", " korrektur ",
    " maj ",          " mise à jour ",    " stand ",      " terminänderung ",         " update ",
    " updated ",
};

// Introductions before a complete sentence. German has none here: after "dass" the verb would come last, so
// that the rest would be no sentence.
constexpr std::string_view kIntroductions[] = {
    " be advised that ",
    " customers are advised that ",
    " informamos que ",
    " nous vous informons que ",
    " passengers are advised that ",
    " please be advised that ",
    " please note that ",
    " riders are advised that ",
    " se informa que ",
    " si avvisa che ",
    " si informa che ",
};

constexpr std::string_view kChangeHeadings[] = {
    " change ",          " changes ",  " qu est ce qui change ", " was ändert sich ", " what is changing ",
    " what s changing ", " änderung ", " änderungen ",
};
constexpr std::string_view kReasonHeadings[] = {
    " causa ",
    " cause ",
    " grund ",
    " motif ",
    " motivo ",
    " oorzaak ",
    " raison ",
    " reason ",
    " reden ",
    " reason for change ",
    " reason for the change ",
    " ursache ",
};

// Labels of a direction, which alone does not say what happens there.
constexpr std::string_view kBeforeDirections[] = {
    " affected direction ",    " affected directions ",
    " betroffene richtung ",   " betroffene fahrtrichtung ",
    " direction concernée ",   " directions concernées ",
    " sens concerné ",         " dirección afectada ",
    " direzione interessata ", " sentido afetado ",
};
constexpr std::size_t kMostWordsOfDirection = 3;

// Labels of line names, which a row's shield and its list of lines already show.
constexpr std::string_view kBeforeLines[] = {
    " affected route ",    " affected routes ",   " affected line ",    " affected lines ",
    " routes affected ",   " lines affected ",    " betroffene linie ", " betroffene linien ",
    " ligne concernée ",   " lignes concernées ", " líneas afectadas ", " linhas afetadas ",
    " linee interessate ",
};
constexpr std::size_t kMostWordsOfLine = 2;

constexpr std::string_view kFieldLabels[] = {
    "cause",  "date",     "dates", "detour", "direction", "effect", "event",    "from",
    "grund",  "impact",   "lieu",  "ligne",  "line",      "lines",  "linie",    "linien",
    "lignes", "location", "motif", "notice", "ort",       "reason", "richtung", "route",
    "routes", "service",  "stop",  "stops",  "subject",   "to",     "type",     "ursache",
    "what",   "when",     "where", "why",    "zeitraum",
};

template <std::size_t Count>
const std::string_view* startOf(std::string_view words, const std::string_view (&starts)[Count]) {
  const auto* const found =
      std::ranges::find_if(starts, [&](std::string_view start) { return words.starts_with(start); });
  return found == std::end(starts) ? nullptr : found;
}

template <std::size_t Count>
bool isListed(std::string_view word, const std::string_view (&list)[Count]) {
  return std::ranges::find(list, word) != std::end(list);
}

template <std::size_t Count>
bool isHeadingOf(std::string_view line, const std::string_view (&headings)[Count]) {
  constexpr std::size_t kLongest = 40;  // bytes; most lines are longer
  return line.size() <= kLongest && isListed(comparableWords(line), headings);
}

/// The first words of a text, as comparable words: enough for every greeting and introduction.
std::string headOf(std::string_view text) {
  constexpr std::size_t kLongest = 60;  // bytes
  return comparableWords(text.substr(0, kLongest));
}

std::size_t countWords(std::string_view comparable) {
  return static_cast<std::size_t>(std::ranges::count(comparable, ' ')) - 1;
}

bool isDirection(std::string_view words) {
  const std::string_view* const start = startOf(words, kBeforeDirections);
  return start != nullptr && countWords(words) - countWords(*start) <= kMostWordsOfDirection;
}

/// "Affected routes: 215, Ring" but not "Affected route: 5 to the Zoo".
bool namesLinesAlone(std::string_view sentence, std::string_view words) {
  if (startOf(words, kBeforeLines) == nullptr) return false;
  const std::size_t colon = sentence.find(':');
  if (colon == std::string_view::npos) return false;
  sentence.remove_prefix(colon + 1);
  while (!sentence.empty()) {
    const std::size_t end = std::min(sentence.find_first_of(",;"), sentence.size());
    const std::string line = comparableWords(sentence.substr(0, end));
    const bool saysLine = line.ends_with(" line ") || line.ends_with(" branch ");
    if (countWords(line) > kMostWordsOfLine && !saysLine) return false;
    sentence.remove_prefix(std::min(end + 1, sentence.size()));
  }
  return true;
}

/// Removes a label and its colon from the start of the text; false when there is none.
bool takeLabel(std::string_view& text) {
  std::string_view rest = text;
  const std::string word = comparableWords(takeWord(rest));
  if (!rest.starts_with(':') && !rest.starts_with(" :")) return false;
  if (word.size() < 3 || !isListed(std::string_view(word).substr(1, word.size() - 2), kFieldLabels))
    return false;
  text = rest.substr(rest.find(':') + 1);
  return true;
}

/// Where the next label starts; the end of the text when there is none.
std::size_t nextLabel(std::string_view text) {
  for (std::size_t space = text.find(' '); space != std::string_view::npos;
       space = text.find(' ', space + 1)) {
    std::string_view rest = text.substr(space + 1);
    if (takeLabel(rest)) return space + 1;
  }
  return text.size();
}

bool areKnown(std::string_view value, std::string_view known) {
  while (true) {
    const std::string_view word = takeWord(value);
    if (word.empty()) return true;
    if (known.find(comparableWords(word)) == std::string_view::npos) return false;
  }
}

std::string_view withoutMarks(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" ,;:!.-");
  return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

}  // namespace

namespace {

std::string_view withoutSalutation(std::string_view text) {
  for (const std::string_view pair : kPairsOfAddressees) {
    if (std::string_view rest = text; takeWords(rest, pair)) return withoutMarks(rest);
  }
  constexpr std::size_t kMostWords = 8;
  if (startOf(headOf(text), kGreetings) == nullptr) return text;
  std::string_view rest = text;
  bool hasAddressee = false;
  for (std::size_t count = 0; count < kMostWords; ++count) {
    const std::string word = comparableWords(takeWord(rest));
    hasAddressee = hasAddressee || isListed(std::string_view(word).substr(1, word.size() - 2), kAddressees);
    const bool isEnd = rest.empty() || std::string_view(",:;!.").find(rest.front()) != std::string_view::npos;
    if (hasAddressee && isEnd) return withoutMarks(rest);
    if (isEnd) return text;
  }
  return text;
}

}  // namespace

std::string_view withoutPreamble(std::string_view text) {
  const std::string_view rest = withoutSalutation(text);
  std::string_view sentence = rest;
  const std::string_view* const introduction = startOf(headOf(rest), kIntroductions);
  return introduction && takeWords(sentence, *introduction) ? withoutMarks(sentence) : rest;
}

std::string_view withoutUpdateNote(std::string_view text) {
  if (text.starts_with('(')) return text;
  const std::string_view* const note = startOf(headOf(text), kUpdateNotes);
  std::string_view rest = text;
  if (!note || !takeWords(rest, *note)) return text;
  const std::size_t end = rest.find_first_not_of(" 0123456789/.,:-");
  const bool isMarked = rest.substr(0, end).find_first_not_of(' ') < end;
  return isMarked && end != std::string_view::npos ? rest.substr(end) : text;
}

std::string_view underChangeHeading(std::string_view plainText) {
  while (!plainText.empty()) {
    const std::size_t end = std::min(plainText.find('\n'), plainText.size());
    const std::string_view line = plainText.substr(0, end);
    plainText.remove_prefix(std::min(end + 1, plainText.size()));
    if (isHeadingOf(line, kChangeHeadings)) return plainText;
  }
  return {};
}

bool isReasonHeading(std::string_view sentence) { return isHeadingOf(sentence, kReasonHeadings); }

bool isNoNews(std::string_view sentence) {
  const std::string words = comparableWords(sentence);
  if (sentence.starts_with('(') && startOf(words, kUpdateNotes) != nullptr) return true;
  return words.size() == 1 || std::ranges::binary_search(kHeadings, words) ||
         startOf(words, kStartsOfNoNews) || isDirection(words) || namesLinesAlone(sentence, words);
}

std::string_view withoutKnownFields(std::string_view text, std::string_view known) {
  std::string_view rest = text;
  while (takeLabel(rest)) {
    const std::size_t next = nextLabel(rest);
    if (!areKnown(rest.substr(0, next), known)) return text;
    rest = withoutMarks(rest.substr(next));
    text = rest;
  }
  return text;
}

std::string capitalized(std::string_view text) {
  const std::string_view word = text.substr(0, text.find(' '));
  const bool isAddress = word.find("://") != std::string_view::npos || word.starts_with("www.");
  if (isAddress || !startsLowerCase(text)) return std::string(text);
  std::string_view rest = text;
  const std::int32_t first = takeCharacter(rest);
  std::string_view letters = rest;
  while (!letters.empty()) {
    const std::int32_t letter = takeCharacter(letters);
    if (u_isupper(letter) != 0) return std::string(text);
    if (u_isalpha(letter) == 0) break;
  }
  std::string result;
  appendCharacter(result, u_totitle(first));
  return result.append(rest);
}

}  // namespace linewatch
