#include "app/screen/render_command.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <algorithm>

#include "app/screen/still_host.h"
#include "desktop/drawing/compact_size.h"
#include "desktop/drawing/drawing_screen.h"
#include "desktop/drawing/offscreen_application.h"
#include "desktop/drawing/picture.h"
#include "widget/transit_incidents_view_controller.h"

namespace linewatch::app {

namespace {

desktop::ScreenSettings settingsOfPicture(const RenderCommand& command, const UserLocale& locale) {
  desktop::ScreenSettings settings;
  settings.category = command.textSize;
  settings.direction =
      locale.isRightToLeft() ? ui::LayoutDirection::rightToLeft : ui::LayoutDirection::leftToRight;
  settings.scale = command.scale;
  settings.language = locale.language();
  return settings;
}

/// Shows the widget and waits until its first fetch has ended.
void showUntilFetched(RVTransitIncidentsViewController& controller) {
  QEventLoop loop;
  controller.viewWillAppear(false);
  // This update joins the fetch that `viewWillAppear` has started.
  controller.widgetPerformUpdateWithCompletionHandler([&](WidgetUpdateResult) { loop.quit(); });
  loop.exec();
}

/// Asks the data source, because the widget announces its preferred size only when its list changes. Without
/// favourites it never does.
Size sizeOf(const RVTransitIncidentsViewController& controller, const Size& maximum) {
  const auto& dataSource = *controller.dataSource();
  return dataSource.preferredContentSizeForExpanded(dataSource.isExpanded(), maximum);
}

std::optional<Error> failureOf(Session& session, const RVTransitIncidentsViewController& controller) {
  const auto& result = controller.transitLineItemResult();
  return result && result->error() ? result->error() : session.unusedFeedError();
}

Report draw(RVTransitIncidentsViewController& controller, const Size& size, const RenderCommand& command) {
  const desktop::PictureStyle style{
      .size = size,
      .scale = command.scale,
      .appearance = command.dark ? ui::Appearance::dark : ui::Appearance::light};
  const auto error = desktop::savePicture(controller.view(), style, command.output);
  return error ? refused(*error) : Report();
}

}  // namespace

Report render(const CommonOptions& options, const RenderCommand& command) {
  const auto locale = localeOf(options);
  const auto application = desktop::makeOffscreenApplication();
  const auto screen = std::make_shared<desktop::DrawingScreen>(settingsOfPicture(command, locale));
  auto session =
      Session::openWithFeeds(options, [&](desktop::DesktopSettings& settings) { settings.screen = screen; });
  if (!session) return refused(session.error());
  const WidgetDisplayMode mode = command.expanded ? WidgetDisplayMode::expanded : WidgetDisplayMode::compact;
  const Size compact{command.width, desktop::compactHeightAt(command.textSize)};
  const auto host = std::make_shared<StillHost>(
      compact, desktop::tallestPicture(command.width, command.scale), mode, options.maxRows);
  const auto controller = RVTransitIncidentsViewController::make(host, compact);
  showUntilFetched(*controller);
  // The widget can be expanded only after its list is known.
  const Size maximum = host->maximumSizeForDisplayMode(mode);
  controller->widgetActiveDisplayModeDidChange(mode, maximum);
  const Report drawn = draw(*controller, sizeOf(*controller, maximum), command);
  const auto failure = failureOf(**session, *controller);
  return drawn.status == 0 && failure ? notLoaded(*failure) : drawn;
}

}  // namespace linewatch::app
