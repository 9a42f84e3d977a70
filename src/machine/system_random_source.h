#pragma once

#include <random>

#include "platform/random_source.h"

namespace linewatch {

/// Random numbers from the operating system.
class SystemRandomSource final : public RandomSource {
 public:
  std::uint32_t next() override { return device_(); }

 private:
  std::random_device device_;
};

}  // namespace linewatch
