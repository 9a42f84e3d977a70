#pragma once

#include "desktop/window/companion_window.h"
#include "desktop/window/favorites_pane.h"

class QLabel;

namespace linewatch::desktop {

class ActionButton;

/// The window of the favourites.
class FavoritesWindow final : public CompanionWindow {
 public:
  /// `chooseCity` leads to the set-up when the lines are those of the made-up city or of a removed feed.
  FavoritesWindow(SharedWindowTexts texts, FavoritesServices services);

  /// Shows the favourites, with the search field cleared.
  void present();
  /// What the window shows and where, for a window in another language.
  struct State {
    WindowPlace place;
    FavoritesPane::View view;
  };
  State state() const { return {place(), pane_->view()}; }
  void restore(const State& state);
  /// Shows changes that another program or window has made. The current line and the scroll position stay.
  void followChanges() { pane_->followChanges(); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void showTitle();
  QWidget* makeCityNote();
  void showCityNote();

  FavoritesServices services_;
  QLabel* cityNoteText_;
  ActionButton* chooseCity_;
  /// Visible while the lines are those of the made-up city, or some are of a removed feed.
  QWidget* cityNote_;
  FavoritesPane* pane_;
};

}  // namespace linewatch::desktop
