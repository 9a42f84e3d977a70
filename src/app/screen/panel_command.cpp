#include "app/screen/panel_command.h"

#include <QApplication>

#include "desktop/drawing/drawing_screen.h"
#include "desktop/window/panel_window.h"
#include "platform/ui/notification_center.h"

namespace linewatch::app {

Report panel(const CommonOptions& options, const PanelCommand&) {
  const auto locale = localeOf(options);
  if (!locale) return refused(locale.error());
  static char name[] = "linewatch";
  static char* arguments[] = {name, nullptr};
  int count = 1;
  QApplication application(count, arguments);
  desktop::ScreenSettings settings;
  settings.scale = application.devicePixelRatio();
  const auto screen = std::make_shared<desktop::DrawingScreen>(settings);
  auto session =
      Session::open(options, [&](desktop::DesktopSettings& adjusted) { adjusted.screen = screen; });
  if (!session) return refused(session.error());
  const auto texts = std::make_shared<const desktop::WindowTexts>(*locale);
  desktop::PanelServices services;
  services.openURL = [](const URL&, const std::function<void(bool)>& done) {
    if (done) done(false);
  };
  services.showFavorites = [] {};
  services.setTextSize = [&](ui::TextSizeCategory category) {
    screen->settings().category = category;
    platform().notificationCenter().post(ui::kTextSizeDidChangeNotification);
  };
  services.dataNote = [&] { return QString(); };
  desktop::PanelWindow window(texts, std::move(services), options.maxRows);
  window.show();
  QApplication::exec();
  return {};
}

}  // namespace linewatch::app
