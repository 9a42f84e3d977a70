#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace linewatch {

/// A text, or none. Absent is not the same as empty.
using OptionalText = std::optional<std::string>;

/// A text, or none, that never changes, so that copies share it. Read on any thread.
class SharedText {
 public:
  /// None.
  SharedText() = default;
  /// Whatever gives an optional text: a text, a literal, none.
  template <std::convertible_to<OptionalText> T>
  SharedText(T text) : text_(std::make_shared<const OptionalText>(std::move(text))) {}
  /// A text that is part of `owner`, which lives as long as a copy of this does.
  template <class Owner>
  static SharedText partOf(std::shared_ptr<const Owner> owner, const OptionalText& text) {
    return SharedText(std::shared_ptr<const OptionalText>(std::move(owner), &text));
  }

  const OptionalText& operator*() const { return text_ ? *text_ : none(); }
  const OptionalText* operator->() const { return &**this; }

  /// By the texts.
  friend bool operator==(const SharedText& a, const SharedText& b) { return a.text_ == b.text_ || *a == *b; }

 private:
  explicit SharedText(std::shared_ptr<const OptionalText> text) : text_(std::move(text)) {}
  static const OptionalText& none() {
    static const OptionalText kNone;
    return kNone;
  }

  std::shared_ptr<const OptionalText> text_;
};

}  // namespace linewatch
