#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace linewatch::desktop {

/// A text as UTF-16, with the position of each unit in the UTF-8 text.
///
/// Invalid bytes become replacement characters. Control characters become word joiners, which are invisible;
/// tabs become spaces.
class UnicodeText {
 public:
  struct Paragraph {
    qsizetype begin = 0;
    qsizetype end = 0;
  };

  /// Longer text is cut off after this many units: no screen shows more, and the layout of some hostile texts
  /// takes quadratic time.
  static constexpr qsizetype kLongest = 8192;

  explicit UnicodeText(std::string_view bytes);

  const QString& string() const { return string_; }
  /// The paragraphs, without line ends. There is at least one, which may be empty.
  const std::vector<Paragraph>& paragraphs() const { return paragraphs_; }
  bool isCutShort() const { return cutShort_; }
  std::size_t byteAt(qsizetype unit) const;
  /// The first unit at or after the byte.
  qsizetype unitAt(std::size_t byte) const;

 private:
  void append(std::int32_t character, std::size_t byte);
  void endParagraph(qsizetype lengthOfEnd);

  QString string_;
  std::vector<Paragraph> paragraphs_;
  /// The byte position of each unit, and of the end. Empty for ASCII, where both positions are equal.
  std::vector<std::uint32_t> bytes_;
  qsizetype paragraphBegin_ = 0;
  bool cutShort_ = false;
};

}  // namespace linewatch::desktop
