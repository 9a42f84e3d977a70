#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

namespace linewatch {

/// One platform's implementation of a role, for a suite of tests that every implementation must pass.
template <class Role>
struct Subject {
  std::string platform;
  std::function<std::shared_ptr<Role>()> make;

  friend void PrintTo(const Subject& subject, std::ostream* stream) { *stream << subject.platform; }
};

template <class Role>
std::string nameOfSubject(const testing::TestParamInfo<Subject<Role>>& info) {
  return info.param.platform;
}

}  // namespace linewatch
