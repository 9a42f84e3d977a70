#include "desktop/window/notify_choice.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <memory>
#include <optional>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/window/local_hours.h"
#include "desktop/window/window_events.h"
#include "simulation/platform_test.h"

namespace linewatch::desktop {
namespace {

using notices::Severity;
using notices::Subscription;
using notices::WeeklyHours;
using testing::ElementsAre;
using Saved = std::optional<Subscription>;

class NotifyChoiceTest : public PlatformTest {
 protected:
  NotifyChoiceTest() { needApplication(); }

  static inline const notices::LineKey kLine{"city", "u4"};
};

TEST_F(NotifyChoiceTest, SavesEachChoiceAndKeepsWrongHoursToItself) {
  std::vector<Saved> saved;
  const auto save = [&saved](const Saved& wanted) {
    saved.push_back(wanted);
    return std::optional<Error>();
  };
  const Subscription mornings{kLine, *WeeklyHours::parse("weekdays 7 to 9"), Severity::warning};
  NotifyChoice choice(std::make_shared<const WindowTexts>(*UserLocale::parse("en")), kLine, mornings, save);
  const auto times = choice.findChildren<QRadioButton*>();
  auto* const hours = choice.findChild<QLineEdit*>();
  auto* const severities = choice.findChild<QComboBox*>();
  ASSERT_EQ(times.size(), 3);
  EXPECT_TRUE(times[2]->isChecked());
  EXPECT_EQ(hours->text(), "weekdays 7 to 9");
  EXPECT_EQ(severities->currentText(), "Warning");
  times[1]->click();
  EXPECT_FALSE(hours->isEnabled());
  times[2]->click();
  hours->selectAll();
  hours->insert("blursday");
  press(*hours, Qt::Key_Return);
  const Subscription always{kLine, {}, Severity::warning};
  EXPECT_THAT(saved, ElementsAre(always, mornings)) << "the wrong hours are not saved";
  EXPECT_THAT(choice.findChildren<QLabel*>().back()->text().toStdString(),
              testing::HasSubstr("\"blursday\""));
  times[0]->click();
  EXPECT_EQ(saved.back(), std::nullopt);
  EXPECT_FALSE(severities->isEnabled());
}

TEST_F(NotifyChoiceTest, HoursAreShownAndTypedInTheLanguageOfTheWindow) {
  struct Case {
    const char *language, *shown, *typed;
  };
  for (const auto& [language, shown, typed] :
       {Case{"en", "weekdays 7 to 9, sat 8 to 10:30", "Mon-Fri 7-9, Saturday 8 to 10:30"},
        Case{"de", "Mo–Fr 7–9, Sa 8–10:30", "montag - freitag 7-9 Uhr, Sa. 8 – 10.30"},
        Case{"fr", "lun–ven 7–9, sam 8–10:30", "Lundi–vendredi 7h-9h, sam. 8h–10h30"},
        Case{"pt", "seg–sex 7–9, sáb 8–10:30", "segunda - sexta-feira 7–9, Sábado 8–10:30"},
        Case{"ja", "月–金 7–9, 土 8–10:30", "月曜日〜金曜日７〜９、土8〜10：30"},
        Case{"nl", "ma–vr 7–9, za 8–10:30", "weekdays 7 to 9, zaterdag 8–10:30"},
        Case{"ar", "الاثنين–الجمعة 7–9, السبت 8–10:30", "الاثنين – الجمعة ٧–٩، السبت ٨–١٠:٣٠"}}) {
    const QLocale locale{QString(language)};
    const auto hours = *WeeklyHours::parse("weekdays 7 to 9, sat 8 to 10:30");
    EXPECT_EQ(localHours(hours, locale), shown);
    for (const char* const text : {shown, typed}) {
      const auto parsed = parsedLocalHours(text, locale);
      EXPECT_TRUE(parsed && *parsed == hours) << text << ": " << (parsed ? parsed->text() : "an error");
    }
    EXPECT_FALSE(parsedLocalHours("blursday 7–9", locale));
  }
}

}  // namespace
}  // namespace linewatch::desktop
