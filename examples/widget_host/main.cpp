// widget_host FILE: shows LineWatch's widget with news of the program's own, and draws it into FILE, a PNG,
// SVG or PDF. The platform of the desktop draws it and gives it a main loop and texts; this program gives it
// lines and favourites.

#include <QEventLoop>
#include <QGuiApplication>
#include <cstdio>
#include <memory>
#include <utility>

#include "desktop/desktop_platform.h"
#include "desktop/drawing/compact_size.h"
#include "desktop/drawing/drawing_screen.h"
#include "desktop/drawing/offscreen_application.h"
#include "desktop/drawing/picture.h"
#include "feeds/queued_transit_service.h"
#include "platform/platform_wrapper.h"
#include "platform/transit_records.h"
#include "shared/failure.h"
#include "shared/installation.h"
#include "widget/transit_incidents_view_controller.h"

namespace {

using namespace linewatch;

constexpr Size kCompact = desktop::kCompactSize;
constexpr double kMostRows = 8;

SharedLineItem line(std::uint64_t muid, const std::string& name, const std::string& color,
                    TransitIncidents incidents) {
  TransitArtworkDataSource shield{.artworkSourceType = kArtworkSourceShield};
  shield.shieldDataSource = ShieldDataSource{.shieldType = static_cast<std::int64_t>(TransitMode::tram),
                                             .shieldText = name,
                                             .shieldColorString = color};
  TransitLineFields fields{.muid = muid, .identifier = MapItemIdentifier{.muid = muid}, .name = name};
  fields.alternateArtwork = std::make_shared<const TransitArtworkDataSource>(std::move(shield));
  return std::make_shared<const TransitLineRecord>(std::move(fields), std::move(incidents));
}

SharedIncident incident(std::uint64_t muid, const std::string& title, const std::string& summary) {
  TransitIncidentFields fields{.muid = muid};
  fields.title = title;
  fields.summary = summary;
  return std::make_shared<const TransitIncidentRecord>(std::move(fields));
}

/// The news of this program. The numbers identify lines and incidents for ever.
TransitLineItems news() {
  return {line(1, "5", "B3001B", {incident(101, "No trams at the harbour", "A bridge is being repaired.")}),
          line(2, "9", "00695C", {})};
}

/// Runs on the service's thread, so it may wait for a server.
Outcome<TransitLineItems> lookUp(const std::vector<MapItemIdentifier>& wanted) {
  TransitLineItems found;
  for (const MapItemIdentifier& identifier : wanted) {
    for (const SharedLineItem& item : news()) {
      if (item->muid() == identifier.muid) found.push_back(item);
    }
  }
  return found;
}

/// Every line is a favourite.
class OwnFavorites final : public RemoteFavoritesPersister {
 public:
  Outcome<Favorites> readFavorites() override {
    Favorites favorites;
    for (const SharedLineItem& item : news()) favorites.emplace_back(FavoriteTransitLine{item});
    return favorites;
  }
};

/// The desktop's platform with two roles replaced.
class OwnPlatform final : public PlatformWrapper {
 public:
  explicit OwnPlatform(Platform& desktop) : PlatformWrapper(desktop), service_(lookUp, desktop.mainLoop()) {}

  TransitService& transitService() override { return service_; }
  std::shared_ptr<RemoteFavoritesPersister> makeRemoteFavoritesPersister() override {
    return std::make_shared<OwnFavorites>();
  }

 private:
  QueuedTransitService service_;
};

/// Tells the widget how much room it has. A window would also follow the widget's display modes and open
/// URLs.
class OwnHost final : public ExtensionContext {
 public:
  Size maximumSizeForDisplayMode(WidgetDisplayMode mode) const override {
    return {kCompact.width, kCompact.height * (mode == WidgetDisplayMode::compact ? 1 : kMostRows)};
  }
  WidgetDisplayMode activeDisplayMode() const override { return WidgetDisplayMode::expanded; }
  void setLargestAvailableDisplayMode(WidgetDisplayMode) override {}
  void openURL(const URL&, std::function<void(bool)> completion) override {
    if (completion) completion(false);
  }
};

std::optional<Error> drawWidget(const char* file) {
  const auto host = std::make_shared<OwnHost>();
  const auto widget = RVTransitIncidentsViewController::make(host, kCompact);
  QEventLoop loop;
  widget->viewWillAppear(false);
  widget->widgetPerformUpdateWithCompletionHandler([&](WidgetUpdateResult) { loop.quit(); });
  loop.exec();
  const Size room = host->maximumSizeForDisplayMode(WidgetDisplayMode::expanded);
  widget->widgetActiveDisplayModeDidChange(WidgetDisplayMode::expanded, room);
  const Size size = widget->dataSource()->preferredContentSizeForExpanded(true, room);
  return desktop::savePicture(widget->view(), {.size = size}, file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: widget_host FILE\n", stderr);
    return 2;
  }
  useInstallation(LINEWATCH_INSTALLATION);
  const auto application = desktop::makeOffscreenApplication();
  desktop::DesktopSettings settings{.locale = UserLocale::fromEnvironment(processEnvironment)};
  settings.given = desktop::DesktopSettings::GivenFeed{};  // no feeds and no saved state
  settings.screen = std::make_shared<desktop::DrawingScreen>(desktop::ScreenSettings{});
  const auto desktop = desktop::DesktopPlatform::make(std::move(settings));
  if (!desktop) return std::fprintf(stderr, "%s\n", sentenceOf(desktop.error()).c_str()), 1;
  installPlatform(std::make_shared<OwnPlatform>(**desktop));
  const auto error = drawWidget(argv[1]);
  (*desktop)->finishBackgroundWork();
  installPlatform(nullptr);
  if (error) std::fprintf(stderr, "widget_host: %s\n", sentenceOf(*error).c_str());
  return error ? 1 : 0;
}
