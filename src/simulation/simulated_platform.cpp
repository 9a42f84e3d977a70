#include "simulation/simulated_platform.h"

#include <utility>

#include "platform/companion_application.h"

namespace linewatch::simulation {

std::shared_ptr<SimulatedPlatform> SimulatedPlatform::make(World world) {
  auto preferences = std::make_shared<PreferencesStorage>();
  preferences->suite(kCompanionAppGroupSuite) = world.preferences;
  auto backstage = std::make_shared<Backstage>(std::move(world), Seconds(0), std::make_shared<Transcript>());
  return std::shared_ptr<SimulatedPlatform>(
      new SimulatedPlatform(std::move(backstage), std::move(preferences)));
}

std::shared_ptr<SimulatedPlatform> SimulatedPlatform::restarted(SimulatedPlatform& previous) {
  previous.mainLoop().discardAll();
  auto backstage = std::make_shared<Backstage>(previous.world(), previous.mainLoop().elapsed(),
                                               previous.backstage_->transcript);
  return std::shared_ptr<SimulatedPlatform>(
      new SimulatedPlatform(std::move(backstage), previous.preferences_));
}

SimulatedPlatform::SimulatedPlatform(SharedBackstage backstage,
                                     std::shared_ptr<PreferencesStorage> preferences)
    : backstage_(std::move(backstage)),
      preferences_(std::move(preferences)),
      log_(backstage_),
      randomSource_(backstage_),
      localization_(backstage_),
      keyedArchiver_(backstage_),
      transitService_(backstage_),
      userSession_(backstage_),
      systemController_(backstage_),
      device_(backstage_),
      usageRecorder_(backstage_),
      analyticsLogger_(backstage_),
      compressor_(backstage_),
      imageSource_(backstage_),
      interfaceSettings_(backstage_),
      extensionContext_(std::make_shared<SimulatedExtensionContext>(backstage_)) {}

// Actions that wait in the loop may own the backstage that owns the loop.
SimulatedPlatform::~SimulatedPlatform() {
  mainLoop().discardAll();
  backstage_->waitingLookups.clear();
}

bool SimulatedPlatform::answerLookup() {
  if (backstage_->waitingLookups.empty()) return false;
  const auto answer = std::move(backstage_->waitingLookups.front());
  backstage_->waitingLookups.pop_front();
  answer();
  return true;
}

void SimulatedPlatform::changeWorld(const std::function<void(World&)>& change) {
  World& world = backstage_->world;
  Dictionary& stored = preferences_->suite(kCompanionAppGroupSuite);
  const Date start = world.start;
  const ui::TextSizeCategory textSize = world.textSize;
  world.preferences = stored;
  change(world);
  stored = world.preferences;
  world.start = start;
  backstage_->mainLoop.setClockOffset(world.clockOffset);
  backstage_->worldChanged();
  if (world.textSize != textSize) notificationCenter_.post(ui::kTextSizeDidChangeNotification);
}

std::shared_ptr<SimulatedExtensionContext> SimulatedPlatform::extensionContext() const {
  return world().host.hosted ? extensionContext_ : nullptr;
}

std::shared_ptr<SimulatedViewController> SimulatedPlatform::makeViewController() const {
  return std::make_shared<SimulatedViewController>(extensionContext());
}

std::shared_ptr<PreferencesStore> SimulatedPlatform::makePreferencesStore(std::string_view suite) {
  return std::make_shared<SimulatedPreferencesStore>(backstage_, preferences_, std::string(suite));
}

std::shared_ptr<RemoteFavoritesPersister> SimulatedPlatform::makeRemoteFavoritesPersister() {
  return std::make_shared<SimulatedFavoritesPersister>(backstage_);
}

std::shared_ptr<FavoritesContainer> SimulatedPlatform::makeFavoritesContainer(
    std::shared_ptr<RemoteFavoritesPersister> persister) {
  return std::make_shared<SimulatedFavoritesContainer>(backstage_, std::move(persister));
}

std::shared_ptr<IconManager> SimulatedPlatform::makeIconManager() {
  return std::make_shared<SimulatedIconManager>(backstage_);
}

std::shared_ptr<ShieldManager> SimulatedPlatform::makeShieldManager() {
  return std::make_shared<SimulatedShieldManager>(backstage_);
}

}  // namespace linewatch::simulation
