#pragma once

#include <QFont>
#include <QPoint>
#include <QSize>
#include <QWidget>
#include <cstdint>
#include <memory>

#include "desktop/window/window_style.h"
#include "desktop/window/window_texts.h"
#include "ui/artwork_cache.h"

class QLabel;

namespace linewatch::desktop {

/// Where a window is on the screen, and how large it is.
struct WindowPlace {
  /// Of the frame, if the window has one.
  QPoint corner;
  /// Without the frame.
  QSize size;
};

/// Base class of the details and favourites windows: the card's colours, the panel's text size, and Esc or
/// Ctrl+W to close. Needs an installed platform while it lives. Main thread.
class CompanionWindow : public QWidget {
 public:
  ~CompanionWindow() override = default;

  WindowPlace place() const { return {pos(), size()}; }
  void setPlace(const WindowPlace& place);
  /// To be called before a window takes the place of an open one: unless that was the active window, this one
  /// does not take the keyboard's focus when it is shown.
  void takeOverFrom(const CompanionWindow& open);

 protected:
  using Tone = TextTone;

  explicit CompanionWindow(SharedWindowTexts texts);

  const WindowTexts& texts() const { return *texts_; }
  const SharedWindowTexts& sharedTexts() const { return texts_; }
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache() const { return artworkCache_; }
  /// `points`: the size at the default text size.
  QFont font(double points, QFont::Weight weight = QFont::Normal) const;
  /// A label of plain text that wraps.
  QLabel* makeLabel(const QString& text, const QFont& font, Tone tone = Tone::plain) const;
  /// The size step of artworks at the present text size. `usual`: the step at the default text size.
  std::int64_t artworkStep(std::int64_t usual) const;
  /// Shows the window in front of all others.
  void showInFront();

  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void showPalette();

  SharedWindowTexts texts_;
  std::shared_ptr<ArtworkDataSourceCache> artworkCache_;
};

}  // namespace linewatch::desktop
