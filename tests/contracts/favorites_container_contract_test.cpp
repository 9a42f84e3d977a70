
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contracts/subject.h"
#include "feeds/background_favorites.h"
#include "shared/mutex.h"
#include "simulation/simulated_platform.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Makes containers and waits for their reads.
class Containers {
 public:
  virtual ~Containers() = default;
  virtual std::shared_ptr<FavoritesContainer> make(std::shared_ptr<RemoteFavoritesPersister> persister) = 0;
  virtual void finishReading() = 0;
};

class SimulatedContainers final : public Containers {
 public:
  std::shared_ptr<FavoritesContainer> make(std::shared_ptr<RemoteFavoritesPersister> persister) override {
    return platform_->makeFavoritesContainer(std::move(persister));
  }
  void finishReading() override { platform_->runUntilIdle(); }

 private:
  std::shared_ptr<simulation::SimulatedPlatform> platform_ = simulation::SimulatedPlatform::make();
};

class DesktopContainers final : public Containers {
 public:
  std::shared_ptr<FavoritesContainer> make(std::shared_ptr<RemoteFavoritesPersister> persister) override {
    return std::make_shared<BackgroundFavoritesContainer>(queue_, std::move(persister));
  }
  void finishReading() override {
    queue_->finish();
    queue_ = std::make_shared<BackgroundQueue>();
  }

 private:
  std::shared_ptr<BackgroundQueue> queue_ = std::make_shared<BackgroundQueue>();
};

/// Gives fixed favourites and counts the reads.
class CountingPersister final : public RemoteFavoritesPersister {
 public:
  explicit CountingPersister(Outcome<Favorites> favorites) : favorites_(std::move(favorites)) {}
  Outcome<Favorites> readFavorites() override {
    ++count;
    return favorites_;
  }
  int count = 0;

 private:
  Outcome<Favorites> favorites_;
};

class FavoritesContainerContract : public testing::TestWithParam<Subject<Containers>> {
 protected:
  std::shared_ptr<Containers> containers_ = GetParam().make();
};

TEST_P(FavoritesContainerContract, EachOperationIsCalledOnceWithAllFavoritesInOrder) {
  const auto persister = std::make_shared<CountingPersister>(
      Favorites{FavoritePlace{"Home"}, FavoriteTransitLine{}, FavoriteRegion{"Alps"}, FavoriteRoute{"Way"}});
  const auto container = containers_->make(persister);
  std::vector<std::string> calls;
  for (const char* name : {"first", "second"}) {
    container->readContents([&calls, name](const Outcome<Favorites>& read) {
      const Favorites& favorites = *read;
      ASSERT_EQ(favorites.size(), 4U);
      calls.push_back(name + std::get<FavoritePlace>(favorites[0]).name +
                      std::get<FavoriteRegion>(favorites[2]).name);
      EXPECT_EQ(std::get<FavoriteTransitLine>(favorites[1]).transitLine, nullptr);
    });
  }
  containers_->finishReading();
  EXPECT_THAT(calls, ElementsAre("firstHomeAlps", "secondHomeAlps"));
  EXPECT_EQ(persister->count, 2);
  containers_->finishReading();
  EXPECT_EQ(calls.size(), 2U);
}

TEST_P(FavoritesContainerContract, GivesTheErrorOfFavoritesThatCannotBeRead) {
  const Error error{"Favorites", 7, {}};
  const auto container = containers_->make(std::make_shared<CountingPersister>(Outcome<Favorites>(error)));
  std::vector<Error> errors;
  container->readContents([&](const Outcome<Favorites>& favorites) { errors.push_back(favorites.error()); });
  containers_->finishReading();
  EXPECT_THAT(errors, ElementsAre(error));
}

TEST_P(FavoritesContainerContract, AnOperationIsNotCalledWithinTheCall) {
  const auto container = containers_->make(nullptr);
  // If the operation ran within the call, this thread would lock the mutex twice.
  Mutex held;
  bool isCalled = false;
  {
    const MutexLock lock(held);
    container->readContents([&](const Outcome<Favorites>& favorites) {
      const MutexLock inner(held);
      EXPECT_THAT(*favorites, IsEmpty());
      isCalled = true;
    });
    EXPECT_FALSE(isCalled);
  }
  containers_->finishReading();
  EXPECT_TRUE(isCalled);
}

TEST_P(FavoritesContainerContract, AnOperationLivesUntilItHasRun) {
  auto container = containers_->make(std::make_shared<CountingPersister>(Favorites{}));
  auto held = std::make_shared<int>(1);
  const std::weak_ptr<int> watched = held;
  bool isCalled = false;
  container->readContents(
      [&isCalled, held = std::move(held)](const Outcome<Favorites>&) { isCalled = *held == 1; });
  // The container may be destroyed before it has read.
  container.reset();
  containers_->finishReading();
  EXPECT_TRUE(isCalled);
  EXPECT_TRUE(watched.expired());
}

INSTANTIATE_TEST_SUITE_P(
    Platforms, FavoritesContainerContract,
    testing::Values(Subject<Containers>{"Simulation", [] { return std::make_shared<SimulatedContainers>(); }},
                    Subject<Containers>{"Desktop", [] { return std::make_shared<DesktopContainers>(); }}),
    nameOfSubject<Containers>);

}  // namespace
}  // namespace linewatch
