#include "feeds/text/plain_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include <unicode/uchar.h>

#include "feeds/text/ascii.h"
#include "feeds/text/markup.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

constexpr std::int32_t kNextLine = 0x85;
constexpr std::int32_t kLineSeparator = 0x2028;
constexpr std::int32_t kParagraphSeparator = 0x2029;

struct CharacterRange {
  std::int32_t first;
  std::int32_t last;
};
// Beyond the control characters: what is not seen and may turn the rest of a row around or hide in it.
constexpr CharacterRange kDropped[] = {
    {0xAD, 0xAD},      // soft hyphen
    {0x200B, 0x200B},  // zero width space
    {0x202A, 0x202E},  // direction: embeddings and overrides
    {0x2060, 0x206F},  // word joiner, isolates, shaping
    {0xFEFF, 0xFEFF},  // byte order mark
    {0xFFF9, 0xFFFB},  // annotations
    {0xFFFE, 0xFFFF},  // no characters
};

bool isDropped(std::int32_t character) {
  if (character < 0xAD) return character < 0x20 || (character >= 0x7F && character < 0xA0);
  return std::ranges::any_of(kDropped, [character](const CharacterRange& range) {
    return character >= range.first && character <= range.last;
  });
}

/// Writes text with its white space folded.
class FoldedWriter {
 public:
  explicit FoldedWriter(std::size_t expectedSize) { text_.reserve(expectedSize); }
  void space() { hasSpace_ = true; }
  void lineFeed() { ++lineFeeds_; }
  void markupLineBreak() { ++markupLineBreaks_; }
  void atLeast(int breaks) { fewest_ = std::max(fewest_, breaks); }
  void character(std::int32_t character) {
    writeGap();
    appendCharacter(text_, character);
  }
  void characters(std::string_view run) {
    writeGap();
    text_ += run;
  }
  std::string finish() && { return std::move(text_); }

 private:
  // A break of the markup and one of its source beside it are the same break.
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
    lineFeeds_ = markupLineBreaks_ = fewest_ = 0;
  }

  std::string text_;
  bool hasSpace_ = false;
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
    default:
      break;
  }
  if (isDropped(character)) return;
  if (u_isUWhiteSpace(character)) return writer.space();
  writer.character(character);
}

// The length of what the text starts with and what stays as it is: visible ASCII and letters of two bytes,
// with single spaces between them.
std::size_t plainRun(std::string_view text) {
  const auto byteAt = [text](std::size_t place) { return static_cast<unsigned char>(text[place]); };
  const auto isVisibleAscii = [](unsigned char byte) { return byte > ' ' && byte < 0x7F; };
  const auto isPair = [&](std::size_t place) {
    if (place + 1 >= text.size()) return false;
    const unsigned char byte = byteAt(place), next = byteAt(place + 1);
    if (byte == ' ') return place > 0 && isVisibleAscii(next);
    return byte >= 0xC3 && byte <= 0xDF && (next & 0xC0U) == 0x80U;
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
      writer.characters(rest.substr(0, run));
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
