#include "desktop/window/companion.h"

#include <QUrl>
#include <utility>

#include "companion/companion_session.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "shared/failure.h"
#include "ui/interface_settings.h"

namespace linewatch::desktop {

namespace {

/// "rova://?t=r" is the URL for users without favourites. Either URL may also carry the session.
bool isAboutFavorites(const URL& url) {
  const QUrl parsed(QString::fromStdString(url.absoluteString));
  if (parsed.scheme() != QString::fromUtf8(kCompanionScheme.data(), kCompanionScheme.size())) return false;
  return parsed.host().isEmpty() || parsed.host() == QLatin1String("favorites");
}

}  // namespace

Companion::Companion(SharedWindowTexts texts, QStringList command, DetailsServices details,
                     FavoritesServices favorites)
    : texts_(std::move(texts)),
      command_(std::move(command)),
      detailsServices_(std::move(details)),
      favoritesServices_(std::move(favorites)) {}

void Companion::openURL(const URL& url, const URLHandler& done) {
  const auto error = open(url);
  if (error) logError("%@", {sentenceOf(*error)});
  if (done) done(!error);
}

void Companion::openActivity(const UserActivity& activity, const OpenHandler& done) {
  const auto error = open(activity);
  if (error) logError("%@", {sentenceOf(*error)});
  if (done) done(!error, error);
}

std::optional<Error> Companion::open(const URL& url) {
  if (command_.isSet()) return command_.open(url);
  if (!isAboutFavorites(url)) return failure(url.absoluteString, "", "this address cannot be opened here");
  showFavorites();
  return std::nullopt;
}

std::optional<Error> Companion::open(const UserActivity& activity) {
  if (command_.isSet()) return command_.open(activity);
  const auto bytes = contentBytes(activity);
  if (!bytes) return bytes.error();
  const auto what = decodeOpenedContent(activity.activityType, *bytes, platform().keyedArchiver());
  if (!what) return what.error();
  const auto* const record = std::get_if<std::shared_ptr<const RovaActivity>>(&*what);
  if (record && !(*record)->lineItem()) return failure(activity.activityType, "", "its record has no line");
  if (!details_) details_ = std::make_unique<DetailsWindow>(texts_, detailsServices_);
  details_->present(*what);
  return std::nullopt;
}

void Companion::showFavorites() {
  const ui::TextSizeCategory textSize = platform().interfaceSettings().textSizeCategory();
  const bool isOpen = favorites_ && favorites_->isVisible();
  if (!isOpen || textSize != favoritesTextSize_) {
    const QRect place = isOpen ? favorites_->geometry() : QRect();
    favorites_ = std::make_unique<FavoritesWindow>(texts_, favoritesServices_);
    favoritesTextSize_ = textSize;
    if (isOpen) favorites_->setGeometry(place);
  }
  favorites_->present();
}

void Companion::favoritesDidChange() {
  if (favorites_ && favorites_->isVisible()) favorites_->followChanges();
}

}  // namespace linewatch::desktop
