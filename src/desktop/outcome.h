#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "platform/error.h"

namespace linewatch::desktop {

/// What an operation gives: a T, or the error that kept it from one.
template <class T>
class [[nodiscard]] Outcome {
 public:
  Outcome(T value) : contents_(std::move(value)) {}
  Outcome(Error error) : contents_(std::move(error)) {}

  bool succeeded() const { return contents_.index() == 0; }
  explicit operator bool() const { return succeeded(); }

  /// Only after a success.
  T& operator*() { return std::get<0>(contents_); }
  const T& operator*() const { return std::get<0>(contents_); }
  T* operator->() { return &std::get<0>(contents_); }
  const T* operator->() const { return &std::get<0>(contents_); }

  /// Only after a failure.
  const Error& error() const { return std::get<1>(contents_); }

 private:
  std::variant<T, Error> contents_;
};

/// The domain of the desktop platform's own errors.
inline constexpr std::string_view kDesktopErrorDomain = "LineWatchDesktop";

/// An error of the desktop platform that reads "what: where: why", e.g. "feed Metro: routes.txt line 3: a
/// quote is not closed". An empty `where` is left out.
inline Error failure(std::string_view what, std::string_view where, std::string_view why) {
  std::string sentence(what);
  for (const std::string_view part : {where, why}) {
    if (!part.empty()) sentence.append(": ").append(part);
  }
  return {std::string(kDesktopErrorDomain), 1, {{kLocalizedDescriptionKey, sentence}}};
}

/// The same failure as a part of something larger, which its sentence names first.
inline Error within(std::string_view what, const Error& error) {
  const auto sentence = error.info.find(kLocalizedDescriptionKey);
  const std::string* const text =
      sentence == error.info.end() ? nullptr : sentence->second.get<std::string>();
  return failure(what, "", text == nullptr ? error.description() : *text);
}

}  // namespace linewatch::desktop
