#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/window/panel_host.h"
#include "desktop/window/panel_updates.h"
#include "desktop/window/row_surface.h"
#include "desktop/window/window_texts.h"
#include "shared/error.h"
#include "ui/text_style.h"

class QAction;
class QLabel;
class QToolButton;
class QVariantAnimation;

namespace linewatch {
class RVResult;
class RVTransitIncidentsViewController;
}  // namespace linewatch

namespace linewatch::desktop {

/// What the panel needs of the program around it.
struct PanelServices {
  PanelHost::OpenURL openURL;
  std::function<void()> showFavorites;
  /// Makes the size that of all text and posts the change.
  std::function<void(ui::TextSizeCategory)> setTextSize;
  /// A few words on the data that was loaded; may be empty.
  std::function<QString()> dataNote;
};

/// The panel: a window with a card that holds the widget below a header. It is the widget's host: it asks for
/// news when the widget does not, and saves the widget's state when the widget cannot. Needs an installed
/// platform; while the window lives it must not change. Main thread.
class PanelWindow final : public QWidget {
 public:
  /// With an empty card. `maxRows` limits the rows of the expanded widget, 0: as many as the screen has room
  /// for.
  PanelWindow(SharedWindowTexts texts, PanelServices services, std::uint64_t maxRows = 0);
  ~PanelWindow() override;

  /// Puts the widget into the card, with what was saved of it and the user's choices: to be called once, as
  /// soon as these can be read. Nothing below may be called before.
  void loadWidget();

  /// Asks the widget for an update, as the user does.
  void requestUpdate() { updates_.userDidAsk(); }
  /// To be called when the network is back.
  void connectionDidReturn() { updates_.connectionDidReturn(); }
  /// To be called after the favourites have been changed.
  void favoritesDidChange() { updates_.favoritesDidChange(); }
  /// Changes the mode as the user asks: at once, or when the widget has more to show.
  void setExpanded(bool expanded);
  bool isExpanded() const;

  RVTransitIncidentsViewController& controller() { return *controller_; }
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
  QWidget* makeHeader();
  QWidget* makePlaceholder();
  void makeActions();
  QAction* addMenuAction(std::string_view text, const QList<QKeySequence>& shortcuts,
                         std::function<void()> action);
  void makeController();
  void showPalette();
  void showHeaderAt(ui::TextSizeCategory textSize);

  /// At the window's width and on its screen.
  PanelHost::Limits limitsFor(ui::TextSizeCategory textSize) const;
  double roomForRows(ui::TextSizeCategory textSize) const;
  double heightForRows() const;
  RowWords wordsOf(std::size_t row) const;

  void appearOrDisappear();
  void screenDidChange();
  void roomDidChange();
  void availabilityDidChange();
  void showOffer();
  void setMode(WidgetDisplayMode mode);
  void contentDidChange();
  void setRowsHeight(double height, bool animated);
  void applyRowsHeight(double height);
  void requestDidChange();
  void reportFailure(const std::optional<Error>& error);
  void showNote();
  void saveState();
  void changeTextSize(int steps);
  void setTextSize(ui::TextSizeCategory category);

  SharedWindowTexts texts_;
  PanelServices services_;
  std::uint64_t maxRows_;
  std::shared_ptr<PanelHost> host_;
  std::shared_ptr<RVTransitIncidentsViewController> controller_;

  QLabel* title_ = nullptr;
  QLabel* note_ = nullptr;
  QToolButton* toggle_ = nullptr;
  QToolButton* menuButton_ = nullptr;
  QWidget* header_ = nullptr;
  /// Null once the widget is in its place.
  QWidget* placeholder_ = nullptr;
  /// Null until then, as the host and the controller.
  RowSurface* rows_ = nullptr;
  QVariantAnimation* resizing_ = nullptr;
  /// To the room on the screen that the window is on.
  QMetaObject::Connection screenRoom_;

  PanelUpdates updates_;
  bool isShown_ = false;
  /// What the user wants, whether the widget has something for it or not.
  bool wantsExpanded_ = false;
  bool offerIsPending_ = false;
  /// What was saved last, and lies in the file.
  std::shared_ptr<const RVResult> savedResult_;
  bool savedExpanded_ = false;
  /// Why the last fetch failed; empty when it did not.
  std::string reportedFailure_;
};

}  // namespace linewatch::desktop
