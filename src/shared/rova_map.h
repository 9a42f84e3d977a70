#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <ranges>
#include <type_traits>
#include <utility>
#include <vector>

namespace linewatch {

namespace detail {

template <class T>
struct RovaMapElement {
  using type = T;
};
template <class T>
struct RovaMapElement<std::optional<T>> {
  using type = T;
};
template <class T>
T rovaMapValue(std::optional<T>&& value) {
  return *std::move(value);
}
template <class T>
T rovaMapValue(T&& pointer) {
  return std::forward<T>(pointer);
}

}  // namespace detail

/// Transforms each element of `collection` with `operation` and returns the results in order.
///
/// `operation(element, position)` returns a std::optional or a pointer; empty results are left out. Positions
/// count from 0 and include the elements with empty results. The returned list is never absent.
template <std::ranges::input_range Collection, class Operation>
auto RovaMap(const Collection& collection, Operation&& operation) {
  using Result = std::remove_cvref_t<
      std::invoke_result_t<Operation&, std::ranges::range_reference_t<const Collection>, std::size_t>>;
  std::vector<typename detail::RovaMapElement<Result>::type> values;
  if constexpr (std::ranges::sized_range<const Collection>) values.reserve(std::ranges::size(collection));
  std::size_t position = 0;
  for (auto&& element : collection) {
    if (Result value = std::invoke(operation, element, position++)) {
      values.push_back(detail::rovaMapValue(std::move(value)));
    }
  }
  return values;
}

/// An absent collection (a null pointer) counts as an empty one.
template <std::ranges::input_range Collection, class Operation>
auto RovaMap(const Collection* collection, Operation&& operation) {
  if (collection == nullptr) return RovaMap(Collection{}, std::forward<Operation>(operation));
  return RovaMap(*collection, std::forward<Operation>(operation));
}

}  // namespace linewatch
