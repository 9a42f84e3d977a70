#include "storage/state_directories.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

Environment environmentOf(const std::map<std::string, std::string>& variables) {
  return [&variables](const char* name) {
    const auto variable = variables.find(name);
    return variable == variables.end() ? nullptr : variable->second.c_str();
  };
}

TEST(StateDirectories, FollowTheXdgRules) {
  struct Row {
    const char* name;
    std::map<std::string, std::string> variables;
    const char* data;
    const char* cache;
    const char* settings;
  };
  for (const Row& row : {
           Row{"home",
               {{"HOME", "/home/ann"}},
               "/home/ann/.local/share/linewatch",
               "/home/ann/.cache/linewatch",
               "/home/ann/.config/linewatch"},
           Row{"own folders",
               {{"XDG_DATA_HOME", "/d"}, {"XDG_CACHE_HOME", "/c"}, {"XDG_CONFIG_HOME", "/s"}},
               "/d/linewatch",
               "/c/linewatch",
               "/s/linewatch"},
           Row{"no home",
               {{"XDG_DATA_HOME", "/d"}, {"XDG_CACHE_HOME", "/c"}},
               "/d/linewatch",
               "/c/linewatch",
               ""},
           Row{"relative and empty ones do not count",
               {{"HOME", "/h"}, {"XDG_DATA_HOME", "d"}, {"XDG_CACHE_HOME", ""}, {"XDG_CONFIG_HOME", "../s"}},
               "/h/.local/share/linewatch",
               "/h/.cache/linewatch",
               "/h/.config/linewatch"},
       }) {
    SCOPED_TRACE(row.name);
    const auto folders = StateDirectories::fromEnvironment(environmentOf(row.variables));
    ASSERT_TRUE(folders);
    EXPECT_EQ(folders->data, row.data);
    EXPECT_EQ(folders->cache, row.cache);
    EXPECT_EQ(folders->settings, row.settings);
  }
  const std::map<std::string, std::string> lost = {{"HOME", "not absolute"}, {"XDG_DATA_HOME", "/d"}};
  EXPECT_FALSE(StateDirectories::fromEnvironment(environmentOf(lost)));
}

TEST(StateDirectories, OneFolderHoldsAll) {
  const auto folders = StateDirectories::under("/somewhere");
  EXPECT_EQ(folders->data, "/somewhere");
  EXPECT_EQ(folders->cache, "/somewhere/cache");
  EXPECT_EQ(folders->settings, "/somewhere");
  EXPECT_TRUE(StateDirectories::under("relative")->data.is_absolute());
  EXPECT_FALSE(StateDirectories::under(""));
}

}  // namespace
}  // namespace linewatch
