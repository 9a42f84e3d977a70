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

}  // namespace
}  // namespace linewatch::desktop
