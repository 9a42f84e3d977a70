#include "feeds/catalogue/known_places.h"

#include <algorithm>
#include <cstddef>

#include "feeds/catalogue/search_words.h"

namespace linewatch {

namespace {

struct Row {
  const char* country;
  double latitude;
  double longitude;
  /// With "|" between them.
  std::string_view names;
};

// Cities with other names abroad, and the largest ones of countries whose feeds cover the whole country.
constexpr Row kRows[] = {
    {"AE", 25.2, 55.3, "Dubai|دبي"},
    {"AT", 48.2, 16.4, "Wien|Vienna|Vienne|Viena|Wenen|Vídeň|Wiedeń"},
    {"AT", 47.1, 15.4, "Graz"},
    {"AT", 47.8, 13.0, "Salzburg|Salisburgo"},
    {"AU", -33.9, 151.2, "Sydney|悉尼"},
    {"AU", -37.8, 145.0, "Melbourne"},
    {"BE", 50.8, 4.4, "Bruxelles|Brussel|Brussels|Brüssel|Bruselas"},
    {"BE", 51.2, 4.4, "Antwerpen|Antwerp|Anvers"},
    {"BE", 51.1, 3.7, "Gent|Ghent|Gand"},
    {"BR", -23.6, -46.6, "São Paulo"},
    {"BR", -22.9, -43.2, "Rio de Janeiro"},
    {"CA", 43.7, -79.4, "Toronto"},
    {"CA", 45.5, -73.6, "Montréal"},
    {"CH", 47.4, 8.5, "Zürich|Zurigo"},
    {"CH", 46.2, 6.1, "Genève|Geneva|Genf|Ginevra"},
    {"CH", 47.6, 7.6, "Basel|Bâle|Basilea"},
    {"CH", 46.9, 7.4, "Bern|Berne|Berna"},
    {"CH", 46.5, 6.6, "Lausanne|Losanna"},
    {"CH", 47.1, 8.3, "Luzern|Lucerne|Lucerna"},
    {"CH", 46.0, 9.0, "Lugano"},
    {"CN", 39.9, 116.4, "Beijing|Peking|北京"},
    {"CN", 31.2, 121.5, "Shanghai|上海"},
    {"CZ", 50.1, 14.4, "Praha|Prague|Prag|Praga|Прага"},
    {"CZ", 49.2, 16.6, "Brno|Brünn"},
    {"DE", 52.5, 13.4, "Berlin|Berlino"},
    {"DE", 53.6, 10.0, "Hamburg|Hambourg"},
    {"DE", 48.1, 11.6, "München|Munich|Monaco di Baviera"},
    {"DE", 50.9, 7.0, "Köln|Cologne|Colonia"},
    {"DE", 50.1, 8.7, "Frankfurt|Francfort|Francoforte"},
    {"DE", 48.8, 9.2, "Stuttgart"},
    {"DE", 51.2, 6.8, "Düsseldorf"},
    {"DE", 51.3, 12.4, "Leipzig"},
    {"DE", 51.1, 13.7, "Dresden|Dresde"},
    {"DE", 52.4, 9.7, "Hannover|Hanover|Hanovre"},
    {"DE", 49.5, 11.1, "Nürnberg|Nuremberg|Norimberga"},
    {"DE", 53.1, 8.8, "Bremen|Brême"},
    {"DE", 48.0, 7.8, "Freiburg|Fribourg-en-Brisgau"},
    {"DK", 55.7, 12.6, "København|Copenhagen|Kopenhagen|Copenhague"},
    {"DK", 56.2, 10.2, "Aarhus|Århus"},
    {"EG", 30.0, 31.2, "Cairo|القاهرة|Kairo|Le Caire"},
    {"ES", 40.4, -3.7, "Madrid"},
    {"ES", 41.4, 2.2, "Barcelona|Barcelone"},
    {"ES", 37.4, -6.0, "Sevilla|Seville|Séville"},
    {"ES", 39.5, -0.4, "València|Valencia"},
    {"FI", 60.2, 24.9, "Helsinki|Helsingfors"},
    {"FI", 60.5, 22.3, "Turku|Åbo"},
    {"FR", 48.9, 2.3, "Paris|Parigi|París"},
    {"FR", 45.8, 4.8, "Lyon|Lione"},
    {"FR", 43.3, 5.4, "Marseille|Marsiglia|Marsella"},
    {"FR", 48.6, 7.8, "Strasbourg|Straßburg"},
    {"FR", 43.7, 7.3, "Nice|Nizza|Niza"},
    {"GB", 51.5, -0.1, "London|Londres|Londra|Londen"},
    {"GB", 55.9, -3.2, "Edinburgh|Édimbourg"},
    {"GR", 38.0, 23.7, "Αθήνα|Athens|Athen|Athènes|Atene"},
    {"GR", 40.6, 22.9, "Θεσσαλονίκη|Thessaloniki"},
    {"HU", 47.5, 19.0, "Budapest"},
    {"IE", 53.3, -6.3, "Dublin|Dublino"},
    {"IL", 32.1, 34.8, "תל אביב|Tel Aviv"},
    {"IL", 31.8, 35.2, "ירושלים|Jerusalem|القدس"},
    {"IN", 28.6, 77.2, "Delhi|दिल्ली|Neu-Delhi"},
    {"IN", 19.1, 72.9, "Mumbai|मुंबई|Bombay"},
    {"IT", 41.9, 12.5, "Roma|Rome|Rom"},
    {"IT", 45.5, 9.2, "Milano|Milan|Mailand"},
    {"IT", 45.1, 7.7, "Torino|Turin"},
    {"IT", 43.8, 11.3, "Firenze|Florence|Florenz"},
    {"IT", 40.9, 14.3, "Napoli|Naples|Neapel"},
    {"IT", 45.4, 12.3, "Venezia|Venice|Venedig|Venise"},
    {"IT", 44.4, 8.9, "Genova|Genoa|Genua|Gênes"},
    {"JP", 35.7, 139.7, "Tokyo|東京|Tokio"},
    {"JP", 34.7, 135.5, "Osaka|大阪"},
    {"JP", 35.0, 135.8, "Kyoto|京都"},
    {"JP", 35.2, 136.9, "Nagoya|名古屋"},
    {"JP", 35.4, 139.6, "Yokohama|横浜"},
    {"JP", 43.1, 141.4, "Sapporo|札幌"},
    {"JP", 33.6, 130.4, "Fukuoka|福岡"},
    {"KR", 37.6, 127.0, "Seoul|서울|Séoul"},
    {"KR", 35.2, 129.1, "Busan|부산"},
    {"LU", 49.6, 6.1, "Luxembourg|Luxemburg|Lussemburgo"},
    {"MX", 19.4, -99.1, "Ciudad de México|Mexico City|Mexiko-Stadt"},
    {"NL", 52.4, 4.9, "Amsterdam"},
    {"NL", 52.1, 4.3, "Den Haag|The Hague|La Haye"},
    {"NL", 51.9, 4.5, "Rotterdam"},
    {"NL", 52.1, 5.1, "Utrecht"},
    {"NO", 59.9, 10.8, "Oslo"},
    {"NO", 60.4, 5.3, "Bergen"},
    {"NO", 63.4, 10.4, "Trondheim"},
    {"PL", 52.2, 21.0, "Warszawa|Warsaw|Warschau|Varsovie|Varsavia"},
    {"PL", 50.1, 19.9, "Kraków|Cracow|Krakau|Cracovie"},
    {"PL", 51.1, 17.0, "Wrocław|Breslau"},
    {"PL", 54.4, 18.6, "Gdańsk|Danzig"},
    {"PT", 38.7, -9.1, "Lisboa|Lisbon|Lissabon|Lisbonne|Lisbona"},
    {"PT", 41.1, -8.6, "Porto|Oporto"},
    {"RO", 44.4, 26.1, "București|Bucharest|Bukarest|Bucarest"},
    {"RS", 44.8, 20.5, "Beograd|Београд|Belgrade|Belgrad"},
    {"RU", 55.8, 37.6, "Москва|Moscow|Moskau|Moscou|Moskva"},
    {"RU", 59.9, 30.3, "Санкт-Петербург|Saint Petersburg|Sankt Petersburg"},
    {"SE", 59.3, 18.1, "Stockholm|Estocolmo"},
    {"SE", 57.7, 12.0, "Göteborg|Gothenburg"},
    {"SE", 55.6, 13.0, "Malmö"},
    {"TR", 41.0, 29.0, "İstanbul|Istanbul"},
    {"TW", 25.0, 121.6, "Taipei|臺北|台北"},
    {"UA", 50.5, 30.5, "Київ|Kyiv|Kiev|Киев|Kiew"},
    {"UA", 49.8, 24.0, "Львів|Lviv|Lemberg"},
    {"US", 40.7, -74.0, "New York"},
    {"US", 34.1, -118.2, "Los Angeles"},
    {"US", 41.9, -87.6, "Chicago"},
    {"US", 37.8, -122.4, "San Francisco"},
};

constexpr std::size_t kShortestStart = 3;

std::vector<std::string> namesIn(std::string_view list) {
  std::vector<std::string> names;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find('|'), list.size());
    names.emplace_back(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return names;
}

/// The search forms of the names, made once.
const std::vector<std::vector<std::string>>& searchForms() {
  static const auto forms = [] {
    std::vector<std::vector<std::string>> all;
    for (const Row& row : kRows) {
      all.emplace_back();
      for (const std::string& name : namesIn(row.names)) all.back().push_back(searchForm(name));
    }
    return all;
  }();
  return forms;
}

template <class Fits>
const Row* findRow(Fits fits) {
  const auto& forms = searchForms();
  const auto place =
      std::ranges::find_if(forms, [&fits](const auto& names) { return std::ranges::any_of(names, fits); });
  return place == forms.end() ? nullptr : &kRows[place - forms.begin()];
}

}  // namespace

std::optional<KnownPlace> knownPlace(std::string_view searchForm) {
  const Row* row = findRow([searchForm](const std::string& name) { return name == searchForm; });
  if (!row && searchForm.size() >= kShortestStart)
    row = findRow([searchForm](const std::string& name) { return name.starts_with(searchForm); });
  if (!row) return std::nullopt;
  return KnownPlace{.names = namesIn(row->names),
                    .country = row->country,
                    .position = {row->latitude, row->latitude, row->longitude, row->longitude}};
}

}  // namespace linewatch
