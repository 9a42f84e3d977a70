#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// A row's title, to find what the text below says beyond it.
class KnownTitle {
 public:
  explicit KnownTitle(std::string_view title);

  /// As comparable words.
  const std::string& words() const { return words_; }

  /// The text without the title that it starts with: "Route 5 detour - Use stop 12" gives "Use stop 12". A
  /// title that goes on in the text ("Route 5 detour is over") stays.
  std::string_view withoutTitle(std::string_view text) const;

  /// The sentence without what the title says at its start. Below the title "Line 5: works in Long Street":
  ///  - "Line 5: stop A is closed" gives "stop A is closed";
  ///  - "Line 5, works in Long Street, detour until May" gives "detour until May";
  ///  - "Line 5: works in Long Street until May" gives "until May".
  std::string_view newPartOf(std::string_view sentence) const;

  /// True when the sentence says nothing new, also as a field: "Affected stations: Harbour" below "Harbour
  /// closed".
  bool says(std::string_view sentence) const;

 private:
  bool hasWord(std::string_view comparable) const { return words_.find(comparable) != std::string::npos; }
  bool hasAllButSmallWordsOf(std::string_view text) const;
  bool isRepeatedBy(std::string_view lead) const;
  std::string_view withoutKnownLead(std::string_view sentence) const;
  std::string_view withoutKnownClauses(std::string_view sentence) const;
  std::string_view continuationOf(std::string_view sentence) const;

  std::string words_;
  std::size_t count_ = 0;
};

/// Words beside a line's name that tell nothing of what happens to it, as comparable words.
bool isLineWord(std::string_view comparable);

}  // namespace linewatch
