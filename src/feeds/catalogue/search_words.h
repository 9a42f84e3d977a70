#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace linewatch {

/// The text as the search of the catalogue compares it: its words without case and accents, with one space
/// between them. "ae", "oe" and "ue" become plain vowels, so that "Zürich", "zurich" and "Zuerich" are equal.
std::string searchForm(std::string_view text);

/// Words that a query may find.
class SearchWords {
 public:
  /// `form`: words in their search form.
  void add(std::string_view form) { text_.append(form).append(" "); }

  bool has(std::string_view word) const { return find(word, " "); }
  bool hasStart(std::string_view word) const { return find(word, ""); }

 private:
  bool find(std::string_view word, std::string_view after) const;

  /// A space in front of each word, and one at the end.
  std::string text_ = " ";
};

/// The words that a rider has typed, maybe not all of the last one yet.
class SearchQuery {
 public:
  explicit SearchQuery(std::string_view text);

  bool isEmpty() const { return words_.empty(); }
  /// In its search form.
  const std::string& text() const { return text_; }
  /// True when all words are there, the last one as the start of a word.
  bool fits(const SearchWords& words) const;
  /// True when all words are there.
  bool fitsWhole(const SearchWords& words) const;

 private:
  std::string text_;
  std::vector<std::string> words_;
};

}  // namespace linewatch
