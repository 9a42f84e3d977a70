#pragma once

#include <QList>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>

#include "desktop/window/hosted_widget.h"
#include "desktop/window/panel_frame.h"
#include "desktop/window/panel_header.h"
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

/// Functions of the program that the panel calls.
struct PanelServices {
  PanelHost::OpenURL openURL;
  std::function<void()> showFavorites;
  /// Shows the feeds. An empty function: the menu does not offer that.
  std::function<void()> showFeeds = {};
  std::function<void()> showSettings = {};
  /// Leads to the choice of a city. An empty function: the panel does not offer that.
  std::function<void()> addCity = {};
  /// Sets the text size of all views, saves it and posts kTextSizeDidChangeNotification.
  std::function<void(ui::TextSizeCategory)> setTextSize;
  /// A short note about the age of the data; may be empty.
  std::function<PanelHeader::Note()> dataNote;
  /// Gives the states of the feeds and the unknown lines after the last fetch, without `error`. Without this
  /// function the header never reports a feed.
  std::function<FeedNews()> feedNews = {};
  /// Hears what the panel does with the widget; may be null.
  std::shared_ptr<HostObserver> observer = nullptr;
  /// Called when the window has been shown, hidden, minimized or restored, and when the widget is loaded.
  std::function<void()> visibilityDidChange = {};
  /// Lets the user save what has happened. An empty function: the menu does not offer that.
  std::function<void()> saveRecording = {};
};

struct PanelOptions {
  /// The largest number of rows of the expanded widget; 0: kMostRows.
  std::uint64_t maxRows = 0;
  /// The time between two updates.
  Seconds refresh = kUsualRefresh;
};

/// The most rows that the expanded panel shows. They scroll if the screen is too low for them.
inline constexpr std::uint64_t kMostRows = 12;

/// The panel's window: a header, and a card with the widget's rows. The card is empty until `loadWidget`.
/// Needs an installed platform, the same one for the window's whole life. Main thread.
class PanelWindow final : public QWidget {
 public:
  PanelWindow(SharedWindowTexts texts, PanelServices services, PanelOptions options = {});
  ~PanelWindow() override;

  /// Shows this instead of the rows until `loadWidget`, e.g. at the first start, or instead of an earlier
  /// card.
  void showCard(QWidget* card);
  bool showsCard() const { return card_ != nullptr; }
  /// Makes the widget, with its saved list and the user's saved choices. To be called once, as soon as the
  /// saved state can be read.
  void loadWidget();

  /// Shows the panel with or without a title bar. Without one its header moves it. The window may be visible.
  void setFrameless(bool isFrameless);
  /// Whether the lines are those of the made-up city, which the title says, and the menu leads out of.
  void setShowsExample(bool isExample);
  /// Whether other windows never cover the panel. On Wayland the desktop decides that, not the program.
  void setStaysOnTop(bool staysOnTop);
  /// Moves the panel before it is shown. The corner is that of its title bar.
  void setCorner(const QPoint& corner);
  /// Whether the panel takes its new height at once instead of growing to it.
  void setMotionReduced(bool isReduced) { isMotionReduced_ = isReduced; }

  /// The user asks for an update. This function and the next four do nothing before `loadWidget`.
  void requestUpdate();
  /// To be called when the network has returned.
  void connectionDidReturn();
  /// To be called when the machine may have slept, or when its clock may have been set.
  void checkClock();
  void setMetered(bool isMetered);
  /// The time between two updates.
  void setRefresh(Seconds refresh);
  /// To be called after the favourites have changed.
  void favoritesDidChange();

  void setTextSize(ui::TextSizeCategory category);

  /// The following functions need a loaded widget. The user expands or collapses it: at once, or as soon as
  /// it has more to show. The choice is saved.
  void setExpanded(bool expanded);
  bool isExpanded() const { return widget_->isExpanded(); }
  RVTransitIncidentsViewController& controller() const { return widget_->controller(); }
  RowSurface& rows() { return *rows_; }

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  QWidget* makePlaceholder();
  void makeActions();
  QAction* addMenuAction(std::string_view text, const QList<QKeySequence>& shortcuts,
                         std::function<void()> action);
  void makeRows();
  void showPalette();

  /// The widget's largest size.
  PanelHost::Limits limitsFor(ui::TextSizeCategory textSize, int cardWidth) const;
  PanelHost::Limits limitsNow() const;
  int cardWidth() const;
  /// The width that the user has chosen, grown with the text but not wider than the screen.
  int cardWidthAt(ui::TextSizeCategory textSize) const;
  int mostCardWidthAt(ui::TextSizeCategory textSize) const;
  double roomForRows() const;
  void restorePlace();
  void savePlace();
  void correctCorner();
  void fitFrame();
  void fitWidth(ui::TextSizeCategory textSize);
  void keepOnScreen();

  void appearOrDisappear();
  void screenDidChange();
  void roomDidChange();
  void showMode();
  void showNote();
  PanelHeader::Note note() const;
  void showNews();
  FeedNews feedNews() const;
  void announceNews();
  void announceNow();
  void fitHeader();
  void setHeaderTextSize(ui::TextSizeCategory category);
  void fitRows(bool animated);
  void applyRowsHeight(double height);
  void fitCard();
  void changeTextSize(int steps);

  SharedWindowTexts texts_;
  PanelServices services_;
  PanelOptions options_;

  /// The menu's entry that leads to the choice of a city; null if there is none.
  QAction* addCity_ = nullptr;
  PanelFrame frame_{*this};
  PanelHeader* header_ = nullptr;
  QWidget* announcer_ = nullptr;
  QVariantAnimation* resizing_ = nullptr;
  /// Updates the ages in the header; runs only while there are any.
  QTimer* aging_ = nullptr;
  /// Saves the panel's place and width once the user has stopped moving and resizing it.
  QTimer* saving_ = nullptr;
  /// Set until it is known whether the window stands there.
  std::optional<QPoint> wantedCorner_;
  /// The card's width at the default text size, as the user has chosen it.
  double designWidth_;
  /// The widths that the program has set lately. Another width is the user's choice.
  std::set<int> fittedWidths_;
  QTimer* settling_ = nullptr;
  /// Whether the running update was started by the user.
  bool isUserWaiting_ = false;
  bool isMetered_ = false;
  bool isMotionReduced_ = false;
  bool isAnnouncing_ = false;
  /// The signal connection to the window's screen.
  QMetaObject::Connection screenRoom_;

  /// Exists until the widget is loaded; then the widget and its surface replace it.
  QWidget* placeholder_ = nullptr;
  /// The placeholder if it is a card from `showCard`; else null.
  QWidget* card_ = nullptr;
  /// The menu's entries that a card needs, too: text sizes and settings.
  QList<QAction*> settingActions_;
  std::unique_ptr<HostedWidget> widget_;
  RowSurface* rows_ = nullptr;
};

}  // namespace linewatch::desktop
