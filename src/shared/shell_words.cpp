#include "shared/shell_words.h"

#include <optional>
#include <utility>

#include "shared/failure.h"

namespace linewatch {

namespace {

using namespace std::string_view_literals;

bool isBlank(char character) { return " \t\n"sv.find(character) != std::string_view::npos; }

/// The characters that a backslash escapes between double quotes. Before any other character it stands for
/// itself.
bool isEscapedBetweenDoubleQuotes(char character) {
  return R"($`"\)"sv.find(character) != std::string_view::npos;
}

/// Splits a command, one character at a time.
class ShellWords {
 public:
  void take(char character) {
    if (std::exchange(isEscaped_, false)) return takeEscaped(character);
    if (quote_ == character) {
      quote_.reset();
    } else if (character == '\\' && quote_ != '\'') {
      isEscaped_ = true;
    } else if (!quote_ && isBlank(character)) {
      isInWord_ = false;
    } else if (!quote_ && (character == '\'' || character == '"')) {
      quote_ = character;
      // Quotes make a word even if nothing is between them.
      word();
    } else {
      word() += character;
    }
  }

  /// What the command lacks at its end; null when it is complete.
  const char* complaint() const {
    if (quote_) return "a quote is not closed";
    return isEscaped_ ? "nothing follows the last backslash" : nullptr;
  }
  std::vector<std::string> words() && { return std::move(words_); }

 private:
  void takeEscaped(char character) {
    // A backslash at the end of a line joins it with the next one.
    if (character == '\n') return;
    if (quote_ && !isEscapedBetweenDoubleQuotes(character)) word() += '\\';
    word() += character;
  }
  std::string& word() {
    if (!std::exchange(isInWord_, true)) words_.emplace_back();
    return words_.back();
  }

  std::vector<std::string> words_;
  bool isInWord_ = false;
  bool isEscaped_ = false;
  /// The quote that is open.
  std::optional<char> quote_;
};

}  // namespace

Outcome<std::vector<std::string>> shellWords(std::string_view command) {
  ShellWords words;
  for (const char character : command) words.take(character);
  if (words.complaint() != nullptr) return failure(command, "", words.complaint());
  return std::move(words).words();
}

std::string shellQuoted(std::string_view word) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._:/@%+=,";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string_view::npos) return std::string(word);
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

}  // namespace linewatch
