#include "settings/user_settings.h"

#include <filesystem>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "localization/icu_localization.h"
#include "shared/failure.h"
#include "shared/file_contents.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Values that versions without a file have kept.
class KeptElsewhere final : public RememberedSettings {
 public:
  using Values = std::map<std::string_view, std::string>;

  explicit KeptElsewhere(Values& values) : values_(values) {}

  std::optional<std::string> find(const Setting& setting) const override {
    const auto value = values_.find(setting.key);
    return value == values_.end() ? std::nullopt : std::optional(value->second);
  }
  void forget(const Setting& setting) override { values_.erase(setting.key); }

 private:
  Values& values_;
};

class UserSettingsTest : public testing::Test {
 protected:
  void write(std::string_view text) { ASSERT_FALSE(writeWhole(file_, text)); }
  std::string written() const { return contentsOf(file_) ? *contentsOf(file_) : std::string(); }
  static SettingValue value(const UserSettings& settings, std::string_view key) {
    return settings.find(*settingWithKey(key));
  }
  UserSettings settings(UserSettings::Given given = {}) {
    UserSettings made(file_, std::move(given));
    made.setRemembered(std::make_unique<KeptElsewhere>(remembered_));
    return made;
  }

  TemporaryFolder folder_;
  std::filesystem::path file_ = folder_.path() / "settings.toml";
  KeptElsewhere::Values remembered_;
};

TEST_F(UserSettingsTest, TheCommandLineWinsOverTheFileAndTheFileOverWhatIsRemembered) {
  write("text-size = \"XL\"\nrefresh = \"5m\"\n");
  remembered_ = {{"text-size", "AX1"}, {"analytics", "false"}};
  const UserSettings user = settings({{"refresh", "1m"}});
  EXPECT_EQ(value(user, "refresh"), (SettingValue{"1m", SettingSource::commandLine}));
  EXPECT_EQ(value(user, "text-size"), (SettingValue{"XL", SettingSource::file}));
  EXPECT_EQ(value(user, "analytics"), (SettingValue{"false", SettingSource::remembered}));
  EXPECT_EQ(value(user, "on-top"), (SettingValue{"false", SettingSource::usual}));
  EXPECT_EQ(user.values().textSize, ui::TextSizeCategory::XL);
  EXPECT_FALSE(user.values().recordsAnalytics);
  EXPECT_TRUE(user.withoutRemembered().recordsAnalytics);
}

TEST_F(UserSettingsTest, AWrittenValueReplacesAllOthers) {
  remembered_ = {{"text-size", "AX1"}};
  UserSettings user = settings({{"text-size", "S"}});
  ASSERT_FALSE(user.set(kTextSizeSetting, "M"));
  EXPECT_EQ(value(user, "text-size"), (SettingValue{"M", SettingSource::file}));
  EXPECT_THAT(written(), testing::EndsWith("text-size = \"M\"\n"));
  ASSERT_FALSE(user.unset(kTextSizeSetting));
  EXPECT_EQ(value(user, "text-size"), (SettingValue{"L", SettingSource::usual})) << "not what was remembered";
  const auto refused = user.set(kTextSizeSetting, "HUGE");
  EXPECT_THAT(sentenceOf(*refused), HasSubstr("text-size: \"HUGE\" is not one of XS"));
}

TEST_F(UserSettingsTest, WritesWhatALinkLeadsToWithItsMode) {
  const auto target = folder_.path() / "dotfiles" / "mine.toml";
  std::filesystem::create_directory(target.parent_path());
  ASSERT_FALSE(writeWhole(target, "# mine\n"));
  std::filesystem::permissions(target,
                               std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  std::filesystem::create_symlink("dotfiles/mine.toml", file_);
  ASSERT_FALSE(settings().set(*settingWithKey("on-top"), "true"));
  EXPECT_TRUE(std::filesystem::is_symlink(file_));
  EXPECT_EQ(*contentsOf(target), "# mine\non-top = true\n");
  EXPECT_EQ(std::filesystem::status(target).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(UserSettingsTest, MakesTheFolderButNoFileForNothing) {
  file_ = folder_.path() / "new" / "folder" / "settings.toml";
  UserSettings user = settings();
  ASSERT_FALSE(user.unset(kTextSizeSetting));
  EXPECT_FALSE(std::filesystem::exists(file_));
  ASSERT_FALSE(user.set(kTextSizeSetting, "M"));
  EXPECT_TRUE(std::filesystem::exists(file_));
  EXPECT_TRUE(UserSettings({}).set(kTextSizeSetting, "M")) << "a run without a file";
}

TEST_F(UserSettingsTest, AFileThatIsNotTomlServesNothingAndStays) {
  write("on-top = \n");
  UserSettings user = settings();
  EXPECT_THAT(user.faults(), ElementsAre(file_.string() + ":1:10: this is not of the form: key = value"));
  IcuLocalization german(*UserLocale::parse("de"));
  EXPECT_THAT(user.faults(german),
              ElementsAre(file_.string() + ":1:10: das hat nicht die Form: Name = Wert"));
  EXPECT_FALSE(user.isReadable());
  EXPECT_EQ(value(user, "analytics").text, "false") << "nobody knows whether the user wants it";
  EXPECT_EQ(value(user, "on-top").text, "false");
  EXPECT_THAT(sentenceOf(*user.set(kTextSizeSetting, "M")), HasSubstr(":1:10: "));
  EXPECT_EQ(written(), "on-top = \n");
}

TEST_F(UserSettingsTest, WhileTheFileIsBeingEditedItsLastContentsHold) {
  write("on-top = true\n");
  UserSettings user = settings();
  EXPECT_EQ(value(user, "on-top").text, "true");
  EXPECT_FALSE(user.reread()) << "nothing has changed";
  write("on-top = tru\n");
  EXPECT_TRUE(user.reread());
  EXPECT_TRUE(user.reread() || !user.isReadable());
  EXPECT_EQ(value(user, "on-top").text, "true");
  EXPECT_EQ(value(user, "analytics").text, "true");
  std::filesystem::remove(file_);
  EXPECT_TRUE(user.reread());
  EXPECT_EQ(value(user, "on-top").text, "false");
}

TEST_F(UserSettingsTest, AWrongSwitchOfTheAnalyticsRecordsNothing) {
  write("analytics = \"off\"\ntext-size = \"huge\"\n");
  remembered_ = {{"text-size", "AX1"}};
  const UserSettings user = settings();
  EXPECT_EQ(value(user, "analytics").text, "false");
  EXPECT_EQ(value(user, "text-size").text, "L") << "a wrong value is not what was chosen before";
}

TEST_F(UserSettingsTest, RefusesAFileThatIsTooLargeOrNoFile) {
  write(std::string(kLargestSettingsFile + 1, '#'));
  EXPECT_THAT(settings().faults(), ElementsAre(HasSubstr("larger than")));
  std::filesystem::remove(file_);
  std::filesystem::create_directory(file_);
  EXPECT_THAT(settings().faults(), ElementsAre(HasSubstr(file_.string())));
  EXPECT_TRUE(settings().set(kTextSizeSetting, "M"));
}

}  // namespace
}  // namespace linewatch
