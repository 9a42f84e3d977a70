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

enum class Destination { setUp, favorites, unknown };

/// "rova://?t=r" leads to the set-up, because there are no favourites yet, and "rova://favorites?…" to the
/// favourites; both with or without a session.
Destination destinationOf(const URL& url) {
  const QUrl parsed(QString::fromStdString(url.absoluteString));
  if (parsed.scheme() != QString::fromUtf8(kCompanionScheme.data(), kCompanionScheme.size()))
    return Destination::unknown;
  if (parsed.host().isEmpty()) return Destination::setUp;
  return parsed.host() == QLatin1String("favorites") ? Destination::favorites : Destination::unknown;
}

/// Decodes the content. A record without a line is an error too.
Outcome<OpenedContent> decodedToShow(const std::string& type, const Bytes& bytes, KeyedArchiver& archiver) {
  auto content = decodeOpenedContent(type, bytes, archiver);
  if (!content) return content;
  const auto* const record = std::get_if<std::shared_ptr<const RovaActivity>>(&*content);
  if (record && !(*record)->lineItem()) return failure(type, "", "its record has no line");
  return content;
}

}  // namespace

Companion::Companion(SharedWindowTexts texts, QStringList command, DetailsServices details,
                     FavoritesServices favorites, std::function<void()> setUp)
    : texts_(std::move(texts)),
      command_(std::move(command)),
      detailsServices_(std::move(details)),
      favoritesServices_(std::move(favorites)),
      setUp_(std::move(setUp)) {
  decoding_.setMaxThreadCount(1);
}

void Companion::openURL(const URL& url, const URLHandler& done) {
  const auto error = open(url);
  if (error) logError("%@", {sentenceOf(*error)});
  if (done) done(!error);
}

void Companion::openActivity(const UserActivity& activity, const OpenHandler& done) {
  const auto answer = [done](const std::optional<Error>& error) {
    if (error) logError("%@", {sentenceOf(*error)});
    if (done) done(!error, error);
  };
  if (command_.isSet()) return answer(command_.open(activity));
  const auto bytes = contentBytes(activity);
  if (!bytes) return answer(bytes.error());
  decoding_.start(
      [this, answer, type = activity.activityType, bytes = *bytes, &archiver = platform().keyedArchiver()] {
        auto content = std::make_shared<const Outcome<OpenedContent>>(decodedToShow(type, bytes, archiver));
        const auto present = [this, answer, content] {
          if (*content) show(**content);
          answer(*content ? std::nullopt : std::optional<Error>(content->error()));
        };
        QMetaObject::invokeMethod(&receiver_, present, Qt::QueuedConnection);
      });
}

std::optional<Error> Companion::open(const URL& url) {
  if (command_.isSet()) return command_.open(url);
  const Destination destination = destinationOf(url);
  if (destination == Destination::unknown)
    return failure(url.absoluteString, "", "this address cannot be opened here");
  if (destination == Destination::setUp && setUp_) {
    setUp_();
  } else {
    showFavorites();
  }
  return std::nullopt;
}

DetailsWindow& Companion::details() {
  if (!details_) details_ = std::make_unique<DetailsWindow>(texts_, detailsServices_);
  return *details_;
}

void Companion::show(const OpenedContent& content) {
  details().present(content);
  markExample();
}

bool Companion::showIncidents(const StoredIncidents& incidents) {
  if (command_.isSet()) return false;
  show(incidents);
  return true;
}

/// Says in the title of the details that the city is made up.
void Companion::markExample() {
  if (favoritesServices_.isExample && favoritesServices_.isExample())
    details_->setWindowTitle((*texts_)("ExampleOf", {details_->windowTitle().toStdString()}));
}

void Companion::makeFavorites() {
  const ui::TextSizeCategory textSize = platform().interfaceSettings().textSizeCategory();
  const bool isOpen = favorites_ && favorites_->isVisible();
  if (isOpen && textSize == favoritesTextSize_) return;
  auto window = std::make_unique<FavoritesWindow>(texts_, favoritesServices_);
  if (isOpen) window->takeOverFrom(*favorites_);
  favorites_ = std::move(window);
  favoritesTextSize_ = textSize;
}

void Companion::showFavorites() {
  makeFavorites();
  favorites_->present();
}

Companion::OpenWindows Companion::openWindows() const {
  OpenWindows windows;
  if (details_ && details_->isVisible()) windows.details = details_->state();
  if (favorites_ && favorites_->isVisible()) windows.favorites = favorites_->state();
  return windows;
}

void Companion::reopen(const OpenWindows& windows) {
  if (windows.details) {
    details().restore(*windows.details);
    markExample();
  }
  if (!windows.favorites) return;
  makeFavorites();
  favorites_->restore(*windows.favorites);
}

void Companion::textSizeDidChange() {
  OpenWindows windows = openWindows();
  if (windows.details) {
    auto window = std::make_unique<DetailsWindow>(texts_, detailsServices_);
    window->takeOverFrom(*details_);
    windows.details->place = window->place();
    details_ = std::move(window);
  }
  if (windows.favorites) {
    makeFavorites();
    windows.favorites->place = favorites_->place();
  }
  reopen(windows);
}

void Companion::favoritesDidChange() {
  if (favorites_ && favorites_->isVisible()) favorites_->followChanges();
}

}  // namespace linewatch::desktop
