#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>

#include "desktop/window/hosted_widget.h"
#include "desktop/window/panel_host.h"
#include "desktop/window/panel_news.h"
#include "desktop/window/row_surface.h"
#include "desktop/window/window_texts.h"
#include "shared/date.h"
#include "ui/text_style.h"

class QAction;
class QTimer;
class QVariantAnimation;

namespace linewatch {
class HostObserver;
}

namespace linewatch::desktop {

class PanelHeader;

/// What the panel needs of the program around it.
struct PanelServices {
  PanelHost::OpenURL openURL;
  std::function<void()> showFavorites;
  /// Sets the text size of all views and posts kTextSizeDidChangeNotification.
  std::function<void(ui::TextSizeCategory)> setTextSize;
  /// A few words on the age of the data; may be empty.
  std::function<QString()> dataNote;
  /// The feeds' states and the unknown lines after the last fetch; `error` is left out. An empty function:
  /// all is well.
  std::function<FeedNews()> feedNews = {};
  /// Hears what the panel does with the widget; may be null.
  std::shared_ptr<HostObserver> observer = nullptr;
  /// Lets the user save what has happened. An empty function: the menu does not offer that.
  std::function<void()> saveRecording = {};
};

struct PanelOptions {
  /// The most rows of the expanded widget; 0: as many as the screen has room for.
  std::uint64_t maxRows = 0;
  /// How often the panel asks for an update.
  Seconds refresh = kUsualRefresh;
};

/// The panel: a window with a header above a card. At first the card is empty; `loadWidget` puts the transit
/// widget into it. Needs an installed platform, which must stay the same while the window lives. Main thread.
class PanelWindow final : public QWidget {
 public:
  PanelWindow(SharedWindowTexts texts, PanelServices services, PanelOptions options = {});
  ~PanelWindow() override;

  /// Puts the widget into the card, with its saved list and the user's saved choices. To be called once, as
  /// soon as saved state can be read.
  void loadWidget();

  /// Asks the widget for an update, as the user does. This and the others up to `favoritesDidChange` do
  /// nothing while the card is empty.
  void requestUpdate();
  /// To be called when the network is back.
  void connectionDidReturn();
  /// To be called when the machine may have slept or its clock may have been set.
  void checkClock();
  void setMetered(bool isMetered);
  /// To be called after the favourites have been changed.
  void favoritesDidChange();

  /// The rest is for a loaded widget only. Changes the mode as the user asks: at once, or when the widget has
  /// more to show. The choice is saved.
  void setExpanded(bool expanded);
  bool isExpanded() const { return widget_->isExpanded(); }
  RVTransitIncidentsViewController& controller() const { return widget_->controller(); }
  RowSurface& rows() { return *rows_; }

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* makePlaceholder();
  void makeActions();
  QAction* addMenuAction(std::string_view text, const QList<QKeySequence>& shortcuts,
                         std::function<void()> action);
  void makeRows();
  void showPalette();

  /// The widget's limits at the window's width and on its screen.
  PanelHost::Limits limitsFor(ui::TextSizeCategory textSize) const;
  double roomForRows() const;

  void appearOrDisappear();
  void screenDidChange();
  void roomDidChange();
  void showMode();
  void showNote();
  QString noteText() const;
  void showNews();
  FeedNews feedNews() const;
  void fitHeader();
  void setHeaderTextSize(ui::TextSizeCategory category);
  void fitRows(bool animated);
  void applyRowsHeight(double height);
  void changeTextSize(int steps);
  void setTextSize(ui::TextSizeCategory category);

  SharedWindowTexts texts_;
  PanelServices services_;
  PanelOptions options_;

  PanelHeader* header_ = nullptr;
  QVariantAnimation* resizing_ = nullptr;
  /// Runs while the header says how long ago something was.
  QTimer* aging_ = nullptr;
  /// Whether the user has asked for the update that runs.
  bool isUserWaiting_ = false;
  bool isMetered_ = false;
  /// The connection to the screen that the window is on.
  QMetaObject::Connection screenRoom_;

  /// While the card is empty: the placeholder. Afterwards: the widget, and the surface that draws it.
  QWidget* placeholder_ = nullptr;
  std::unique_ptr<HostedWidget> widget_;
  RowSurface* rows_ = nullptr;
};

}  // namespace linewatch::desktop
