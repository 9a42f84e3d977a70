#include "feeds/text/referrals.h"

#include <gtest/gtest.h>

namespace linewatch {
namespace {

struct ReferralRow {
  const char* name;
  const char* sentence;
  const char* text;
};

void expectWithoutReferrals(std::initializer_list<ReferralRow> rows) {
  for (const ReferralRow& row : rows) EXPECT_EQ(withoutReferrals(row.sentence), row.text) << row.name;
}

TEST(Referrals, SentencesThatOnlyLeadToAnAddressAreEmpty) {
  expectWithoutReferrals({
      {"nothing else", "More at https://example.org/.", ""},
      {"without a scheme", "See www.example.org for more", ""},
      {"in two clauses", "For more on this detour, visit https://example.org.", ""},
      {"announced", "Infos: www.example.org.", ""},
      {"German", "Weitere Informationen unter www.example.org", ""},
      {"French", "Plus d'infos sur www.example.org", ""},
  });
}

TEST(Referrals, LastClauseWithAnAddressGoes) {
  expectWithoutReferrals({
      {"clause", "Buses run instead until Friday, see https://example.org for stops.",
       "Buses run instead until Friday"},
      {"brackets", "Buses run instead (map: https://example.org).", "Buses run instead."},
      {"link in brackets", "Use the [stops nearby](https://example.org).", "Use the stops nearby."},
      {"brackets at the start", "(www.example.org) Buses run.", "Buses run."},
      {"no address", "Buses run instead, and on time.", "Buses run instead, and on time."},
  });
}

TEST(Referrals, SentencesKeepWhatStandsAroundAnAddress) {
  expectWithoutReferrals({
      {"English", "The timetable at https://example.org/t starts on Monday.",
       "The timetable starts on Monday."},
      {"German", "Die Pläne unter www.example.org gelten ab Montag.", "Die Pläne gelten ab Montag."},
      {"French", "Les horaires sur www.example.org changent dès lundi.", "Les horaires changent dès lundi."},
      {"behind a clause", "From Monday, the plan at https://example.org is valid.",
       "From Monday, the plan is valid."},
      {"before a comma", "Read https://example.org, then take bus 5.", "Read, then take bus 5."},
      {"two addresses", "Maps at www.a.example and at www.b.example show all stops.",
       "Maps and show all stops."},
  });
}

}  // namespace
}  // namespace linewatch
