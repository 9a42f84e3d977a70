#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace linewatch {

/// A text or none. Absent and empty differ.
using OptionalText = std::optional<std::string>;

/// An immutable text or none. Copies share the text. Readable on any thread.
class SharedText {
 public:
  /// No text.
  SharedText() = default;
  /// From a text, a literal or none.
  template <std::convertible_to<OptionalText> T>
  SharedText(T text) : text_(std::make_shared<const OptionalText>(std::move(text))) {}
  /// A text that is part of `owner`. The copies keep `owner` alive.
  template <class Owner>
  static SharedText partOf(std::shared_ptr<const Owner> owner, const OptionalText& text) {
    return SharedText(std::shared_ptr<const OptionalText>(std::move(owner), &text));
  }

  const OptionalText& operator*() const { return text_ ? *text_ : none(); }
  const OptionalText* operator->() const { return &**this; }

  /// Compares the texts.
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
