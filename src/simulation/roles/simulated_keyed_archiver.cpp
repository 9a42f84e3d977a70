#include "simulation/roles/simulated_keyed_archiver.h"

namespace linewatch::simulation {

std::optional<Bytes> SimulatedKeyedArchiver::archivedData(const ArchivedObject& root,
                                                          bool requiringSecureCoding) {
  if (!backstage_->world.archives) return std::nullopt;
  return archiver_.archivedData(root, requiringSecureCoding);
}

std::unique_ptr<KeyedUnarchiver> SimulatedKeyedArchiver::openForReading(const Bytes& bytes) {
  return archiver_.openForReading(bytes);
}

}  // namespace linewatch::simulation
