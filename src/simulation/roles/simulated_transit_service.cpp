#include "simulation/roles/simulated_transit_service.h"

#include <utility>

namespace linewatch::simulation {

namespace {

using Identifiers = std::vector<MapItemIdentifier>;

Array muidsOf(const Identifiers& identifiers) {
  Array muids;
  for (const MapItemIdentifier& identifier : identifiers) muids.emplace_back(identifier.muid);
  return muids;
}

void answer(Backstage& backstage, const Identifiers& identifiers,
            const TransitLinesTicket::Handler& handler) {
  const auto share = [](TransitLineItems items) {
    return std::make_shared<const TransitLineItems>(std::move(items));
  };
  const WorldService& service = backstage.world.service;
  switch (service.answer) {
    case WorldService::Answer::lines:
      return handler(share(service.lines ? backstage.records()->linesNamed(*service.lines)
                                         : backstage.records()->linesFor(identifiers)),
                     std::nullopt);
    case WorldService::Answer::all:
      return handler(share(backstage.records()->allLines()), std::nullopt);
    case WorldService::Answer::error:
      return handler(nullptr, service.error);
    case WorldService::Answer::nothing:
      return handler(nullptr, std::nullopt);
  }
}

class Ticket final : public TransitLinesTicket {
 public:
  Ticket(SharedBackstage backstage, Identifiers identifiers)
      : backstage_(std::move(backstage)), identifiers_(std::move(identifiers)) {}

  void submit(Handler handler) override {
    if (std::exchange(submitted_, true)) {
      backstage_->transcript->record("log",
                                     {{"level", "error"}, {"text", "A lines ticket was submitted again."}});
      return;
    }
    backstage_->transcript->record("lookup", {{"identifiers", muidsOf(identifiers_)}});
    // The waiting look-ups are the backstage's own, and must not own it.
    auto answerNow = [backstage = std::weak_ptr(backstage_), identifiers = identifiers_,
                      handler = std::move(handler)] {
      if (const auto present = backstage.lock()) answer(*present, identifiers, handler);
    };
    if (const auto delay = backstage_->world.service.delay) {
      backstage_->mainLoop.runAfter(*delay, std::move(answerNow));
    } else {
      backstage_->waitingLookups.emplace_back(std::move(answerNow));
    }
  }

 private:
  SharedBackstage backstage_;
  Identifiers identifiers_;
  bool submitted_ = false;
};

}  // namespace

std::shared_ptr<TransitLinesTicket> SimulatedTransitService::ticketForTransitLines(
    std::vector<MapItemIdentifier> identifiers) {
  return std::make_shared<Ticket>(backstage_, std::move(identifiers));
}

}  // namespace linewatch::simulation
