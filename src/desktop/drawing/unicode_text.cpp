#include "desktop/drawing/unicode_text.h"

#include <algorithm>

#include "feeds/text/utf8.h"

namespace linewatch::desktop {

namespace {

constexpr std::int32_t kNextLine = 0x85;
constexpr std::int32_t kWordJoiner = 0x2060;
constexpr std::int32_t kLineSeparator = 0x2028;
constexpr std::int32_t kParagraphSeparator = 0x2029;
// Qt would look for an embedded object to draw.
constexpr std::int32_t kObjectReplacement = 0xFFFC;

bool endsParagraph(std::int32_t character) {
  return (character >= '\n' && character <= '\r') || character == kNextLine || character == kLineSeparator ||
         character == kParagraphSeparator;
}

std::int32_t shown(std::int32_t character) {
  if (character == '\t') return ' ';
  if (character < 0x20 || (character >= 0x7F && character < 0xA0)) return kWordJoiner;
  return character == kObjectReplacement ? kReplacementCharacter : character;
}

}  // namespace

UnicodeText::UnicodeText(std::string_view bytes) {
  const std::string_view whole = bytes;
  string_.reserve(std::min(static_cast<qsizetype>(bytes.size()), kLongest + 2));
  while (!bytes.empty() && string_.size() < kLongest) {
    const std::size_t byte = whole.size() - bytes.size();
    const std::int32_t character = takeCharacter(bytes);
    append(character, byte);
    if (!endsParagraph(character)) continue;
    const bool isPair = character == '\r' && bytes.starts_with('\n');
    if (isPair) append(takeCharacter(bytes), byte + 1);
    endParagraph(isPair ? 2 : 1);
  }
  if (!bytes_.empty()) bytes_.push_back(static_cast<std::uint32_t>(whole.size() - bytes.size()));
  endParagraph(0);
  cutShort_ = !bytes.empty();
}

void UnicodeText::append(std::int32_t character, std::size_t byte) {
  if (character >= 0x80 && bytes_.empty()) {
    for (qsizetype unit = 0; unit < string_.size(); ++unit)
      bytes_.push_back(static_cast<std::uint32_t>(unit));
  }
  const auto visible = static_cast<char32_t>(endsParagraph(character) ? '\n' : shown(character));
  string_.append(QChar::fromUcs4(visible));
  if (character >= 0x80 || !bytes_.empty()) {
    bytes_.resize(static_cast<std::size_t>(string_.size()), static_cast<std::uint32_t>(byte));
  }
}

void UnicodeText::endParagraph(qsizetype lengthOfEnd) {
  paragraphs_.push_back({paragraphBegin_, string_.size() - lengthOfEnd});
  paragraphBegin_ = string_.size();
}

std::size_t UnicodeText::byteAt(qsizetype unit) const {
  return bytes_.empty() ? static_cast<std::size_t>(unit) : bytes_[static_cast<std::size_t>(unit)];
}

qsizetype UnicodeText::unitAt(std::size_t byte) const {
  if (bytes_.empty()) return std::min(static_cast<qsizetype>(byte), string_.size());
  const auto found = std::lower_bound(bytes_.begin(), bytes_.end(), byte);
  return std::min(static_cast<qsizetype>(found - bytes_.begin()), string_.size());
}

}  // namespace linewatch::desktop
