#include "companion/details_text.h"

#include <algorithm>
#include <utility>

namespace linewatch {

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";
constexpr std::string_view kSentenceEnds = ".!?:";

bool isContinuationByte(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

char lowered(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, lowered, lowered);
}

/// The last separator in `range`, unless it is in the first half.
std::size_t lastInSecondHalf(std::string_view range, char separator) {
  const std::size_t place = range.rfind(separator);
  return place == std::string_view::npos || place < range.size() / 2 ? std::string_view::npos : place;
}

/// The length of the first block, without and with its separator.
struct Split {
  std::size_t block;
  std::size_t next;
};

Split firstSplit(std::string_view text, std::size_t limit) {
  const std::string_view range = text.substr(0, limit);
  for (const char separator : {'\n', ' '}) {
    const std::size_t place = lastInSecondHalf(range, separator);
    if (place != std::string_view::npos) return {place, place + 1};
  }
  std::size_t end = limit;
  while (end > 1 && isContinuationByte(text[end])) --end;
  return {end, end};
}

std::string_view withoutSentenceEnd(std::string_view title) {
  const std::size_t last = title.find_last_not_of(kSentenceEnds);
  return title.substr(0, last + 1);
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) + 1 - first);
}

std::string_view takeTextBlock(std::string_view& text, std::size_t limit) {
  if (text.size() <= limit) return std::exchange(text, {});
  const Split split = firstSplit(text, limit);
  const std::string_view block = text.substr(0, split.block);
  text.remove_prefix(split.next);
  return block;
}

std::vector<std::string_view> textBlocks(std::string_view text, std::size_t limit) {
  std::vector<std::string_view> blocks;
  while (!text.empty()) blocks.push_back(takeTextBlock(text, limit));
  return blocks;
}

std::string_view descriptionWithoutTitle(std::string_view description, std::string_view title) {
  const std::string_view text = trimmed(description);
  const std::string_view sentence = withoutSentenceEnd(trimmed(title));
  if (sentence.empty() || !equalIgnoringCase(text.substr(0, sentence.size()), sentence)) return text;
  std::string_view rest = text.substr(sentence.size());
  const std::size_t ends = std::min(rest.find_first_not_of(kSentenceEnds), rest.size());
  rest.remove_prefix(ends);
  const bool isLineEnd = rest.empty() || rest.front() == '\n' || rest.front() == '\r';
  const bool isSentenceEnd =
      ends > 0 && !rest.empty() && kWhiteSpace.find(rest.front()) != std::string_view::npos;
  return isLineEnd || isSentenceEnd ? trimmed(rest) : text;
}

std::vector<std::string> distinctWords(const std::vector<std::string>& words, std::string_view title) {
  std::vector<std::string> distinct;
  const std::string_view shown = withoutSentenceEnd(trimmed(title));
  for (const std::string& word : words) {
    const auto isSame = [&](const std::string& other) { return equalIgnoringCase(word, other); };
    if (word.empty() || equalIgnoringCase(word, shown) || std::ranges::any_of(distinct, isSame)) continue;
    distinct.push_back(word);
  }
  return distinct;
}

bool namesAll(std::string_view text, const std::vector<std::string>& names) {
  return std::ranges::all_of(
      names, [&](const std::string& name) { return text.find(name) != std::string_view::npos; });
}

}  // namespace linewatch
