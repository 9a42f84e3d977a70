// widget_host [FILE]: shows LineWatch's widget with news of the program's own, in a window or drawn into
// FILE, a PNG, SVG or PDF. The platform of the desktop draws it and gives it a main loop and texts; this
// program gives it lines and favourites.

#include <QApplication>
#include <QEventLoop>
#include <cstdio>
#include <memory>
#include <utility>

#include "desktop/desktop_platform.h"
#include "desktop/drawing/compact_size.h"
#include "desktop/drawing/drawing_screen.h"
#include "desktop/drawing/offscreen_application.h"
#include "desktop/drawing/picture.h"
#include "desktop/window/hosted_widget.h"
#include "desktop/window/row_surface.h"
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
constexpr desktop::PanelHost::Limits kRoom{kCompact.width, kCompact.height, kCompact.height* kMostRows};

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

/// A tap asks for this. This host opens nothing.
void openURL(const URL&, const std::function<void(bool)>& completion) {
  if (completion) completion(false);
}

std::optional<Error> drawWidget(const char* file) {
  desktop::HostedWidget widget(kRoom, openURL, /*wantsExpanded=*/true);
  QEventLoop loop;
  widget.start({.fetchDidChange = [&] {
    // After the widget has expanded, which waits for its turn in the same queue.
    if (!widget.isFetching()) QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
  }});
  widget.setShown(true, kRoom);
  loop.exec();
  const Size size{kRoom.width, widget.preferredHeight(kRoom.expandedHeight)};
  return desktop::savePicture(widget.controller().view(), {.size = size}, file);
}

/// Until the user closes the window.
std::optional<Error> showWidget() {
  desktop::HostedWidget widget(kRoom, openURL, /*wantsExpanded=*/true);
  auto& controller = widget.controller();
  desktop::RowSurface rows(controller.sharedView(), controller.tableView(), [&](std::size_t row) {
    return desktop::wordsOfItem(controller.dataSource()->_itemAtIndexPath({0, row}));
  });
  rows.setWindowTitle("News of my own");
  const auto fit = [&] {
    rows.setFixedSize(QSizeF(kRoom.width, widget.preferredHeight(kRoom.expandedHeight)).toSize());
  };
  fit();
  widget.start({.contentDidChange = fit, .modeDidChange = fit});
  rows.show();
  widget.setShown(true, kRoom);
  QApplication::exec();
  return std::nullopt;
}

}  // namespace

int main(int argc, char** argv) {
  useInstallation(LINEWATCH_INSTALLATION);
  const char* const file = argc > 1 ? argv[1] : nullptr;
  // A picture needs no display.
  const auto application =
      file != nullptr ? desktop::makeOffscreenApplication() : std::make_unique<QApplication>(argc, argv);
  desktop::DesktopSettings settings{.locale = UserLocale::fromEnvironment(processEnvironment)};
  settings.given = desktop::DesktopSettings::GivenFeed{};  // no feeds and no saved state
  settings.screen = std::make_shared<desktop::DrawingScreen>(desktop::ScreenSettings{});
  const auto desktop = desktop::DesktopPlatform::make(std::move(settings));
  if (!desktop) return std::fprintf(stderr, "%s\n", sentenceOf(desktop.error()).c_str()), 1;
  installPlatform(std::make_shared<OwnPlatform>(**desktop));
  const auto error = file != nullptr ? drawWidget(file) : showWidget();
  (*desktop)->finishBackgroundWork();
  installPlatform(nullptr);
  if (error) std::fprintf(stderr, "widget_host: %s\n", sentenceOf(*error).c_str());
  return error ? 1 : 0;
}
