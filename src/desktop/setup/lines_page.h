#pragma once

#include <QWidget>
#include <functional>
#include <optional>

#include "desktop/setup/setup_services.h"
#include "desktop/window/window_texts.h"
#include "feeds/catalogue/feed_findings.h"
#include "ui/artwork_cache.h"

class QLabel;

namespace linewatch::desktop {

class ActionButton;
class FavoritesPane;

/// The lines of a new feed, or of all feeds, to choose the favourites from. Main thread.
class LinesPage final : public QWidget {
 public:
  /// `added`: the new feed; absent for all feeds.
  LinesPage(SharedWindowTexts texts, const SetupServices& services,
            std::shared_ptr<ArtworkDataSourceCache> cache, const std::optional<FeedFindings>& added,
            std::function<void()> done);

  void present();
  void followChanges();
  /// False when there was no search.
  bool clearSearch();

 private:
  QString findings(const FeedFindings& added) const;
  void showCount();

  SharedWindowTexts texts_;
  FavoritesPane* pane_;
  QLabel* count_;
  ActionButton* done_;
};

}  // namespace linewatch::desktop
