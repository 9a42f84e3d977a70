#include "app/screen/panel_presence.h"

#include <map>
#include <string>
#include <utility>

#include "app/show_document.h"
#include "desktop/feed_news.h"
#include "platform/transit_storage_incident.h"
#include "status/status_document.h"
#include "status/status_texts.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

/// Without the age, which would change with every answer.
Dictionary busFeedForm(const FeedState& state) {
  Dictionary form = feedStateForm(state, Date());
  form.erase("age");
  form.emplace("received", state.received ? Value(description(*state.received)) : noValue());
  return form;
}

}  // namespace

PanelPresence::PanelPresence(desktop::DesktopPlatform& platform, const UserLocale& locale, Seconds refresh,
                             desktop::BusPresence& bus)
    : platform_(platform),
      texts_(locale),
      bus_(bus),
      news_(platform,
            [this](const desktop::HeardAnswer& answer, std::function<void(const TransitNews&)> done) {
              describe(answer, std::move(done));
            },
            {.refresh = refresh, .feedStates = [this] { return platform_.feeds().states(); }}),
      listening_(news_.listen([this](const TransitStatus& status) {
        tell({status, platform_.feeds().states()});
      })) {}

void PanelPresence::describe(const desktop::HeardAnswer& answer,
                             std::function<void(const TransitNews&)> done) {
  lines_ = answer.lines;
  queue_.post([&platform = platform_, answer, done = std::move(done)] {
    platform.mainLoop().dispatchAsync(
        [done, news = desktop::feedNews(platform, answer.favorites, answer.lines.get(), answer.error)] {
          done(news);
        });
  });
}

StoredIncidents PanelPresence::incidents(std::span<const std::uint64_t> muids) const {
  std::map<std::uint64_t, SharedIncident> known;
  if (lines_) {
    for (const SharedLineItem& line : *lines_)
      for (const SharedIncident& incident : line->incidents()) known.emplace(incident->muid(), incident);
  }
  StoredIncidents found;
  for (const std::uint64_t muid : muids) {
    if (auto incident = known.extract(muid)) found.push_back(TransitStorageIncident::of(incident.mapped()));
  }
  return found;
}

void PanelPresence::tell(Told news) {
  told_ = std::move(news);
  bus_.setNews(busNews(told_->status, told_->feeds, texts_));
}

desktop::BusNews busNews(const TransitStatus& status, const std::vector<FeedState>& feeds,
                         IcuLocalization& texts) {
  const std::string summary = statusSummary(status, texts);
  const Dictionary document = statusForm(status, summary);
  Array feedForms;
  for (const FeedState& feed : feeds) feedForms.push_back(busFeedForm(feed));
  return {.status = std::string(nameOf(status.state)),
          .summary = summary,
          .incidents = jsonText(document.at("incidents")),
          .feeds = jsonText(Value(std::move(feedForms))),
          .document = jsonText(document)};
}

}  // namespace linewatch::app
