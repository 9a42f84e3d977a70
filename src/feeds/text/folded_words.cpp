#include "feeds/text/folded_words.h"

#include <algorithm>

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "feeds/text/ascii.h"
#include "feeds/text/single_line.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

struct Spelling {
  UChar32 letter;
  const char* plain;
};

// Letters that Unicode does not decompose, but that people type as plain letters. In lower case, because case
// is folded first.
constexpr Spelling kSpellings[] = {{U'æ', "ae"}, {U'œ', "oe"}, {U'ø', "o"}, {U'đ', "d"},  {U'ð', "d"},
                                   {U'ħ', "h"},  {U'ı', "i"},  {U'ł', "l"}, {U'þ', "th"}, {U'ŧ', "t"}};

bool isAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// Folds case and compatible forms, and splits accents from their letters.
icu::UnicodeString decomposed(std::string_view text) {
  UErrorCode trouble = U_ZERO_ERROR;
  const auto* const fold = icu::Normalizer2::getNFKCCasefoldInstance(trouble);
  const auto* const part = icu::Normalizer2::getNFDInstance(trouble);
  icu::UnicodeString whole =
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  if (U_FAILURE(trouble)) return whole;
  return part->normalize(fold->normalize(whole, trouble), trouble);
}

void appendPlain(std::string& text, UChar32 letter) {
  const auto* const spelling =
      std::find_if(std::begin(kSpellings), std::end(kSpellings),
                   [letter](const Spelling& entry) { return entry.letter == letter; });
  if (spelling != std::end(kSpellings)) {
    text.append(spelling->plain);
  } else if (u_charType(letter) != U_NON_SPACING_MARK) {
    appendCharacter(text, letter);
  }
}

bool isOfWord(UChar32 character) {
  const int category = U_GET_GC_MASK(character);
  return (category & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}

/// Takes a run of digits off the front, and returns it without leading zeros.
std::string_view takeNumber(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
  std::string_view digits = text.substr(0, end);
  text.remove_prefix(end);
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  return digits;
}

}  // namespace

std::string folded(std::string_view text) {
  std::string plain;
  if (std::all_of(text.begin(), text.end(), isAscii)) {
    plain.resize(text.size());
    std::transform(text.begin(), text.end(), plain.begin(), asciiSmall);
    return plain;
  }
  const icu::UnicodeString letters = decomposed(text);
  for (std::int32_t i = 0; i < letters.length(); i = letters.moveIndex32(i, 1)) {
    appendPlain(plain, letters.char32At(i));
  }
  return plain;
}

std::vector<std::string_view> wordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  bool inWord = false;
  while (!text.empty()) {
    const char* const start = text.data();
    const bool continues = isOfWord(takeCharacter(text));
    if (continues && !inWord) words.emplace_back(start, 0);
    if (continues)
      words.back() = {words.back().data(), static_cast<std::size_t>(text.data() - words.back().data())};
    inWord = continues;
  }
  return words;
}

std::string comparableName(std::string_view name) {
  const std::string plain = folded(name);
  std::string text;
  for (const std::string_view word : wordsOf(plain)) text.append(text.empty() ? "" : " ").append(word);
  return text.empty() ? singleLine(plain) : text;
}

bool naturallyBefore(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (isAsciiDigit(a.front()) && isAsciiDigit(b.front())) {
      const std::string_view numberOfA = takeNumber(a);
      const std::string_view numberOfB = takeNumber(b);
      if (numberOfA.size() != numberOfB.size()) return numberOfA.size() < numberOfB.size();
      if (numberOfA != numberOfB) return numberOfA < numberOfB;
      continue;
    }
    if (a.front() != b.front()) return a.substr(0, 1) < b.substr(0, 1);
    a.remove_prefix(1);
    b.remove_prefix(1);
  }
  return a.empty() && !b.empty();
}

}  // namespace linewatch
