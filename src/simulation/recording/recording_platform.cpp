#include "simulation/recording/recording_platform.h"

#include <string>
#include <utility>

#include "platform/favorites.h"
#include "simulation/scenario/scenario_writing.h"
#include "ui/artwork_cache.h"
#include "ui/image.h"
#include "ui/interface_settings.h"

namespace linewatch::simulation {

namespace {

class RecordingTicket final : public TransitLinesTicket {
 public:
  RecordingTicket(std::shared_ptr<TransitLinesTicket> recorded, std::shared_ptr<SessionRecorder> recorder)
      : recorded_(std::move(recorded)), recorder_(std::move(recorder)) {}

  void submit(Handler handler) override {
    recorded_->submit([recorder = recorder_, handler = std::move(handler)](
                          std::shared_ptr<const TransitLineItems> items, std::optional<Error> error) {
      recorder->serviceWillAnswer(items, error);
      handler(std::move(items), std::move(error));
      recorder->serviceDidAnswer();
    });
  }

 private:
  std::shared_ptr<TransitLinesTicket> recorded_;
  std::shared_ptr<SessionRecorder> recorder_;
};

class RecordingContainer final : public FavoritesContainer {
 public:
  RecordingContainer(std::shared_ptr<FavoritesContainer> recorded, std::shared_ptr<SessionRecorder> recorder)
      : recorded_(std::move(recorded)), recorder_(std::move(recorder)) {}

  void readContents(std::function<void(const Outcome<Favorites>&)> operation) override {
    recorded_->readContents([fetch = recorder_->fetchDidBegin(),
                             operation = std::move(operation)](const Outcome<Favorites>& favorites) {
      fetch->set(favorites);
      operation(favorites);
    });
  }

 private:
  std::shared_ptr<FavoritesContainer> recorded_;
  std::shared_ptr<SessionRecorder> recorder_;
};

/// Draws as the widget does, for the width alone.
RecordedRecords::WidthOf widthAsDrawn(Platform& platform) {
  auto cache = std::make_shared<ArtworkDataSourceCache>(
      std::make_shared<TransitArtworkManager>(platform.makeShieldManager(), platform.makeIconManager()));
  return [cache, &platform](const TransitArtworkDataSource& artwork) -> std::optional<double> {
    const ArtworkSize size{.step = 3, .scale = platform.interfaceSettings().displayScale()};
    const auto image = cache->image(artwork, size);
    return image ? std::optional(image->size().width) : std::nullopt;
  };
}

}  // namespace

RecordingPlatform::RecordingPlatform(Platform& recorded, std::shared_ptr<SessionRecorder> recorder)
    : PlatformWrapper(recorded), recorder_(std::move(recorder)) {
  recorder_->setPlatform(recorded, widthAsDrawn(recorded));
}

std::shared_ptr<FavoritesContainer> RecordingPlatform::makeFavoritesContainer(
    std::shared_ptr<RemoteFavoritesPersister> persister) {
  return std::make_shared<RecordingContainer>(wrapped().makeFavoritesContainer(std::move(persister)),
                                              recorder_);
}

std::shared_ptr<TransitLinesTicket> RecordingPlatform::RecordingService::ticketForTransitLines(
    std::vector<MapItemIdentifier> identifiers) {
  return std::make_shared<RecordingTicket>(
      platform_.wrapped().transitService().ticketForTransitLines(std::move(identifiers)),
      platform_.recorder_);
}

std::uint32_t RecordingPlatform::RecordingRandomSource::next() {
  const std::uint32_t number = platform_.wrapped().randomSource().next();
  platform_.recorder_->randomSourceDidDraw(number);
  return number;
}

ConnectionFailureDiagnosis RecordingPlatform::RecordingDevice::diagnoseConnectionFailure() {
  const ConnectionFailureDiagnosis diagnosis = platform_.wrapped().device().diagnoseConnectionFailure();
  platform_.recorder_->widgetWasTold("diagnosis", std::to_string(static_cast<int>(diagnosis)));
  return diagnosis;
}

bool RecordingPlatform::RecordingDevice::hasCapability(std::string_view capability) {
  const bool isThere = platform_.wrapped().device().hasCapability(capability);
  platform_.recorder_->widgetWasTold("capabilities",
                                     objectText({{std::string(capability), isThere ? "true" : "false"}}));
  return isThere;
}

int RecordingPlatform::RecordingDevice::lockState() {
  const int state = platform_.wrapped().device().lockState();
  platform_.recorder_->widgetWasTold("lockState", std::to_string(state));
  return state;
}

void RecordingPlatform::RecordingController::openUserActivity(
    const UserActivity& activity, const std::optional<ApplicationRecord>& application, bool promptToUnlock,
    OpenHandler handler) {
  platform_.wrapped().systemController().openUserActivity(
      activity, application, promptToUnlock,
      [recorder = platform_.recorder_, handler = std::move(handler)](bool success,
                                                                     std::optional<Error> error) {
        recorder->hostDidOpen(success);
        if (handler) handler(success, std::move(error));
      });
}

}  // namespace linewatch::simulation
