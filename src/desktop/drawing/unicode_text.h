#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace linewatch::desktop {

/// A text as Qt takes it, and where in the bytes each of its UTF-16 units comes from.
///
/// What is not UTF-8 became replacement characters, and characters that would do something rather than show
/// (control characters, tabs) became spaces or nothing; each still has its units.
class UnicodeText {
 public:
  struct Paragraph {
    qsizetype begin = 0;
    qsizetype end = 0;
  };

  /// Text beyond this many units is left over: no screen shows as much, and the layout of some hostile texts
  /// takes a time in proportion to the square.
  static constexpr qsizetype kLongest = 8192;

  explicit UnicodeText(std::string_view bytes);

  const QString& string() const { return string_; }
  /// Without the line ends between them; at least one, which may be empty.
  const std::vector<Paragraph>& paragraphs() const { return paragraphs_; }
  bool isCutShort() const { return cutShort_; }
  std::size_t byteAt(qsizetype unit) const;
  /// The first unit at the byte or behind it.
  qsizetype unitAt(std::size_t byte) const;

 private:
  void append(std::int32_t character, std::size_t byte);
  void endParagraph(qsizetype lengthOfEnd);

  QString string_;
  std::vector<Paragraph> paragraphs_;
  /// One a unit, and one for the end; none where all is ASCII, for bytes and units are then the same.
  std::vector<std::uint32_t> bytes_;
  qsizetype paragraphBegin_ = 0;
  bool cutShort_ = false;
};

}  // namespace linewatch::desktop
