#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QLabel>
#include <QToolButton>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/drawing/drawn_platform.h"
#include "desktop/window/panel_window.h"
#include "desktop/window/window_events.h"
#include "widget/transit_incidents_view_controller.h"

namespace linewatch::desktop {

/// A panel in a simulated city, drawn for real. Time passes only in `advance`.
class PanelTest : public testing::Test {
 protected:
  static simulation::World cityWithAStrike() {
    simulation::World world;
    world.incidents["strike"] = {.muid = 11, .title = "Strike", .secondaryText = "Few trains"};
    world.incidents["works"] = {.muid = 12, .title = "Works", .secondaryText = "Longer walks"};
    world.lines["A"] = {.muid = 1, .name = "A", .incidents = {"strike"}};
    world.lines["B"] = {.muid = 2, .name = "B", .incidents = {"works"}};
    world.lines["C"] = {.muid = 3, .name = "C"};
    world.favorites = {{.line = "A"}, {.line = "B"}, {.line = "C"}};
    return world;
  }
  static simulation::World cityOf(std::size_t lines) {
    simulation::World world;
    for (std::size_t i = 0; i < lines; ++i) {
      const std::string name = "L" + std::to_string(i);
      world.incidents[name] = {.muid = 100 + i, .title = "Incident on " + name};
      world.lines[name] = {.muid = 1 + i, .name = name, .incidents = {name}};
      world.favorites.push_back({.line = name});
    }
    return world;
  }

  ~PanelTest() override {
    panel_ = nullptr;
    installPlatform(nullptr);
  }

  void start(simulation::World world = cityWithAStrike(), std::uint64_t maxRows = 4) {
    needApplication();
    platform_ = std::make_shared<DrawnPlatform>(std::move(world));
    installPlatform(platform_);
    maxRows_ = maxRows;
    makePanel();
  }
  void startShown(simulation::World world = cityWithAStrike(), std::uint64_t maxRows = 4) {
    start(std::move(world), maxRows);
    show();
  }
  void makePanel() {
    panel_ = nullptr;
    const auto texts = std::make_shared<const WindowTexts>(*UserLocale::parse("en"));
    panel_ = std::make_unique<PanelWindow>(texts, services(), PanelOptions{.maxRows = maxRows_});
    panel_->loadWidget();
  }
  /// Shows the panel, and waits until its first fetch has ended.
  void show() {
    panel_->show();
    advance(1);
  }
  void advance(double seconds) {
    platform_->simulated().advance(seconds);
    settle();
  }
  void change(const std::function<void(simulation::World&)>& change) {
    platform_->simulated().changeWorld(change);
  }
  std::size_t count(std::string_view event) { return platform_->simulated().transcript().countOf(event); }
  std::string note() { return panel_->findChild<QLabel*>("note")->text().toStdString(); }
  /// The news in the header; empty without any.
  std::string news() {
    const auto* const label = panel_->findChild<QLabel*>("news");
    return label->isVisible() ? label->text().toStdString() : "";
  }
  QAbstractButton& tryAgain() { return *panel_->findChild<QAbstractButton*>("tryAgain"); }
  QToolButton& toggle() { return *panel_->findChildren<QToolButton*>().front(); }
  void trigger(const QKeySequence& keys) {
    for (QAction* action : panel_->actions()) {
      if (action->shortcuts().contains(keys)) action->trigger();
    }
    settle();
  }
  QRect boundsOf(const QWidget& part) { return {part.mapTo(panel_.get(), QPoint()), part.size()}; }
  RowSurface& rows() { return panel_->rows(); }
  QPointF middleOf(std::size_t row) { return QRectF(rows().rectOf(row)).center(); }

  std::shared_ptr<DrawnPlatform> platform_;
  std::unique_ptr<PanelWindow> panel_;
  std::uint64_t maxRows_ = 4;
  std::vector<std::string> openedURLs_;
  int favoritesShown_ = 0;
  /// The states of the feeds after each fetch.
  FeedNews feedNews_;

 private:
  PanelServices services() {
    PanelServices services;
    services.openURL = [this](const URL& url, const std::function<void(bool)>& completion) {
      openedURLs_.push_back(url.absoluteString);
      completion(true);
    };
    services.showFavorites = [this] { ++favoritesShown_; };
    services.setTextSize = [this](ui::TextSizeCategory category) {
      change([&](simulation::World& world) { world.textSize = category; });
    };
    services.dataNote = [] { return PanelHeader::Note{QStringLiteral("A note")}; };
    services.feedNews = [this] { return feedNews_; };
    return services;
  }
};

}  // namespace linewatch::desktop
