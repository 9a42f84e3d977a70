#include "feeds/text/plain_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include <unicode/uchar.h>

#include "feeds/text/ascii.h"
#include "feeds/text/hidden_characters.h"
#include "feeds/text/markup.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

constexpr std::int32_t kNextLine = 0x85;
constexpr std::int32_t kNoBreakSpace = 0xA0;
constexpr std::int32_t kLineSeparator = 0x2028;
constexpr std::int32_t kParagraphSeparator = 0x2029;

/// Writes text with its white space folded.
class FoldedWriter {
 public:
  explicit FoldedWriter(std::size_t expectedSize) { text_.reserve(expectedSize); }
  void space() { hasSpace_ = true; }
  void lineFeed() { ++lineFeeds_; }
  void markupLineBreak() { ++markupLineBreaks_; }
  void atLeast(int breaks) { fewest_ = std::max(fewest_, isBlankBlock_ ? 2 : breaks); }
  /// Editors write an empty line as a block that holds this space alone.
  void noBreakSpace() {
    space();
    isBlankBlock_ = fewest_ > 0;
  }
  void character(std::int32_t character) {
    writeGap();
    appendCharacter(text_, character);
    isVisible_ = isVisible_ || isVisibleCharacter(character);
  }
  void visibleCharacters(std::string_view run) {
    writeGap();
    text_ += run;
    isVisible_ = true;
  }
  std::string finish() && { return isVisible_ ? std::move(text_) : std::string(); }

 private:
  // A break by a tag and a line feed beside it are one break.
  void writeGap() {
    const int breaks = std::min(std::max({lineFeeds_, markupLineBreaks_, fewest_}), 2);
    if (!text_.empty()) {
      if (breaks > 0) {
        text_.append(static_cast<std::size_t>(breaks), '\n');
      } else if (hasSpace_) {
        text_.push_back(' ');
      }
    }
    hasSpace_ = false;
    isBlankBlock_ = false;
    lineFeeds_ = markupLineBreaks_ = fewest_ = 0;
  }

  std::string text_;
  bool isVisible_ = false;
  bool hasSpace_ = false;
  bool isBlankBlock_ = false;
  int lineFeeds_ = 0;
  int markupLineBreaks_ = 0;
  int fewest_ = 0;
};

void writeShown(FoldedWriter& writer, std::int32_t character) {
  switch (character) {
    case '\n':
    case kNextLine:
    case kLineSeparator:
      return writer.lineFeed();
    case kMarkupLineBreak:
      return writer.markupLineBreak();
    case kMarkupBlockBreak:
      return writer.atLeast(1);
    case kParagraphSeparator:
    case kMarkupParagraphBreak:
      return writer.atLeast(2);
    case '\t':
      return writer.space();
    case kNoBreakSpace:
      return writer.noBreakSpace();
    default:
      break;
  }
  if (isHiddenCharacter(character)) return;
  if (u_isUWhiteSpace(character)) return writer.space();
  writer.character(character);
}

// The length of the run at the start of the text that is kept as it is: visible ASCII and letters of two
// bytes, with single spaces between them.
std::size_t plainRun(std::string_view text) {
  const auto byteAt = [text](std::size_t place) { return static_cast<unsigned char>(text[place]); };
  const auto isVisibleAscii = [](unsigned char byte) { return byte > ' ' && byte < 0x7F; };
  const auto isPair = [&](std::size_t place) {
    if (place + 1 >= text.size()) return false;
    const unsigned char byte = byteAt(place), next = byteAt(place + 1);
    if (byte == ' ') return place > 0 && isVisibleAscii(next);
    const bool isLetterPair = (byte >= 0xC3 && byte <= 0xCB) || (byte >= 0xCE && byte <= 0xD5);
    return isLetterPair && (next & 0xC0U) == 0x80U;
  };
  std::size_t end = 0;
  while (end < text.size()) {
    if (isVisibleAscii(byteAt(end))) {
      ++end;
    } else if (isPair(end)) {
      end += 2;
    } else {
      break;
    }
  }
  return end;
}

}  // namespace

std::string plainText(std::string_view written) {
  const std::string text = textOfMarkup(written);
  FoldedWriter writer(text.size());
  for (std::string_view rest = text; !rest.empty();) {
    if (const std::size_t run = plainRun(rest); run > 0) {
      writer.visibleCharacters(rest.substr(0, run));
      rest.remove_prefix(run);
      continue;
    }
    const std::int32_t character = takeCharacter(rest);
    const bool isHalfOfLineEnd = character == '\r' && rest.starts_with('\n');
    if (!isHalfOfLineEnd) writeShown(writer, character == '\r' ? '\n' : character);
  }
  return std::move(writer).finish();
}

std::optional<std::string> webAddress(std::string_view written) {
  constexpr std::size_t kLongest = 2000;
  std::string address = plainText(written);
  if (address.starts_with("www.")) address.insert(0, "https://");
  const std::size_t schemeEnd = std::min(address.find("://"), address.size());
  std::string scheme = address.substr(0, schemeEnd);
  std::ranges::transform(scheme, scheme.begin(), asciiSmall);
  const bool isWeb = scheme == "http" || scheme == "https";
  const bool hasHost = address.size() > schemeEnd + 3;
  if (!isWeb || !hasHost || address.size() > kLongest || address.find_first_of(" \n") != std::string::npos) {
    return std::nullopt;
  }
  return address;
}

}  // namespace linewatch
