#pragma once

#include <QFont>
#include <QWidget>
#include <cstdint>
#include <memory>

#include "desktop/window/window_texts.h"
#include "ui/artwork_cache.h"

class QLabel;

namespace linewatch::desktop {

/// What the windows beside the panel have in common: the card's colours, the panel's text size, and Esc or
/// Ctrl+W to close. Needs an installed platform while it lives. Main thread.
class CompanionWindow : public QWidget {
 public:
  ~CompanionWindow() override = default;

 protected:
  enum class Tone { plain, faint, alarming };

  explicit CompanionWindow(SharedWindowTexts texts);

  const WindowTexts& texts() const { return *texts_; }
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache() const { return artworkCache_; }
  /// `points`: at the usual text size.
  QFont font(double points, QFont::Weight weight = QFont::Normal) const;
  /// A text that wraps, shown as it is whatever is in it.
  QLabel* makeLabel(const QString& text, const QFont& font, Tone tone = Tone::plain) const;
  /// The size step of artworks beside text, from the step that suits the usual text size.
  std::int64_t artworkStep(std::int64_t usual) const;
  /// Shows the window, in front of others.
  void bringUp();

  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void showPalette();

  SharedWindowTexts texts_;
  std::shared_ptr<ArtworkDataSourceCache> artworkCache_;
};

}  // namespace linewatch::desktop
