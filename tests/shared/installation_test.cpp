#include "shared/installation.h"

#include <gmock/gmock.h>

#include "shared/failure.h"
#include "shared/module.h"

namespace linewatch {
namespace {

TEST(Installation, ModulesAreLoadedFromTheFolderThatTheHostNames) {
  const auto found = installationRoot();
  useInstallation("/no/such/folder");
  const auto entry = moduleEntry("libzip", "entry");
  ASSERT_FALSE(entry);
  EXPECT_THAT(sentenceOf(entry.error()), testing::HasSubstr("/no/such/folder/lib/linewatch/libzip.so"));
  useInstallation({});
  EXPECT_EQ(installationRoot(), found);
}

}  // namespace
}  // namespace linewatch
