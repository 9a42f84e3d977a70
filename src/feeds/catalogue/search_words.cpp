#include "feeds/catalogue/search_words.h"

#include <algorithm>
#include <cstddef>

#include "feeds/text/folded_words.h"

namespace linewatch {

namespace {

bool isUmlautVowel(char letter) { return letter == 'a' || letter == 'o' || letter == 'u'; }

/// True for a word of a script that writes no spaces, e.g. Japanese: what a rider types may be inside.
bool isOfUnspacedScript(std::string_view word) { return static_cast<unsigned char>(word.front()) >= 0xE3; }

}  // namespace

std::string searchForm(std::string_view text) {
  const std::string words = comparableName(text);
  std::string form;
  form.reserve(words.size());
  char before = ' ';
  for (const char letter : words) {
    if (letter != 'e' || !isUmlautVowel(before)) form += letter;
    before = letter;
  }
  return form;
}

bool SearchWords::find(std::string_view word, std::string_view after) const {
  if (isOfUnspacedScript(word)) return text_.find(word) != std::string::npos;
  std::string wanted = " ";
  wanted.append(word).append(after);
  return text_.find(wanted) != std::string::npos;
}

SearchQuery::SearchQuery(std::string_view text) : text_(searchForm(text)) {
  for (const std::string_view word : wordsOf(text_)) words_.emplace_back(word);
}

bool SearchQuery::fits(const SearchWords& words) const {
  if (words_.empty()) return true;
  return words.hasStart(words_.back()) &&
         std::all_of(words_.begin(), words_.end() - 1,
                     [&](const std::string& word) { return words.has(word); });
}

bool SearchQuery::fitsWhole(const SearchWords& words) const {
  return std::ranges::all_of(words_, [&](const std::string& word) { return words.has(word); });
}

}  // namespace linewatch
