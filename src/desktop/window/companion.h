#pragma once

#include <QStringList>
#include <functional>
#include <memory>

#include "desktop/window/companion_command.h"
#include "desktop/window/details_window.h"
#include "desktop/window/favorites_window.h"
#include "desktop/window/window_texts.h"
#include "platform/system_controller.h"
#include "platform/url.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

/// What stands for the companion application: the program's own windows, or a command of the user's. Needs an
/// installed platform. Main thread.
class Companion {
 public:
  using URLHandler = std::function<void(bool success)>;

  /// `command`: the words of the user's, as CompanionCommand takes them.
  Companion(SharedWindowTexts texts, QStringList command, DetailsServices details,
            FavoritesServices favorites);

  /// Opens a URL of the companion application: both the one for those who have no favourites yet and that of
  /// the favourites lead to these. Fails for any other, unless there is a command.
  void openURL(const URL& url, const URLHandler& done);
  void openActivity(const UserActivity& activity, const OpenHandler& done);
  /// Always in a window of the program's own.
  void showFavorites();
  /// To be called after favourites or feeds have been changed elsewhere.
  void favoritesDidChange();

 private:
  std::optional<Error> open(const UserActivity& activity);
  std::optional<Error> open(const URL& url);

  SharedWindowTexts texts_;
  CompanionCommand command_;
  DetailsServices detailsServices_;
  FavoritesServices favoritesServices_;
  /// Made when they are first needed, and again for another text size.
  std::unique_ptr<DetailsWindow> details_;
  std::unique_ptr<FavoritesWindow> favorites_;
  ui::TextSizeCategory favoritesTextSize_ = ui::kDefaultTextSizeCategory;
};

}  // namespace linewatch::desktop
