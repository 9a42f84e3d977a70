#include "feeds/text/markup.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "feeds/text/ascii.h"
#include "feeds/text/html_entities.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

/// What a tag does to the lines of the text.
enum class Break { none, space, line, block, item, paragraph, hidden };

struct Tag {
  std::string_view name;
  Break lines;
};

// Other names are not read as tags, because agencies also write <Stop A>. In byte order.
constexpr Tag kTags[] = {
    {"a", Break::none},        {"abbr", Break::none},    {"article", Break::paragraph},
    {"b", Break::none},        {"big", Break::none},     {"blockquote", Break::paragraph},
    {"body", Break::none},     {"br", Break::line},      {"button", Break::none},
    {"center", Break::block},  {"code", Break::none},    {"dd", Break::block},
    {"del", Break::none},      {"div", Break::block},    {"dl", Break::block},
    {"dt", Break::block},      {"em", Break::none},      {"font", Break::none},
    {"h1", Break::paragraph},  {"h2", Break::paragraph}, {"h3", Break::paragraph},
    {"h4", Break::paragraph},  {"h5", Break::paragraph}, {"h6", Break::paragraph},
    {"head", Break::none},     {"hr", Break::paragraph}, {"html", Break::none},
    {"i", Break::none},        {"iframe", Break::none},  {"img", Break::none},
    {"ins", Break::none},      {"label", Break::none},   {"li", Break::item},
    {"link", Break::none},     {"meta", Break::none},    {"nobr", Break::none},
    {"o:p", Break::none},      {"ol", Break::block},     {"p", Break::paragraph},
    {"pre", Break::paragraph}, {"s", Break::none},       {"script", Break::hidden},
    {"section", Break::block}, {"small", Break::none},   {"span", Break::none},
    {"strike", Break::none},   {"strong", Break::none},  {"style", Break::hidden},
    {"sub", Break::none},      {"sup", Break::none},     {"table", Break::block},
    {"tbody", Break::none},    {"td", Break::space},     {"th", Break::space},
    {"thead", Break::none},    {"title", Break::hidden}, {"tr", Break::block},
    {"tt", Break::none},       {"u", Break::none},       {"ul", Break::block},
    {"wbr", Break::none},
};
constexpr std::string_view kBullet = "\xE2\x80\xA2 ";

const Tag* tagNamed(std::string_view name) {
  std::array<char, 12> lower{};
  if (name.size() > lower.size()) return nullptr;
  std::ranges::transform(name, lower.begin(), asciiSmall);
  const std::string_view sought(lower.data(), name.size());
  const auto* const found = std::ranges::lower_bound(kTags, sought, {}, &Tag::name);
  return found != std::end(kTags) && found->name == sought ? found : nullptr;
}

/// Finds one occurrence after the other. All searches together look at each byte once.
class ForwardSearch {
 public:
  ForwardSearch(std::string_view text, std::string_view sought) : text_(text), sought_(sought) {}
  std::size_t from(std::size_t place) {
    if (!next_ || *next_ < place) next_ = text_.find(sought_, place);
    return *next_;
  }

 private:
  std::string_view text_;
  std::string_view sought_;
  std::optional<std::size_t> next_;
};

struct CharacterReference {
  std::int32_t character;
  std::size_t length;
};

std::optional<std::int32_t> referenced(std::string_view name) {
  if (!name.starts_with('#')) return namedCharacter(name);
  const bool isHexadecimal = name.size() > 1 && asciiSmall(name[1]) == 'x';
  const std::string_view digits = name.substr(isHexadecimal ? 2 : 1);
  if (digits.empty()) return std::nullopt;
  std::int32_t number = 0;
  for (const char byte : digits) {
    const char digit = asciiSmall(byte);
    if (isAsciiDigit(digit)) {
      number = number * (isHexadecimal ? 16 : 10) + static_cast<std::int32_t>(digit - '0');
    } else if (isHexadecimal && digit >= 'a' && digit <= 'f') {
      number = number * 16 + static_cast<std::int32_t>(digit - 'a' + 10);
    } else {
      return std::nullopt;
    }
  }
  return numberedCharacter(number);
}

// The text starts with '&'. A reference needs the closing ';': "?a=1&copy=2" is an address.
std::optional<CharacterReference> characterReference(std::string_view text) {
  constexpr std::size_t kLongest = 10;  // "&thetasym;", and more than any number needs
  const std::size_t end = text.substr(0, kLongest).find(';');
  if (end == std::string_view::npos) return std::nullopt;
  const std::optional<std::int32_t> character = referenced(text.substr(1, end - 1));
  if (!character) return std::nullopt;
  return CharacterReference{*character, end + 1};
}

constexpr char kSpecial[] = {'<', '&', kMarkupLineBreak, kMarkupBlockBreak, kMarkupParagraphBreak, '\0'};

/// One search for each byte is faster than one search for all of them.
bool mayBeMarkup(std::string_view text) {
  return std::ranges::any_of(std::string_view(kSpecial),
                             [text](char byte) { return text.find(byte) != std::string_view::npos; });
}

bool isBreak(char byte) {
  return byte == kMarkupLineBreak || byte == kMarkupBlockBreak || byte == kMarkupParagraphBreak;
}

/// True when the rest of a tag behind its name is empty or has an attribute with a value. "<b or c>" is text.
bool mayBeAttributes(std::string_view rest) {
  return rest.find_first_not_of(" /\t\r\n") == std::string_view::npos ||
         rest.find('=') != std::string_view::npos;
}

/// One pass over the markup.
class MarkupReader {
 public:
  explicit MarkupReader(std::string_view markup)
      : markup_(markup), tagStarts_(markup, "<"), tagEnds_(markup, ">"), commentEnds_(markup, "-->") {}

  std::string read() {
    text_.reserve(markup_.size());
    while (place_ < markup_.size()) {
      const std::size_t special = std::min(markup_.find_first_of(kSpecial, place_), markup_.size());
      if (!isHidden_) text_.append(markup_, place_, special - place_);
      place_ = special;
      if (place_ < markup_.size()) readSpecial(markup_[place_]);
    }
    return std::move(text_);
  }
  /// An entity became "<" or "&", so that the text may be markup that was escaped.
  bool mayBeEscapedMarkup() const { return mayBeEscapedMarkup_; }
  bool hasTags() const { return hasTags_; }
  /// A tag ended a line.
  bool hasBreaks() const { return hasBreaks_; }
  MarkupReader& again() {
    isSecondPass_ = true;
    return *this;
  }

 private:
  void readSpecial(char byte) {
    if (byte == '<' && (skipComment() || readTag())) return;
    if (byte == '&' && readReference()) return;
    ++place_;
    add(isBreak(byte) && !isSecondPass_ ? '\n' : byte);
  }
  void add(char byte) {
    if (!isHidden_) text_.push_back(byte);
  }

  bool skipComment() {
    if (markup_.substr(place_, 4) != "<!--") return false;
    const std::size_t end = commentEnds_.from(place_ + 4);
    if (end == std::string_view::npos) return false;
    place_ = end + 3;
    return true;
  }

  bool readTag() {
    const bool isClosing = markup_.substr(place_ + 1, 1) == "/";
    const std::size_t start = place_ + (isClosing ? 2 : 1);
    const std::string_view rest = markup_.substr(start, 16);
    const std::string_view name = rest.substr(0, rest.find_first_of("> /\t\r\n"));
    const Tag* tag = tagNamed(name);
    if (!tag) return false;
    const std::size_t end = tagEnds_.from(start);
    if (end == std::string_view::npos || tagStarts_.from(start) < end) return false;
    if (!mayBeAttributes(markup_.substr(start + name.size(), end - start - name.size()))) return false;
    place_ = end + 1;
    hasTags_ = true;
    hasBreaks_ |= tag->lines != Break::none && tag->lines != Break::space && tag->lines != Break::hidden;
    apply(tag->lines, isClosing);
    return true;
  }

  void apply(Break lines, bool isClosing) {
    switch (lines) {
      case Break::none:
        return;
      case Break::space:
        return add(' ');
      case Break::line:
        return add(kMarkupLineBreak);
      case Break::block:
        return add(kMarkupBlockBreak);
      case Break::paragraph:
        return add(kMarkupParagraphBreak);
      case Break::hidden:
        isHidden_ = !isClosing;
        return;
      case Break::item:
        add(kMarkupBlockBreak);
        if (!isClosing && !isHidden_) text_ += kBullet;
    }
  }

  bool readReference() {
    const auto reference = characterReference(markup_.substr(place_));
    if (!reference) return false;
    place_ += reference->length;
    if (isHidden_) return true;
    mayBeEscapedMarkup_ |= reference->character == '<' || reference->character == '&';
    appendCharacter(text_, reference->character);
    return true;
  }

  std::string_view markup_;
  ForwardSearch tagStarts_;
  ForwardSearch tagEnds_;
  ForwardSearch commentEnds_;
  std::size_t place_ = 0;
  std::string text_;
  bool isHidden_ = false;
  bool isSecondPass_ = false;
  bool mayBeEscapedMarkup_ = false;
  bool hasTags_ = false;
  bool hasBreaks_ = false;
};

/// Replaces line ends by spaces, as a browser does. Empty lines are kept where no tag ends a line, because
/// the author may have relied on them.
std::string withSourceLinesFolded(std::string_view text, bool keepsEmptyLines) {
  std::string folded;
  folded.reserve(text.size());
  while (!text.empty()) {
    const std::size_t gap = std::min(text.find_first_of("\r\n"), text.size());
    folded += text.substr(0, gap);
    text.remove_prefix(gap);
    const std::string_view ends = text.substr(0, text.find_first_not_of("\r\n \t"));
    text.remove_prefix(ends.size());
    if (ends.empty()) continue;
    const bool isEmptyLine = std::ranges::count(ends, '\n') > 1;
    folded += isEmptyLine && keepsEmptyLines ? kMarkupParagraphBreak : ' ';
  }
  return folded;
}

}  // namespace

std::string textOfMarkup(std::string_view markup) {
  if (!mayBeMarkup(markup)) return std::string(markup);
  MarkupReader reader(markup);
  std::string text = reader.read();
  bool hasTags = reader.hasTags();
  bool hasBreaks = reader.hasBreaks();
  if (reader.mayBeEscapedMarkup()) {
    MarkupReader second(text);
    std::string uncovered = second.again().read();
    hasTags |= second.hasTags();
    hasBreaks |= second.hasBreaks();
    text = std::move(uncovered);
  }
  return hasTags ? withSourceLinesFolded(text, !hasBreaks) : text;
}

}  // namespace linewatch
