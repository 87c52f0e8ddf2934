// The settings page as the user sees it, and what it leaves in the file, in cfprefsd and of others.
#include <fstream>

#include "settings/page.hpp"
#include "sim/foundation/plist_file.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/scenario/settings_file.hpp"
#include "sim/settings/preferences_daemon.hpp"
#include "sim/settings/settings_app.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

namespace page = corvalen::settings;

std::string textOf(platform::ConstantText text) { return text ? text->characters : ""; }

class SettingsPage : public DeviceTest {
 protected:
  SettingsPage() {
    device.state.apps.push_back({kSpotify, "Spotify"});
    device.state.apps.push_back({kPodcasts, "Podcasts"});
  }

  void open() {
    booted();
    device.drain();
    openSettings(device);
    device.drain();
  }
  const ShownRow& row(const std::string& label) {
    shown_ = shownSettings(device);
    for (const ShownGroup& group : shown_.groups)
      for (const ShownRow& one : group.rows)
        if (one.label == label) return one;
    throw std::runtime_error("no row " + label);
  }
  std::map<std::string, std::string> file() const {
    return scenario::readSettings(device).value_or(std::map<std::string, std::string>{});
  }
  std::string inFile(const std::string& key) const {
    const auto all = file();
    return all.contains(key) ? all.at(key) : "";
  }
  bool isOn(const std::string& key) const {
    return inFile(key).find("<true/>") != std::string::npos;
  }
  std::vector<std::string> leaks() { return device.process(kSettings)->leaks(); }

 private:
  ShownPage shown_;
};

constexpr const char* kEnabled = "iea9AQXrEmhSZ4u";
constexpr const char* kPlayer = "2I8UQMOAwU5nnNZt";
constexpr const char* kGreeted = "feo63OPBmERAd2000UpdRdCAND";

TEST_F(SettingsPage, ShowsEveryGroupAndRowOfItsDescription) {
  open();
  const ShownPage shown = shownSettings(device);
  ASSERT_EQ(shown.groups.size(), std::size(page::kPage));
  for (std::size_t i = 0; i < shown.groups.size(); ++i) {
    EXPECT_EQ(shown.groups[i].title, textOf(page::kPage[i].title));
    ASSERT_EQ(shown.groups[i].rows.size(), page::kPage[i].rows.size());
    for (std::size_t j = 0; j < shown.groups[i].rows.size(); ++j)
      EXPECT_EQ(shown.groups[i].rows[j].label, textOf(page::kPage[i].rows[j].label));
  }
}

TEST_F(SettingsPage, HasARowForEachOfTheNineSettings) {
  std::set<std::string> keys;
  for (const auto& group : page::kPage)
    for (const auto& row : group.rows)
      if (row.key)
        keys.insert(
            textOf(static_cast<platform::ConstantText>(static_cast<const void*>(row.key().raw))));
  EXPECT_EQ(keys,
            (std::set<std::string>{"iea9AQXrEmhSZ4u", "4sySMd4CfPOr0F", "KwI68FtaZGgSizb",
                                   "ljyr9pMzliGkTNvfm", "LyyY0YZw4enaXR6S", "AiPVzGZ3tdh2fBpXy",
                                   "I9gqmWG8wXu6", "2I8UQMOAwU5nnNZt", "RjNkaiHs98230Xx"}));
}

TEST_F(SettingsPage, ShowsWhatTheFileHolds) {
  scenario::setSetting(device, kEnabled, true);
  scenario::setSetting(device, "LyyY0YZw4enaXR6S", std::string("yes"));
  open();
  EXPECT_EQ(row("Enabled").value, "YES");
  EXPECT_EQ(row("Auto-Play").value, "YES");
  EXPECT_EQ(row("Play a Sound").value, "NO");
}

TEST_F(SettingsPage, ExplainsEachGroupWhileHelpIsOn) {
  open();
  EXPECT_EQ(shownSettings(device).button, "Help");
  EXPECT_EQ(shownSettings(device).groups[0].footer, "");
  tapHelp(device);
  ShownPage shown = shownSettings(device);
  EXPECT_EQ(shown.button, "Hide Help");
  for (std::size_t i = 0; i + 1 < std::size(page::kPage); ++i)
    EXPECT_EQ(shown.groups[i].footer, textOf(page::kPage[i].help));
  tapHelp(device);
  shown = shownSettings(device);
  EXPECT_EQ(shown.button, "Help");
  EXPECT_EQ(shown.groups[0].footer, "");
}

TEST_F(SettingsPage, SaysItsVersionAndThatNoRespringIsNeeded) {
  open();
  const std::string footer = shownSettings(device).groups.back().footer;
  std::ifstream versionFile(CORVALEN_SOURCE_DIR "/VERSION");
  std::string version;
  versionFile >> version;
  EXPECT_NE(footer.find("Version " + version), std::string::npos) << footer;
  EXPECT_NE(footer.find("No respring is needed."), std::string::npos) << footer;
  EXPECT_NE(footer.find("App Store"), std::string::npos) << footer;
}

TEST_F(SettingsPage, ShowsTheNameOfTheAppThatIsChosen) {
  open();
  EXPECT_EQ(row("Preferred Player").value, "None");
  chooseApp(device, "Preferred Player", kSpotify);
  EXPECT_EQ(row("Preferred Player").value, "Spotify");
  EXPECT_EQ(row("Music Replacement").value, "None");
  chooseApp(device, "Preferred Player", std::nullopt);
  EXPECT_EQ(row("Preferred Player").value, "None");
  EXPECT_EQ(file().count(kPlayer), 0u);
}

TEST_F(SettingsPage, ShowsTheIdentifierOfAnAppThatIsGone) {
  scenario::setSetting(device, kPlayer, std::string("com.example.gone"));
  open();
  EXPECT_EQ(row("Preferred Player").value, "com.example.gone");
}

TEST_F(SettingsPage, GreysWhatCanHaveNoEffect) {
  open();
  EXPECT_FALSE(row("Start Hidden When Locked").enabled);
  EXPECT_FALSE(row("Start Hidden When Unlocked").enabled);
  EXPECT_FALSE(row("Play When Plugged In").enabled);
  EXPECT_FALSE(row("Not From the Home Screen").enabled);
  moveSwitch(device, "Enabled", true);
  EXPECT_TRUE(row("Start Hidden When Locked").enabled);
  EXPECT_TRUE(row("Play When Plugged In").enabled);
  EXPECT_FALSE(row("Not From the Home Screen").enabled);
  moveSwitch(device, "Auto-Play", true);
  EXPECT_TRUE(row("Not From the Home Screen").enabled);
  moveSwitch(device, "Enabled", false);
  EXPECT_FALSE(row("Start Hidden When Locked").enabled);
}

// ---- The list of apps

TEST_F(SettingsPage, ListsNoneAndThenTheAppsByTheirNames) {
  open();
  chooseApp(device, "Preferred Player", kSpotify);
  openList(device, "Preferred Player");
  const auto rows = shownSettings(device).groups.at(0).rows;
  ASSERT_EQ(rows.size(), 4u);
  const std::vector<std::string> names = {rows[0].label, rows[1].label, rows[2].label,
                                          rows[3].label};
  EXPECT_EQ(names, (std::vector<std::string>{"None", "Music", "Podcasts", "Spotify"}));
  EXPECT_FALSE(rows[0].checked);
  EXPECT_FALSE(rows[0].hasIcon);
  EXPECT_TRUE(rows[1].hasIcon);
  EXPECT_TRUE(rows[3].checked);
}

TEST_F(SettingsPage, SearchesTheListByPartsOfNames) {
  open();
  openList(device, "Preferred Player");
  searchInList(device, "POD");
  const auto rows = shownSettings(device).groups.at(0).rows;
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].label, "Podcasts");
  searchInList(device, "");
  EXPECT_EQ(shownSettings(device).groups.at(0).rows.size(), 4u);
  searchInList(device, "Pod");
  backFromList(device);
  openList(device, "Music Replacement");
  EXPECT_EQ(shownSettings(device).groups.at(0).rows.size(), 4u) << "the next list has all again";
}

TEST_F(SettingsPage, ChecksTheAppThatWasTapped) {
  open();
  openList(device, "Preferred Player");
  tapInList(device, kPodcasts);
  ShownGroup list = shownSettings(device).groups.at(0);
  for (const ShownRow& one : list.rows)
    EXPECT_EQ(one.checked, one.label == "Podcasts") << one.label;
  tapInList(device, "");
  list = shownSettings(device).groups.at(0);
  for (const ShownRow& one : list.rows) EXPECT_EQ(one.checked, one.label == "None") << one.label;
  const auto& table = *navigation(*device.process(kSettings)).pages.back()->table();
  EXPECT_TRUE(table.selected.empty()) << "a row stays highlighted";
}

TEST_F(SettingsPage, SaysWhereAppListIsMissing) {
  removeClass(device, "ALApplicationList");
  open();
  const ShownPage shown = shownSettings(device);
  EXPECT_EQ(shown.groups[0].footer, textOf(page::text::noAppList));
  EXPECT_FALSE(row("Preferred Player").enabled);
  EXPECT_TRUE(row("Enabled").enabled);
}

// ---- What a change leaves

TEST_F(SettingsPage, SetsTheKeyOfEachRow) {
  static const std::map<std::string, std::string> kKeys = {
      {"Enabled", "iea9AQXrEmhSZ4u"},
      {"Start Hidden When Locked", "4sySMd4CfPOr0F"},
      {"Start Hidden When Unlocked", "KwI68FtaZGgSizb"},
      {"Play a Sound", "ljyr9pMzliGkTNvfm"},
      {"Auto-Play", "LyyY0YZw4enaXR6S"},
      {"Not From the Home Screen", "AiPVzGZ3tdh2fBpXy"},
      {"Play When Plugged In", "I9gqmWG8wXu6"},
  };
  open();
  moveSwitch(device, "Enabled", true);
  moveSwitch(device, "Auto-Play", true);
  for (const auto& [label, key] : kKeys) {
    moveSwitch(device, label, false);
    EXPECT_FALSE(isOn(key)) << label;
    moveSwitch(device, label, true);
    EXPECT_TRUE(isOn(key)) << label;
    EXPECT_EQ(row(label).value, "YES") << label;
  }
  chooseApp(device, "Preferred Player", kSpotify);
  chooseApp(device, "Music Replacement", kPodcasts);
  EXPECT_NE(inFile(kPlayer).find(kSpotify), std::string::npos);
  EXPECT_NE(inFile("RjNkaiHs98230Xx").find(kPodcasts), std::string::npos);
  EXPECT_EQ(topAlert(*device.process(kSettings)), nullptr) << "an alert though all was saved";
}

// A switch that others do not hang on is not drawn anew: what it shows is what was set.
TEST_F(SettingsPage, StillShowsWhatWasSetWhenRowsAreDrawnAnew) {
  open();
  moveSwitch(device, "Enabled", true);
  moveSwitch(device, "Play a Sound", true);
  navigation(*device.process(kSettings)).pages.back()->reload();
  EXPECT_EQ(row("Play a Sound").value, "YES");
}

TEST_F(SettingsPage, PutsASwitchBackThatCouldNotBeSaved) {
  open();
  moveSwitch(device, "Enabled", true);
  device.state.settingsReadOnly = true;
  moveSwitch(device, "Play a Sound", true);
  EXPECT_EQ(row("Play a Sound").value, "NO");
  moveSwitch(device, "Enabled", false);
  EXPECT_EQ(row("Enabled").value, "YES");
}

TEST_F(SettingsPage, HasTheStoreSynchronized) {
  open();
  calls.wantsAll = true;
  moveSwitch(device, "Enabled", true);
  EXPECT_TRUE(calls.has("CFPreferencesAppSynchronize(\"com.qvethmar.corvalenpro\")"));
}

// Kept and shown again, pages were blank on older versions.
TEST_F(SettingsPage, IsMadeAnewWhenTheAppComesBack) {
  open();
  Process& settings = *device.process(kSettings);
  auto& page = *navigation(settings).pages.back();
  EXPECT_FALSE(settings.send(&page, "canBeShownFromSuspendedState").asBool());
}

TEST_F(SettingsPage, KeepsEveryOtherKey) {
  scenario::setSetting(device, kGreeted, true);
  scenario::setSetting(device, "foreign", std::int64_t{-7});
  open();
  const auto before = file();
  moveSwitch(device, "Enabled", true);
  auto after = file();
  EXPECT_TRUE(isOn(kEnabled));
  after.erase(kEnabled);
  EXPECT_EQ(after, before);
}

TEST_F(SettingsPage, MakesAFileThatIsNotThere) {
  open();
  scenario::removeSettings(device);
  moveSwitch(device, "Enabled", true);
  EXPECT_TRUE(isOn(kEnabled));
}

TEST_F(SettingsPage, ResetsItsNineSettingsAndNothingElse) {
  for (const char* key : {kEnabled, "I9gqmWG8wXu6", kGreeted, "hasShownWAL", "foreign"})
    scenario::setSetting(device, key, true);
  scenario::setSetting(device, kPlayer, kSpotify);
  open();
  resetSettings(device, Answer::Cancel);
  EXPECT_TRUE(isOn(kEnabled)) << "reset although it was cancelled";
  resetSettings(device, Answer::Confirm);
  EXPECT_FALSE(isOn(kEnabled));
  EXPECT_FALSE(isOn("I9gqmWG8wXu6"));
  EXPECT_EQ(file().count(kPlayer), 0u);
  for (const char* key : {kGreeted, "hasShownWAL", "foreign"}) EXPECT_TRUE(isOn(key)) << key;
  EXPECT_EQ(row("Enabled").value, "NO");
}

TEST_F(SettingsPage, TellsDaemonAllThatTheFileHolds) {
  open();
  moveSwitch(device, "Auto-Play", true);
  device.drain();
  device.advance(6'000'000);
  // Behind the daemon's back, as the greeting does it.
  scenario::setSetting(device, kGreeted, true);
  moveSwitch(device, "Enabled", true);
  device.advance(6'000'000);
  EXPECT_TRUE(isOn(kGreeted)) << "what the daemon wrote later was older";
  EXPECT_TRUE(isOn(kEnabled));
  EXPECT_EQ(device.service<PreferencesDaemon>().overwritten(), 0u);
}

TEST_F(SettingsPage, TellsDaemonWhatWasTakenOut) {
  open();
  chooseApp(device, "Preferred Player", kSpotify);
  device.advance(6'000'000);
  chooseApp(device, "Preferred Player", std::nullopt);
  device.advance(6'000'000);
  EXPECT_EQ(file().count(kPlayer), 0u);
}

TEST_F(SettingsPage, LosesNoReferenceWhateverIsTouched) {
  open();
  moveSwitch(device, "Enabled", true);
  tapHelp(device);
  chooseApp(device, "Preferred Player", kSpotify);
  openList(device, "Preferred Player");
  searchInList(device, "s");
  backFromList(device);
  resetSettings(device, Answer::Confirm);
  device.state.settingsReadOnly = true;
  moveSwitch(device, "Enabled", true);
  device.drain();
  EXPECT_EQ(leaks(), std::vector<std::string>());
  EXPECT_FALSE(calls.has("crash"));
  EXPECT_NE(device.process(kSettings), nullptr);
}

// ---- The entry in the Settings app

TEST_F(SettingsPage, IsFoundByTheNameThatTheGreetingOpens) {
  const auto root = readPropertyListFile(loader_->bundle.parent_path() / "CorvalenPro.plist");
  ASSERT_TRUE(root);
  plist_t entry = plist_dict_get_item(root.get(), "entry");
  EXPECT_STREQ(plist_get_string_ptr(plist_dict_get_item(entry, "id"), nullptr), "Corvalen Pro");
}

TEST_F(SettingsPage, AppearsOnTheVersionsThatTheLibraryWorksOnAndOnNoOther) {
  booted();
  for (const auto& [version, appears] : std::map<double, bool>{{793.0, false},
                                                               {847.2, true},
                                                               {847.27, true},
                                                               {1145.15, true},
                                                               {1242.13, true},
                                                               {1280.0, true},
                                                               {1280.3, false},
                                                               {1348.0, false}}) {
    device.setVersion(version);
    openSettings(device);
    const bool there = !navigation(*device.process(kSettings)).pages.empty();
    EXPECT_EQ(there, appears) << version;
    closeSettings(device);
  }
}

// ---- Languages

class PageTexts : public SettingsPage, public ::testing::WithParamInterface<const char*> {};

std::map<std::string, std::string> textsOf(const std::filesystem::path& file) {
  std::map<std::string, std::string> texts;
  const auto root = readPropertyListFile(file);
  if (!root) return texts;
  for (const auto& [key, value] : entriesOf(root.get()))
    texts[key] = plist_get_string_ptr(value, nullptr);
  return texts;
}

TEST_P(PageTexts, AreAllThereAndNoMore) {
  std::set<std::string> wanted;
  for (const auto& group : page::kPage) {
    for (const auto text : {group.title, group.help})
      if (text) wanted.insert(textOf(text));
    for (const auto& row : group.rows) wanted.insert(textOf(row.label));
  }
  for (const auto text : page::kOtherTexts) wanted.insert(textOf(text));
  const auto texts =
      textsOf(loader_->bundle / (std::string(GetParam()) + ".lproj") / "CorvalenPro.strings");
  std::set<std::string> found;
  for (const auto& [text, translation] : texts) {
    found.insert(text);
    EXPECT_FALSE(translation.empty()) << text;
    EXPECT_EQ(text.find("%@") == std::string::npos, translation.find("%@") == std::string::npos)
        << text;
  }
  EXPECT_EQ(found, wanted);
}

TEST_P(PageTexts, AreWhatThePageShows) {
  device.state.language = GetParam();
  const auto texts =
      textsOf(loader_->bundle / (std::string(GetParam()) + ".lproj") / "CorvalenPro.strings");
  open();
  EXPECT_EQ(shownSettings(device).groups[0].rows[0].label, texts.at("Enabled"));
  EXPECT_EQ(shownSettings(device).button, texts.at("Help"));
}

INSTANTIATE_TEST_SUITE_P(Languages, PageTexts,
                         ::testing::Values("en", "de", "es", "fr", "it", "ja", "zh-Hans", "zh_CN"));

TEST_F(SettingsPage, IsInEnglishWhereItsLanguageIsNotThere) {
  device.state.language = "pt";
  open();
  EXPECT_EQ(shownSettings(device).groups[0].rows[0].label, "Enabled");
}

}  // namespace
}  // namespace sim
