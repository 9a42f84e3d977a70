#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "simulation/world/backstage.h"
#include "wire/archive/cbor_keyed_archiver.h"
#include "wire/keyed_archiver.h"

namespace linewatch::simulation {

/// The archiver of both platforms, which the world can make fail: while its `archives` is false, nothing can
/// be archived. Reading is not affected.
class SimulatedKeyedArchiver final : public KeyedArchiver {
 public:
  explicit SimulatedKeyedArchiver(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::optional<Bytes> archivedData(const ArchivedObject& root, bool requiringSecureCoding) override;
  std::unique_ptr<KeyedUnarchiver> openForReading(const Bytes& bytes) override;

 private:
  SharedBackstage backstage_;
  CborKeyedArchiver archiver_;
};

}  // namespace linewatch::simulation
