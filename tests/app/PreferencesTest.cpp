#include "AppTestSupport.h"
#include "PlaybackQuality.h"
#include "ThemeManager.h"
#include "Units.h"
#include "UnitsPref.h"

#include <QFile>

#include <gtest/gtest.h>

TEST(Preferences, DefaultsAreNotStoredAndChoicesFallBack)
{
    IsolatedPrefs p;
    p.prefs->registerAppDefaults();
    EXPECT_TRUE(p.prefs->boolValue("ingest.geocode"));
    EXPECT_FALSE(p.prefs->contains("ingest.geocode"));
    p.prefs->setValue("ingest.geocode", false);
    auto again = p.reopen();
    again->registerAppDefaults();
    EXPECT_FALSE(again->boolValue("ingest.geocode"));
    EXPECT_FALSE(again->boolValue("ingest.keepProcessed"));

    const QStringList sorts{"newest", "oldest", "longest"};
    EXPECT_EQ(again->choice("gallery.sort", sorts, "newest"), "newest");
    again->setValue("gallery.sort", "oldest");
    EXPECT_EQ(again->choice("gallery.sort", sorts, "newest"), "oldest");
    again->setValue("gallery.sort", "sideways");
    EXPECT_EQ(again->choice("gallery.sort", sorts, "newest"), "newest");
}

TEST(Preferences, PlaybackMigrationFromDataSaver)
{
    struct Case {
        const char *dataSaver;
        std::optional<bool> storedHq;
        bool hq;
        std::optional<bool> hqAfter;
    };
    const Case cases[] = {
        {"never", std::nullopt, true, true},
        {"never", false, false, false},
        {"always", std::nullopt, false, std::nullopt},
        {nullptr, std::nullopt, false, std::nullopt},
    };
    for (const auto &c : cases) {
        IsolatedPrefs p;
        if (c.dataSaver)
            p.prefs->setValue("dataSaver", c.dataSaver);
        if (c.storedHq)
            p.prefs->setValue("hqPlayback", *c.storedHq);
        auto prefs = p.reopen();
        PlaybackQuality quality(*prefs);
        EXPECT_EQ(quality.hq(), c.hq) << (c.dataSaver ? c.dataSaver : "-");
        EXPECT_EQ(prefs->contains("hqPlayback"), c.hqAfter.has_value());
        if (c.hqAfter) {
            EXPECT_EQ(prefs->boolValue("hqPlayback"), *c.hqAfter);
        }
        if (c.dataSaver) {
            EXPECT_EQ(prefs->stringValue("dataSaver"), c.dataSaver);
        }
    }
}

TEST(Preferences, ObjectsWriteThroughAndReadBack)
{
    IsolatedPrefs p;
    {
        UnitsPref units(*p.prefs);
        ThemeManager theme(*p.prefs);
        PlaybackQuality quality(*p.prefs);
        EXPECT_FALSE(units.metric());
        EXPECT_EQ(theme.pref(), ThemeManager::ThemePref::system);
        units.setMetric(true);
        theme.setPref(ThemeManager::ThemePref::field);
        quality.setHq(true);
    }
    auto prefs = p.reopen();
    EXPECT_TRUE(UnitsPref(*prefs).metric());
    EXPECT_TRUE(PlaybackQuality(*prefs).hq());
    EXPECT_EQ(prefs->stringValue("themePref"), "field");
    EXPECT_EQ(ThemeManager(*prefs).pref(), ThemeManager::ThemePref::field);
    // Text written by hand into the file still reads as a boolean.
    prefs->setValue("metricUnits", "0");
    EXPECT_FALSE(UnitsPref(*prefs).metric());
}

TEST(Preferences, ThemeResolvesAgainstTheSystem)
{
    IsolatedPrefs p;
    p.prefs->setValue("themePref", "neon");
    ThemeManager theme(*p.prefs);
    EXPECT_EQ(theme.pref(), ThemeManager::ThemePref::system);
    theme.setSystemDark(false);
    EXPECT_FALSE(theme.dark());
    theme.setPref(ThemeManager::ThemePref::cockpit);
    EXPECT_TRUE(theme.dark());
    theme.setSystemDark(true);
    theme.setPref(ThemeManager::ThemePref::field);
    EXPECT_FALSE(theme.dark());
    EXPECT_EQ(ThemeManager::labels(), QStringList({"System", "Dark", "Light"}));
}

TEST(Units, ConversionsAndTimeTexts)
{
    EXPECT_EQ(int(Units::altitude(100, false)), 328);
    EXPECT_EQ(int(Units::speed(10, false)), 22);
    EXPECT_DOUBLE_EQ(Units::speed(10, true), 36.0);
    EXPECT_DOUBLE_EQ(Units::distance(1500, true), 1.5);
    EXPECT_NEAR(Units::distance(1609.344, false), 1.0, 1e-6);
    EXPECT_EQ(Units::altitudeUnit(false), "ft");
    EXPECT_EQ(Units::speedUnit(true), "km/h");
    EXPECT_EQ(Units::distanceUnit(false), "mi");

    EXPECT_EQ(Units::timeText(-3), "0:00");
    EXPECT_EQ(Units::timeText(59.9), "0:59");
    EXPECT_EQ(Units::timeText(3599), "59:59");
    EXPECT_EQ(Units::timeText(3600), "60:00");
    EXPECT_EQ(Units::timeTextTenths(59.9), "0:59.9");
    EXPECT_EQ(Units::timeTextTenths(75.25), "1:15.2");
    EXPECT_EQ(Units::timeTextTenths(-1), "0:00.0");
    EXPECT_EQ(Units::timeTextTenths(std::nan("")), "0:00.0");
}
