#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace linewatch {

/// Reads the comma-separated values of feeds row by row:
///  - a quoted value may hold commas, line ends and doubled quotes; a quote inside an unquoted value is an
///    ordinary character;
///  - spaces and tabs around a value and outside its quotes are dropped;
///  - lines end with LF, CR LF or CR; blank lines and a byte order mark at the start are skipped.
///
/// Rows are views into the text, which must outlive the reader.
class CsvReader {
 public:
  static constexpr std::size_t kLongestValue = std::size_t{64} << 10U;
  static constexpr std::size_t kMostValues = 512;
  /// Far more than the routes of any country.
  static constexpr std::size_t kMostRows = 200'000;

  struct Fault {
    /// From 1.
    std::size_t line;
    std::string why;
  };

  /// More than `mostRows` rows are a fault; a header does not count.
  explicit CsvReader(std::string_view text, std::size_t mostRows = kMostRows);

  /// As `next`, for a first row that names the columns.
  bool readHeader() { return readNext(); }
  /// Goes to the next row; false at the end of the text and at a fault.
  bool next();
  /// The row's values, at least one. Valid until the next call of `next`.
  std::span<const std::string_view> values() const { return values_; }
  /// The line on which the row starts, from 1.
  std::size_t line() const { return rowLine_; }
  /// The fault that stopped the reading; absent when none did.
  const std::optional<Fault>& fault() const { return fault_; }
  /// Goes on after a fault, with the line below the one on which the row starts; false without a fault, and
  /// after too many rows.
  bool skipFault();

 private:
  bool atEnd() const { return position_ == text_.size(); }
  bool atLineEnd() const;
  bool readNext();
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
  std::size_t rowStart_ = 0;
  std::size_t rows_ = 0;
  std::size_t mostRows_;
  std::vector<std::string_view> values_;
  /// The row's values with doubled quotes, as single quotes. A deque, because its elements keep their
  /// addresses.
  std::deque<std::string> unescaped_;
  std::optional<Fault> fault_;
};

}  // namespace linewatch
