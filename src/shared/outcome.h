#pragma once

#include <utility>
#include <variant>

#include "shared/error.h"

namespace linewatch {

/// The result of an operation that can fail: a T or an error.
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

}  // namespace linewatch
