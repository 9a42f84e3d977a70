#include "desktop/setup/lines_page.h"

#include <QBoxLayout>
#include <QLabel>
#include <utility>

#include "desktop/window/action_button.h"
#include "desktop/window/favorites_pane.h"
#include "desktop/window/window_style.h"
#include "shared/failure.h"

namespace linewatch::desktop {

LinesPage::LinesPage(SharedWindowTexts texts, const SetupServices& services,
                     std::shared_ptr<ArtworkDataSourceCache> cache, const std::optional<FeedFindings>& added,
                     std::function<void()> done)
    : texts_(std::move(texts)),
      pane_(new FavoritesPane(texts_, services.favorites, std::move(cache), added ? added->feed.name : "")),
      count_(plainLabel({}, windowFont(kWindowTextSize), TextTone::faint)),
      done_(new ActionButton((*texts_)("Done"), ActionButton::Emphasis::primary)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, kWindowMargin);
  layout->setSpacing(kWindowMargin / 2);
  auto* const top = new QVBoxLayout;
  top->setContentsMargins(kWindowMargin, 0, kWindowMargin, 0);
  const QString intro = added ? findings(*added) : (*texts_)("ChooseLinesHint");
  top->addWidget(plainLabel(intro, windowFont(kWindowTextSize)));
  layout->addLayout(top);
  layout->addWidget(pane_, 1);
  auto* const bottom = new QHBoxLayout;
  bottom->setContentsMargins(kWindowMargin, 0, kWindowMargin - kButtonRing, 0);
  bottom->addWidget(count_, 1);
  bottom->addWidget(done_);
  layout->addLayout(bottom);
  pane_->setChangeHandler([this] { showCount(); });
  connect(done_, &QAbstractButton::clicked, this, std::move(done));
}

QString LinesPage::findings(const FeedFindings& added) const {
  QString found =
      (*texts_)("LinesAndAlerts", {std::uint64_t{added.lineCount}, std::uint64_t{added.alertCount}});
  if (!added.agencyFailure) return found;
  return found + QLatin1Char(' ') + (*texts_)("CopyServes", {texts_->reason(*added.agencyFailure)});
}

void LinesPage::present() {
  pane_->present();
  pane_->setFocus(Qt::OtherFocusReason);
}

void LinesPage::followChanges() { pane_->followChanges(); }

bool LinesPage::clearSearch() { return pane_->clearSearch(); }

void LinesPage::showCount() {
  const std::uint64_t count = pane_->favoriteCount();
  const bool isFirstOfCity = count == 0 && pane_->hasOtherFavorites();
  count_->setText(isFirstOfCity ? (*texts_)("NoLineOfFeedChosen") : (*texts_)("LinesChosen", {count}));
}

}  // namespace linewatch::desktop
