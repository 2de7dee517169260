#include "ClipPool.h"

#include "ClipMaker.h"

#include <gtest/gtest.h>

namespace {
QStringList starts(const QList<PoolClip> &clips)
{
    QStringList out;
    for (const PoolClip &c : clips)
        out.append(c.flightId + "@" + QString::number(c.start));
    return out;
}
QStringList labels(const QList<ClipGroup> &groups)
{
    QStringList out;
    for (const ClipGroup &g : groups)
        out.append(g.label + " (" + QString::number(g.items.size()) + ")");
    return out;
}
} // namespace

TEST(ClipPoolOrder, NewestDateFirstThenStartWithUndatedLast)
{
    const QList<PoolClip> sorted = ClipPool::sorted({
        ClipMaker("A", 30, 35).date("2024-05-01T10:00:00"),
        ClipMaker("U", 1, 2),
        ClipMaker("B", 5, 9).date("2024-06-02T08:00:00"),
        ClipMaker("A", 10, 12).date("2024-05-01T10:00:00"),
        ClipMaker("C", 7, 8).date(""),
    });
    // Undated reads as "", which sorts below every date, the empty one included.
    EXPECT_EQ(starts(sorted), QStringList({"B@5", "A@10", "A@30", "U@1", "C@7"}));
}

TEST(ClipPoolOrder, FiltersSplitSuggestionsFromThePilotsOwn)
{
    const QList<PoolClip> all{ClipMaker("A", 1, 2).suggested(), ClipMaker("A", 3, 4).suggested(false),
                              ClipMaker("A", 5, 6)};
    EXPECT_EQ(starts(ClipPool::visible(all, ClipsFilter::suggested)), QStringList({"A@1"}));
    // An "auto" of false or none at all makes a clip the pilot's.
    EXPECT_EQ(starts(ClipPool::visible(all, ClipsFilter::mine)), QStringList({"A@3", "A@5"}));
    EXPECT_EQ(ClipPool::visible(all, ClipsFilter::all).size(), 3);
}

TEST(ClipPoolGroups, PlacesBiggestFirstWithTiesByName)
{
    const QList<PoolClip> clips{
        ClipMaker("A", 1, 2).place("Vík"),      ClipMaker("B", 1, 2).place("Reykjavík"),
        ClipMaker("C", 1, 2),                   ClipMaker("D", 1, 2).place("Reykjavík"),
        ClipMaker("E", 1, 2).place("Akureyri"), ClipMaker("F", 1, 2).place("Vík"),
    };
    const auto groups = ClipPool::groups(clips, ClipsGroupMode::place);
    EXPECT_EQ(labels(groups), QStringList({"Reykjavík (2)", "Vík (2)", "Akureyri (1)", "Unknown place (1)"}));
    // Inside a group the clips keep the list's order.
    EXPECT_EQ(starts(groups[1].items), QStringList({"A@1", "F@1"}));
}

TEST(ClipPoolGroups, MonthsNewestFirstAndEveryUnreadableDateIsUnknown)
{
    const QList<PoolClip> clips{
        ClipMaker("A", 1, 2).date("2024-05-01T10:00:00"), ClipMaker("B", 1, 2).date("2024-13-01T10:00:00"),
        ClipMaker("C", 1, 2),                             ClipMaker("D", 1, 2).date("2024-06-30T10:00:00"),
        ClipMaker("E", 1, 2).date("2024-05-20T10:00:00"), ClipMaker("F", 1, 2).date("2024"),
    };
    const auto groups = ClipPool::groups(clips, ClipsGroupMode::month);
    QStringList ids;
    for (const ClipGroup &g : groups)
        ids.append(g.id);
    EXPECT_EQ(ids, QStringList({"2024-13", "2024-06", "2024-05", "2024", ""}));
    EXPECT_EQ(labels(groups),
              QStringList({"Unknown date (1)", "June 2024 (1)", "May 2024 (2)", "Unknown date (1)", "Unknown date (1)"}));
}

TEST(ClipPoolGroups, FlatIsOneUnlabelledGroup)
{
    const auto groups = ClipPool::groups({ClipMaker("A", 1, 2).place("Vík"), ClipMaker("B", 1, 2)}, ClipsGroupMode::flat);
    ASSERT_EQ(groups.size(), 1);
    EXPECT_EQ(groups[0].id, "all");
    EXPECT_EQ(groups[0].label, "");
    EXPECT_EQ(groups[0].items.size(), 2);
    EXPECT_EQ(ClipPool::groups({}, ClipsGroupMode::flat)[0].items.size(), 0);
}

TEST(ClipPoolWords, CountLineAndPlaces)
{
    EXPECT_EQ(ClipPool::countLine({ClipMaker("A", 10, 15.9)}), "1 clip · 0:05 of footage");
    // A clip whose end comes before its start adds nothing.
    EXPECT_EQ(ClipPool::countLine({ClipMaker("A", 0, 40), ClipMaker("B", 50, 20), ClipMaker("C", 0, 35)}),
              "3 clips · 1:15 of footage");
    EXPECT_EQ(ClipPool::countLine({}), "0 clips · 0:00 of footage");
    EXPECT_EQ(ClipPool::placeCount(1), "1 place");
    EXPECT_EQ(ClipPool::placeCount(3), "3 places");
}

TEST(ClipPoolStory, TitleCountsOnlyNamedPlaces)
{
    EXPECT_EQ(ClipPool::storyTitle({ClipMaker("A", 1, 2).place("Reykjavík"), ClipMaker("B", 1, 2)}), "Reykjavík story");
    EXPECT_EQ(ClipPool::storyTitle({ClipMaker("A", 1, 2).place("Vík"), ClipMaker("B", 1, 2).place("Vík")}), "Vík story");
    EXPECT_EQ(ClipPool::storyTitle({ClipMaker("A", 1, 2).place("Vík"), ClipMaker("B", 1, 2).place("Höfn")}),
              "My clips story");
    EXPECT_EQ(ClipPool::storyTitle({ClipMaker("A", 1, 2).place("")}), "My clips story");
}

TEST(ClipPoolStory, OnlyKnownOrientationsCanMix)
{
    const PoolClip tall = ClipMaker("A", 1, 2).vertical(true);
    const PoolClip wide = ClipMaker("B", 1, 2).vertical(false);
    const PoolClip unknown = ClipMaker("C", 1, 2).vertical(std::nullopt);
    EXPECT_FALSE(ClipPool::mixedAspect({tall, unknown}));
    EXPECT_FALSE(ClipPool::mixedAspect({wide, unknown, wide}));
    EXPECT_TRUE(ClipPool::mixedAspect({tall, unknown, wide}));
}

TEST(ClipPoolRetrim, HundredthsAndAThumbnailNamedAfterTheNewStart)
{
    EXPECT_DOUBLE_EQ(ClipPool::hundredths(12.344), 12.34);
    EXPECT_DOUBLE_EQ(ClipPool::hundredths(0.125), 0.13);    // a half, exactly representable
    EXPECT_DOUBLE_EQ(ClipPool::hundredths(-0.125), -0.13);  // away from zero

    const PoolClip kept = ClipPool::retrimmed(ClipMaker("F1", 10, 20).id("c2").suggested().thumb("old.jpg"), 12.35, 18);
    EXPECT_EQ(kept.autoSuggested, std::optional<bool>(false));
    EXPECT_EQ(kept.thumb, std::optional<QString>("flights/F1/clipthumb_c2_124.jpg"));  // 123.5 rounds up
    EXPECT_EQ(kept.identity(), "F1-c2-12.35");

    // A clip without an id has no thumbnail of its own to rename.
    const PoolClip unnamed = ClipPool::retrimmed(ClipMaker("F1", 10, 20).thumb("flights/F1/thumb.jpg"), 11, 19);
    EXPECT_EQ(unnamed.thumb, std::optional<QString>("flights/F1/thumb.jpg"));
}
