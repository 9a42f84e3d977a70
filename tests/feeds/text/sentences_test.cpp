#include "feeds/text/sentences.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace linewatch {
namespace {

using testing::ElementsAre;

std::vector<std::string> sentencesOf(std::string_view text, std::string_view language = "en") {
  std::vector<std::string> all;
  forEachSentence(text, language, [&all](std::string_view sentence) {
    all.emplace_back(sentence);
    return true;
  });
  return all;
}

TEST(Sentences, EndWhereASentenceEnds) {
  EXPECT_THAT(sentencesOf("No trains. Use bus 5! Why? (A fault.) Sorry…"),
              ElementsAre("No trains.", "Use bus 5!", "Why?", "(A fault.)", "Sorry…"));
  EXPECT_THAT(sentencesOf("停電です。バスをご利用ください。", "ja"),
              ElementsAre("停電です。", "バスをご利用ください。"));
  EXPECT_THAT(sentencesOf("Kein Halt. „Bitte umsteigen.“ Danke!", "de-CH"),
              ElementsAre("Kein Halt.", "„Bitte umsteigen.“", "Danke!"));
  EXPECT_THAT(sentencesOf("Нет поездов. Автобус 5.", "ru"), ElementsAre("Нет поездов.", "Автобус 5."));
  EXPECT_THAT(sentencesOf(""), ElementsAre());
  // The ends of these words are abbreviations.
  EXPECT_THAT(sentencesOf("Um 5 Uhr fährt er ab. Er fährt weiter. Alle gemeinsam. Gut.", "de"),
              ElementsAre("Um 5 Uhr fährt er ab.", "Er fährt weiter.", "Alle gemeinsam.", "Gut."));
  EXPECT_THAT(sentencesOf("STOP A IS CLOSED. Use the app. Wait."),
              ElementsAre("STOP A IS CLOSED.", "Use the app.", "Wait."));
}

TEST(Sentences, GoOnBehindAbbreviations) {
  struct Row {
    const char* language;
    const char* sentence;
  };
  for (const Row& row : {
           Row{"en", "Closed until Mon. 4 Dec. and on Tue. Wed."},
           Row{"en", "Trains skip Montgomery St. Station and Main Ave. North."},
           Row{"en", "Stop No. 1234 at Ft. Point is closed."},
           Row{"en", "From 5 p.m. Monday, J. F. Kennedy station is closed."},
           Row{"en", "Version 2.5 is used at 10.30 on www.example.org/?a=1."},
           Row{"en", "Wait... then board."},
           Row{"en", "Ask Prof. Miller or Mrs. Smith."},
           Row{"de", "Verkehrt z.B. Mo. bis Fr. ab Str. des 17. Juni, ca. Nr. 5."},
           Row{"de", "Ab 27. Oktober bis 3. Jan. geschlossen."},
           Row{"de", "Gesperrt bis voraussichtl. Dienstag, Bahnhofstr. 5."},
           Row{"de", "Umleitung bis vsl. Samstag über Obertürkh. Bahnhof, Ri. Zoo."},
           Row{"de", "Der Ausgang am Hbf. Nord ist inkl. Aufzug gesperrt."},
           Row{"fr", "La ligne 5 est détournée av. J.-C. Petit dès le 3 févr. Lundi."},
           Row{"es", "La parada de la Avda. Mayor se mueve a la Sra. del Mar."},
           Row{"it", "La fermata del Sig. Rossi in pag. Uno è chiusa."},
           Row{"pt", "A paragem da Dra. Silva na Av. Central muda."},
           Row{"", "Umleitung bis vsl. Samstag über Main Ave. North."},
       }) {
    EXPECT_THAT(sentencesOf(row.sentence, row.language), ElementsAre(row.sentence));
  }
}

TEST(Sentences, StopWhenNoMoreAreWanted) {
  std::vector<std::string> first;
  forEachSentence("One. Two.\nThree. Four.", "en", [&first](std::string_view sentence) {
    first.emplace_back(sentence);
    return first.size() < 3;
  });
  EXPECT_THAT(first, ElementsAre("One.", "Two.", "Three."));
}

}  // namespace
}  // namespace linewatch
