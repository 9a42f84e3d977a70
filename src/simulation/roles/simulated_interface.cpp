#include "simulation/roles/simulated_interface.h"

#include "platform/log.h"

namespace linewatch::simulation {

std::shared_ptr<const ui::Image> SimulatedImageSource::imageNamed(std::string_view name) {
  if (!backstage_->world.missingImages.contains(name)) {
    return std::make_shared<SimulatedImage>(std::string(name));
  }
  if (missed_.emplace(name).second) logError("There is no image named %@", {std::string(name)});
  return nullptr;
}

}  // namespace linewatch::simulation
