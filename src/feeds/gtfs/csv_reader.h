#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace linewatch {

/// Comma-separated values as feeds have them, row by row:
///  - a value may stand in quotes, and then hold commas, line ends and doubled quotes; a quote inside a value
///    that does not start with one is an ordinary character;
///  - spaces and tabs around a value, outside its quotes, are no part of it;
///  - lines end with LF, CR LF or CR; blank lines and a byte order mark at the start are passed over.
///
/// Rows are views into the text, which has to outlive the reader.
class CsvReader {
 public:
  static constexpr std::size_t kLongestValue = std::size_t{64} << 10U;
  static constexpr std::size_t kMostValues = 512;
  /// Far more lines than any country publishes in one feed.
  static constexpr std::size_t kMostRows = 200'000;

  struct Fault {
    /// From 1.
    std::size_t line;
    std::string why;
  };

  explicit CsvReader(std::string_view text);

  /// Goes to the next row; false at the end of the text and at a fault.
  bool next();
  /// The row's values, at least one. Valid until the next call of `next`.
  std::span<const std::string_view> values() const { return values_; }
  /// The line on which the row starts, from 1.
  std::size_t line() const { return rowLine_; }
  /// What stopped the reading before the end of the text, if anything did.
  const std::optional<Fault>& fault() const { return fault_; }

 private:
  bool atEnd() const { return position_ == text_.size(); }
  bool atLineEnd() const;
  void readRow();
  void readValue();
  void readPlainValue();
  void readQuotedValue();
  std::optional<std::size_t> closingQuote();
  void keep(std::string_view value);
  void skipBlanks();
  void skipLineEnd();
  void stop(std::size_t line, std::string why);

  std::string_view text_;
  std::size_t position_ = 0;
  std::size_t line_ = 1;
  std::size_t rowLine_ = 1;
  std::size_t rows_ = 0;
  std::vector<std::string_view> values_;
  /// The values of the row that are no piece of the text, for they had doubled quotes. Their addresses stay.
  std::deque<std::string> unescaped_;
  std::optional<Fault> fault_;
};

}  // namespace linewatch
