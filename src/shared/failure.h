#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include "shared/error.h"

namespace linewatch {

/// The domain of LineWatch's own errors; their codes are `FailureCode`s.
inline constexpr std::string_view kFailureDomain = "LineWatch";

/// The reasons for a failure that callers distinguish. Callers never parse the sentence of an error.
enum class FailureCode : std::int64_t {
  other = 1,
  /// A file, feed, line or host does not exist.
  notFound = 2,
  /// It exists already, e.g. a feed of that name.
  alreadyExists = 3,
  /// It exists but cannot be read, e.g. a folder in the place of a file.
  unreadable = 4,
  /// The user may not read or write it.
  denied = 5,
  readOnly = 6,
  /// The disk is full.
  full = 7,
  /// Another process holds it.
  busy = 8,
  /// A file of LineWatch's own is damaged.
  damaged = 9,
  /// The input is not in its format, e.g. a web page in the place of a feed.
  malformed = 10,
  tooLarge = 11,
  /// The input is well formed but of a kind that LineWatch does not handle, e.g. an encrypted archive.
  unsupported = 12,
  /// No answer: no connection, no such host, or the connection broke.
  unreachable = 13,
  /// A server answered that it does not give the document, e.g. 404 or 503.
  refused = 14,
  timedOut = 15,
  /// Stopped on request.
  cancelled = 16,
  /// A value that the user gave cannot be used.
  invalid = 17,
  /// Nothing is known about it yet, e.g. the lines of a feed without alerts.
  unknown = 18,
  /// A server wants a key, or another one than it was sent.
  keyWanted = 19,
};

/// An error of LineWatch's own. Its sentence reads "what: where: why", e.g. "feed Metro: routes.txt line 3: a
/// quote is not closed". Empty parts are left out; a caller that knows them adds them with `within`.
inline Error failure(FailureCode code, std::string_view what, std::string_view where, std::string_view why) {
  std::string sentence;
  for (const std::string_view part : {what, where, why}) {
    if (!part.empty()) sentence.append(sentence.empty() ? "" : ": ").append(part);
  }
  return {
      std::string(kFailureDomain), static_cast<std::int64_t>(code), {{kLocalizedDescriptionKey, sentence}}};
}
/// A failure with the code `other`.
inline Error failure(std::string_view what, std::string_view where, std::string_view why) {
  return failure(FailureCode::other, what, where, why);
}

/// `other` for errors of other domains.
inline FailureCode failureCodeOf(const Error& error) {
  return error.domain == kFailureDomain ? static_cast<FailureCode>(error.code) : FailureCode::other;
}
/// The code of a failed system call, e.g. `notFound` for ENOENT.
FailureCode failureCodeOf(const std::error_code& systemError);

/// The sentence of an error for people.
inline std::string sentenceOf(const Error& error) {
  const auto sentence = error.info.find(kLocalizedDescriptionKey);
  const std::string* const text =
      sentence == error.info.end() ? nullptr : sentence->second.get<std::string>();
  return text == nullptr ? error.description() : *text;
}

/// The same failure with the name of the larger thing in front of its sentence: within("feed Metro", "no such
/// file") reads "feed Metro: no such file". The code and the rest of the info stay.
inline Error within(std::string_view what, const Error& error) {
  Error whole = failure(failureCodeOf(error), what, "", sentenceOf(error));
  whole.info.insert(error.info.begin(), error.info.end());
  return whole;
}

}  // namespace linewatch
