#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "wire/message_field_holders.h"

/// Copies and merges records.
namespace linewatch::fields {

template <class Record>
void copyDeep(const Record& from, Record& to);
template <class Record>
void merge(const Record& from, Record& into);

template <class T>
std::shared_ptr<T> deepCopy(const std::shared_ptr<T>& reference) {
  using Value = typename Holder<std::shared_ptr<T>>::Value;
  if (!reference) return nullptr;
  const Value& original = *peek(reference);
  if constexpr (Message<Value>) {
    return std::static_pointer_cast<Value>(original.deepCopy());
  } else {
    auto copy = std::make_shared<Value>();
    copyDeep(original, *copy);
    return copy;
  }
}

/// `isDeep`: nested records and messages are copied too, instead of shared.
template <bool isDeep, class Held>
void copyField(const Held& from, Held& to) {
  if constexpr (List<Held>::value) {
    const auto* elements = List<Held>::peek(from);
    if (!elements || (elements->empty() && !isDeep)) return;
    auto& copies = List<Held>::present(to);
    copies.clear();
    for (const auto& element : *elements) {
      if constexpr (isDeep) {
        copies.push_back(deepCopy(element));
      } else {
        copies.push_back(element);
      }
    }
  } else if (!peek(from)) {
    return;
  } else if constexpr (isDeep && IsReference<Held>::value) {
    to = deepCopy(from);
  } else if constexpr (isDeep && !Plain<typename Holder<Held>::Value>) {
    copyDeep(*from, Holder<Held>::fresh(to));
  } else {
    to = from;
  }
}

template <class Record>
void copyShallow(const Record& from, Record& to) {
  const auto& source = RecordFields::of(from);
  auto& target = RecordFields::of(to);
  forEachField<Record>([&](const auto& field) { copyField<false>(field.in(source), field.in(target)); });
}

template <class Record>
void copyDeep(const Record& from, Record& to) {
  const auto& source = RecordFields::of(from);
  auto& target = RecordFields::of(to);
  forEachField<Record>([&](const auto& field) { copyField<true>(field.in(source), field.in(target)); });
}

template <class T>
void mergeReferences(const std::shared_ptr<T>& from, std::shared_ptr<T>& into) {
  using Value = typename Holder<std::shared_ptr<T>>::Value;
  if constexpr (std::is_const_v<T>) {
    auto merged = std::make_shared<Value>(*peek(into));
    merge(*peek(from), *merged);
    into = std::move(merged);
  } else if constexpr (Message<Value>) {
    into->mergeFrom(*from);
  } else {
    merge(*from, *into);
  }
}

template <class Held>
void mergeField(const Held& from, Held& into) {
  if constexpr (List<Held>::value) {
    const auto* elements = List<Held>::peek(from);
    if (!elements || elements->empty()) return;
    const auto added = *elements;  // a message may be merged with itself
    auto& list = List<Held>::present(into);
    list.insert(list.end(), added.begin(), added.end());
  } else if (!peek(from)) {
    return;
    // NOLINTNEXTLINE(bugprone-branch-clone): two different reasons to assign.
  } else if constexpr (Plain<typename Holder<Held>::Value>) {
    into = from;
  } else if (!peek(into)) {
    into = from;
  } else if constexpr (IsReference<Held>::value) {
    mergeReferences(from, into);
  } else {
    merge(*from, *into);
  }
}

template <class Record>
void merge(const Record& from, Record& into) {
  const auto& source = RecordFields::of(from);
  auto& target = RecordFields::of(into);
  forEachField<Record>([&](const auto& field) { mergeField(field.in(source), field.in(target)); });
}

}  // namespace linewatch::fields
