#include "feeds/gtfs/stop_search.h"

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <cstring>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "feeds/gtfs/csv_reader.h"
#include "shared/byte_size.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

constexpr std::string_view kBlanksInRow = " \t\r";
constexpr std::size_t kLongestRow = kMebibyte;
constexpr auto kNone = std::string_view::npos;

/// False for a return at the end, where LF may follow.
bool hasLoneReturn(std::string_view text) {
  const std::size_t at = text.find('\r');
  return at != kNone && at + 1 < text.size() && text[at + 1] != '\n';
}

std::string_view withoutBlanksAround(std::string_view value) {
  const std::size_t first = std::min(value.find_first_not_of(kBlanksInRow), value.size());
  return value.substr(first, value.find_last_not_of(kBlanksInRow) + 1 - first);
}

/// The closing quote of the value that opens at `open`; npos when the text ends before. `CsvReader` has the
/// same rules.
std::size_t closingQuote(std::string_view text, std::size_t open) {
  std::size_t quote = text.find('"', open + 1);
  while (quote < text.size() - 1 && text[quote + 1] == '"') quote = text.find('"', quote + 2);
  return quote;
}

/// The end of the value at the start of the text: its comma, or the LF of its row. Npos when the text ends
/// before.
std::size_t endOfValue(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanksInRow);
  const bool isQuoted = first != kNone && text[first] == '"';
  const std::size_t close = isQuoted ? closingQuote(text, first) : 0;
  if (close == kNone) return kNone;
  const auto* const end =
      std::find_if(text.begin() + close, text.end(), [](char byte) { return byte == ',' || byte == '\n'; });
  return end == text.end() ? kNone : static_cast<std::size_t>(end - text.begin());
}

/// The end of the row at the start of the text, after its LF; npos when the text ends before.
std::size_t endOfRow(std::string_view text) {
  std::size_t end = 0;
  for (;;) {
    const std::size_t length = endOfValue(text.substr(end));
    if (length == kNone) return kNone;
    end += length + 1;
    if (text[end - 1] == '\n') return end;
  }
}

/// The ids that have not been found yet.
class WantedIds {
 public:
  explicit WantedIds(const StopIds& ids) : ids_(ids.begin(), ids.end()) {
    for (const std::string_view id : ids_) mayBeWanted_.set(place(id));
  }

  bool isEmpty() const { return ids_.empty(); }
  /// True if the text holds one of the ids, or may hold one.
  bool mayBeIn(std::string_view text) const {
    constexpr std::size_t kFewIds = 3;
    return ids_.size() > kFewIds || std::ranges::any_of(ids_, [text](std::string_view id) {
             return memmem(text.data(), text.size(), id.data(), id.size()) != nullptr;
           });
  }
  bool has(std::string_view id) const { return mayBeWanted_[place(id)] && ids_.contains(id); }
  void remove(std::string_view id) { ids_.erase(ids_.find(id)); }

 private:
  static std::size_t place(std::string_view id) { return std::hash<std::string_view>()(id) % kPlaces; }

  static constexpr std::size_t kPlaces = 8192;
  std::set<std::string_view, std::less<>> ids_;
  std::bitset<kPlaces> mayBeWanted_;
};

/// Collects the header and the wanted rows of a table that comes in pieces.
///
/// Every line is taken for a row, also inside a quoted value, because tracking the quotes takes twice the
/// time. When the id is the first column, a line inside a value gives a wrong match only if it starts with a
/// wanted id.
class StopSearch {
 public:
  explicit StopSearch(const StopIds& ids) : wanted_(ids) {}

  /// False when no more pieces are needed.
  bool take(std::string_view piece) {
    if (!rest_.empty()) {
      // Only the row that the pieces share is copied.
      const std::size_t end = piece.find('\n') + 1;
      rest_ += piece.substr(0, end == 0 ? piece.size() : end);
      rest_.erase(0, takeRows(rest_));
      piece.remove_prefix(end == 0 ? piece.size() : end);
    }
    if (!rest_.empty()) {
      rest_ += piece;
      rest_.erase(0, takeRows(rest_));
    } else {
      rest_ = piece.substr(takeRows(piece));
    }
    if (!column_ && hasLoneReturn(rest_)) needsWholeTable_ = true;
    return !isDone();
  }
  /// After the last piece.
  void finish() {
    if (!isDone() && !rest_.empty()) takeRows(rest_ += '\n');
    if (!wanted_.isEmpty() && column_.value_or(0) > 0) needsWholeTable_ = true;
  }

  /// The header and the wanted rows.
  const std::string& found() const { return found_; }
  /// True when the rows do not end with LF, and when a wanted row may follow a line end in a quoted value.
  bool needsWholeTable() const { return needsWholeTable_; }
  bool hasLongRow() const { return rest_.size() > kLongestRow; }

 private:
  bool isDone() const { return needsWholeTable_ || hasLongRow() || (column_ && wanted_.isEmpty()); }
  /// The length of the rows that were taken from the start of the text.
  std::size_t takeRows(std::string_view text) {
    const std::size_t complete = text.rfind('\n') + 1;
    std::size_t start = 0;
    while (start < complete && !column_)
      start += takeHeader(text.substr(start, text.find('\n', start) - start));
    if (!wanted_.mayBeIn(text.substr(start, complete - start))) return complete;
    while (start < complete && !isDone()) {
      std::size_t end = text.find('\n', start) + 1;
      const std::string_view line = text.substr(start, end - 1 - start);
      if (const std::string_view id = idIn(line); wanted_.has(id)) {
        const std::size_t length = endOfRow(text.substr(start));
        if (length == kNone) break;
        end = start + length;
        found_ += text.substr(start, length);
        wanted_.remove(id);
      }
      start = end;
    }
    return start;
  }
  /// The length of the line.
  std::size_t takeHeader(std::string_view line) {
    CsvReader header(line);
    if (hasLoneReturn(line)) needsWholeTable_ = true;
    if (header.next()) {  // else a blank line
      found_.append(line).append("\n");
      column_ =
          static_cast<std::size_t>(std::ranges::find(header.values(), "stop_id") - header.values().begin());
    }
    return line.size() + 1;
  }
  /// The stop id in the row that starts with the line, as it stands between blanks or quotes.
  std::string_view idIn(std::string_view line) const {
    for (std::size_t column = *column_; column > 0; --column) {
      const std::size_t comma = endOfValue(line);
      if (comma == kNone) return {};
      line.remove_prefix(comma + 1);
    }
    const std::string_view value = withoutBlanksAround(line.substr(0, endOfValue(line)));
    const bool isQuoted = value.size() > 1 && value.starts_with('"') && value.ends_with('"');
    return isQuoted ? value.substr(1, value.size() - 2) : value;
  }

  WantedIds wanted_;
  /// The column of the ids; absent before the header.
  std::optional<std::size_t> column_;
  bool needsWholeTable_ = false;
  std::string found_;
  /// The start of a row that goes on in the next piece.
  std::string rest_;
};

}  // namespace

Outcome<std::vector<StopPage>> findStops(GtfsSource& source, const StopIds& ids) {
  StopSearch search(ids);
  const auto isThere = source.read(kStopsTable, [&](std::string_view piece) { return search.take(piece); });
  if (!isThere) return isThere.error();
  search.finish();
  if (search.hasLongRow())
    return failure(FailureCode::malformed, kStopsTable, "",
                   "a row is longer than " + sizeInWords(kLongestRow) + ", or a quote is not closed");
  if (search.needsWholeTable()) return readStopPages(source);
  StopsTable table(search.found());
  return readStopPages(table);
}

}  // namespace linewatch
