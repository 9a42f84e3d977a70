#include "simulation/roles/simulated_keyed_archiver.h"

#include "simulation/roles/archive_reader.h"
#include "simulation/roles/archive_writer.h"

namespace linewatch::simulation {

std::optional<Bytes> SimulatedKeyedArchiver::archivedData(const ArchivedObject& root,
                                                          bool requiringSecureCoding) {
  if (!backstage_->world.archives) return std::nullopt;
  return archive::Writer(requiringSecureCoding).archive(root);
}

std::unique_ptr<KeyedUnarchiver> SimulatedKeyedArchiver::openForReading(const Bytes& bytes) {
  if (!archive::Reader::canOpen(bytes)) return nullptr;
  return std::make_unique<archive::Reader>(bytes);
}

}  // namespace linewatch::simulation
