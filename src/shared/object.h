#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace linewatch {

/// The base of all objects that can be compared, hashed and described.
///
/// By default an object equals only itself. A class that overrides `isEqual` also overrides `hash`, because
/// equal objects must hash equally.
class Object {
 public:
  virtual ~Object() = default;

  virtual bool isEqual(const Object& other) const { return this == &other; }
  virtual std::size_t hash() const { return std::hash<const Object*>{}(this); }
  /// For logs only; nothing parses it.
  virtual std::string description() const;

  friend bool operator==(const Object& a, const Object& b) { return a.isEqual(b); }

 protected:
  Object() = default;
  Object(const Object&) = default;
  Object& operator=(const Object&) = default;
};

/// Equal by value; two absent objects are equal, an absent and a present one are not.
template <class A, class B>
bool bothAbsentOrEqual(const std::shared_ptr<A>& a, const std::shared_ptr<B>& b) {
  if (a == b) return true;
  return a && b && a->isEqual(*b);
}

/// The object's hash; an absent one hashes to 0.
template <class A>
std::size_t hashOrZero(const std::shared_ptr<A>& object) {
  return object ? object->hash() : 0;
}

/// The name of an object's class without its namespace, e.g. "RVTransitItem".
std::string classNameOf(const Object& object);

}  // namespace linewatch

/// For the standard containers: compare and hash the objects, not their addresses.
template <std::derived_from<linewatch::Object> T>
struct std::hash<T> {
  std::size_t operator()(const T& object) const { return object.hash(); }
};
