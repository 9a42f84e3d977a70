#include "desktop/window/panel_header.h"

#include <QLabel>
#include <QTextLayout>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "desktop/drawing/compact_size.h"
#include "desktop/window/window_events.h"
#include "localization/string_tables.h"

namespace linewatch::desktop {
namespace {

/// The number of lines that the label's text needs at the label's width.
int linesNeeded(const QLabel& label) {
  QTextLayout layout(label.text(), label.font());
  layout.beginLayout();
  int count = 0;
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(label.width());
    ++count;
    if (line.naturalTextWidth() > label.width()) return 100;
  }
  layout.endLayout();
  return count;
}

TEST(PanelHeaderTest, ShowsTheWholeNoteAtTheUsualWidthInEveryLanguage) {
  needApplication();
  const Date now{Seconds(1'700'000'000)}, yesterday = now - Seconds(86'400);
  for (const EmbeddedLanguage& language : embeddedLanguages()) {
    const WindowTexts texts(*UserLocale::parse(std::string(language.language)));
    PanelHeader header(texts, {});
    header.setTextSize(ui::kDefaultTextSizeCategory);
    header.resize(static_cast<int>(kCompactSize.width), 40);
    const auto& note = *header.findChild<QLabel*>("note");
    for (const bool isFrameless : {false, true}) {
      header.setTitleVisible(isFrameless);
      for (const char* const toggle : {"ShowMore", "ShowLess"}) {
        header.setToggle(texts(toggle), false, true);
        for (const char* const name : {"AlertsWritten", "AlertsReceived"}) {
          const QString when = texts.dateAndTime(yesterday, now, QLocale::ShortFormat);
          const QString text = texts(name, {when.toStdString()});
          header.setNote({text, "whole"});
          header.show();
          settle();
          EXPECT_LE(linesNeeded(note), 2) << language.language << ": " << text.toStdString();
          EXPECT_EQ(note.accessibleName(), "whole");
        }
      }
    }
  }
}

}  // namespace
}  // namespace linewatch::desktop
