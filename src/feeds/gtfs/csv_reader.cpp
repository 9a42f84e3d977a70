#include "feeds/gtfs/csv_reader.h"

#include <algorithm>
#include <utility>

namespace linewatch {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t";

std::string_view withoutTrailingBlanks(std::string_view value) {
  const std::size_t last = value.find_last_not_of(kBlanks);
  return value.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::string withSingleQuotes(std::string_view escaped) {
  std::string value;
  value.reserve(escaped.size());
  for (std::size_t i = 0; i < escaped.size(); ++i) {
    value.push_back(escaped[i]);
    if (escaped[i] == '"') ++i;
  }
  return value;
}

std::size_t lineEndsIn(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool loneReturn = text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n');
    if (text[i] == '\n' || loneReturn) ++count;
  }
  return count;
}

}  // namespace

CsvReader::CsvReader(std::string_view text, std::size_t mostRows) : text_(text), mostRows_(mostRows) {
  if (text_.starts_with(kByteOrderMark)) text_.remove_prefix(kByteOrderMark.size());
}

bool CsvReader::next() {
  if (!readNext()) return false;
  if (++rows_ <= mostRows_) return true;
  stop(rowLine_, "there are more than " + std::to_string(mostRows_) + " rows");
  values_.clear();
  return false;
}

bool CsvReader::skipFault() {
  if (!fault_ || rows_ > mostRows_) return false;
  fault_.reset();
  position_ = std::min(text_.find_first_of("\r\n", rowStart_), text_.size());
  line_ = rowLine_;
  skipLineEnd();
  return true;
}

bool CsvReader::readNext() {
  while (!fault_ && !atEnd()) {
    const std::size_t start = position_;
    readRow();
    const bool blank = withoutTrailingBlanks(text_.substr(start, position_ - start)).empty();
    skipLineEnd();
    if (!blank && !fault_) return true;
  }
  values_.clear();
  return false;
}

bool CsvReader::atLineEnd() const { return atEnd() || text_[position_] == '\n' || text_[position_] == '\r'; }

void CsvReader::readRow() {
  rowLine_ = line_;
  rowStart_ = position_;
  values_.clear();
  unescaped_.clear();
  readValue();
  while (!fault_ && !atLineEnd()) {
    ++position_;  // the comma
    readValue();
  }
}

void CsvReader::readValue() {
  if (values_.size() == kMostValues)
    return stop(rowLine_, "there are more than " + std::to_string(kMostValues) + " values");
  skipBlanks();
  if (!atEnd() && text_[position_] == '"') return readQuotedValue();
  readPlainValue();
}

void CsvReader::readPlainValue() {
  const std::size_t end = std::min(text_.find_first_of(",\r\n", position_), text_.size());
  keep(withoutTrailingBlanks(text_.substr(position_, end - position_)));
  position_ = end;
}

void CsvReader::readQuotedValue() {
  const std::size_t start = position_ + 1;
  const std::size_t startLine = line_;
  const std::optional<std::size_t> close = closingQuote();
  if (!close) return stop(startLine, "a quote is not closed");
  const std::string_view escaped = text_.substr(start, *close - start);
  position_ = *close + 1;
  line_ += lineEndsIn(escaped);
  if (escaped.find('"') == std::string_view::npos) {
    keep(escaped);
  } else {
    keep(unescaped_.emplace_back(withSingleQuotes(escaped)));
  }
  skipBlanks();
  if (!atLineEnd() && text_[position_] != ',') stop(line_, "there is text after a closing quote");
}

std::optional<std::size_t> CsvReader::closingQuote() {
  std::size_t quote = text_.find('"', position_ + 1);
  while (quote != std::string_view::npos && quote + 1 < text_.size() && text_[quote + 1] == '"') {
    quote = text_.find('"', quote + 2);
  }
  return quote == std::string_view::npos ? std::nullopt : std::optional(quote);
}

void CsvReader::keep(std::string_view value) {
  if (value.size() > kLongestValue)
    return stop(rowLine_, "a value is longer than " + std::to_string(kLongestValue >> 10U) + " KiB");
  values_.push_back(value);
}

void CsvReader::skipBlanks() {
  position_ = std::min(text_.find_first_not_of(kBlanks, position_), text_.size());
}

void CsvReader::skipLineEnd() {
  if (fault_ || atEnd()) return;
  const bool two = text_.substr(position_, 2) == "\r\n";
  position_ += two ? 2 : 1;
  ++line_;
}

void CsvReader::stop(std::size_t line, std::string why) {
  if (!fault_) fault_ = Fault{line, std::move(why)};
}

}  // namespace linewatch
