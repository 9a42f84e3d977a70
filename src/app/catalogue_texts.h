#pragma once

#include <string>
#include <vector>

#include "app/rider_texts.h"
#include "feeds/catalogue/catalogue_hit.h"
#include "feeds/catalogue/kept_catalogue.h"
#include "shared/date.h"
#include "shared/value.h"

namespace linewatch::app {

/// The command that adds the hit.
std::string addingCommand(const CatalogueHit& hit);

/// The description of a hit for a rider, a line each, the provider first. The country's name is in
/// `language`.
std::vector<std::string> hitLines(const RiderTexts& texts, const CatalogueHit& hit,
                                  const std::string& language);

/// Says that the catalogue has no timetable for the hit, with the command that adds it and another one.
std::string noTimetableText(const RiderTexts& texts, const CatalogueHit& hit);

/// Why a search has no hits, and the command that adds a feed at pasted addresses. It has the address of the
/// first timetable that has the place in its texts.
std::string noHitText(const RiderTexts& texts, const std::string& query, const CatalogueMatches& matches);

/// How old a catalogue is that could not be renewed, and why; empty when it is up to date.
std::string keptNote(const RiderTexts& texts, const KeptCatalogue::Reading& reading, Date now);

/// The search and what it found, for JSON.
Dictionary matchesForm(const std::string& query, const CatalogueMatches& matches,
                       const KeptCatalogue::Reading& reading);

}  // namespace linewatch::app
