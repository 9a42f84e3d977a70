#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace linewatch::desktop {

/// A text as UTF-16, with the byte that each unit comes from.
///
/// Bytes that are not UTF-8 become replacement characters. Control characters become word joiners, which are
/// invisible, and tabs become spaces.
class UnicodeText {
 public:
  struct Paragraph {
    qsizetype begin = 0;
    qsizetype end = 0;
  };

  /// Text beyond this many units is cut off. No screen shows that much, and laying out some hostile texts
  /// takes quadratic time.
  static constexpr qsizetype kLongest = 8192;

  explicit UnicodeText(std::string_view bytes);

  const QString& string() const { return string_; }
  /// Paragraphs without their line ends. There is at least one, which may be empty.
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
  /// The byte of each unit, and of the end. Empty for ASCII, where bytes and units are the same.
  std::vector<std::uint32_t> bytes_;
  qsizetype paragraphBegin_ = 0;
  bool cutShort_ = false;
};

}  // namespace linewatch::desktop
