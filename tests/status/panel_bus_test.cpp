#include "status/panel_bus.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "temporary_folder.h"

namespace linewatch {
namespace {

TEST(PanelBus, NameIsThatOfTheStateFolder) {
  const TemporaryFolder folder;
  const std::filesystem::path state = folder.path() / "state", link = folder.path() / "link";
  std::filesystem::create_directory(state);
  std::filesystem::create_directory_symlink(state, link);
  EXPECT_EQ(panelBusName(""), "org.linewatch.LineWatch");
  EXPECT_EQ(panelBusName("/nowhere"), "org.linewatch.LineWatch.Stateea2512283dfc3920");
  const std::string name = panelBusName(state);
  for (const auto& same : {link, state / "", state / "." / "", std::filesystem::relative(state)})
    EXPECT_EQ(panelBusName(same), name) << same;
  EXPECT_NE(panelBusName(folder.path()), name);
}

}  // namespace
}  // namespace linewatch
