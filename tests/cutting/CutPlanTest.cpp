// Matching a cut list to the originals on disk: the index of stems, the rows it plans, and the
// refresh that lets another folder resolve missing clips without losing finished ones.
#include <CutPlanner.h>
#include <OriginalsIndex.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

using Kind = CutPlanRow::Status::Kind;

class CutPlan : public ::testing::Test
{
protected:
    QString touch(const QString &relative, const QByteArray &bytes = "x")
    {
        const QString path = dir.filePath(relative);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }
    static EDLItem item(int seq, std::optional<QString> source, std::optional<double> start, std::optional<double> end,
                        QString output = {})
    {
        EDLItem i;
        i.seq = seq;
        i.source = std::move(source);
        i.start = start;
        i.end = end;
        i.label = QStringLiteral("Clip %1").arg(seq);
        i.output = std::move(output);
        return i;
    }
    static QList<Kind> kinds(const QList<CutPlanRow> &rows)
    {
        QList<Kind> out;
        for (const auto &row : rows)
            out << row.status.kind;
        return out;
    }

    QTemporaryDir dir;
};

} // namespace

TEST_F(CutPlan, TheFirstOriginalOfAStemWinsAcrossFoldersAndCases)
{
    const QString first = touch("cardA/DCIM/100MEDIA/DJI_0001.MP4");
    touch("cardB/dji_0001.mov");  // the same stem in another folder and case
    touch("cardB/DJI_0002.Mov");
    touch("cardB/DJI_0003.SRT");  // not a video
    touch("cardB/.hidden/DJI_0004.MP4");
    touch("cardB/.DJI_0005.MP4");

    const auto index = OriginalsIndex::build({dir.filePath("cardA"), dir.filePath("cardB")});
    EXPECT_EQ(index.size(), 2);
    EXPECT_EQ(index.value("dji_0001"), first);
    EXPECT_TRUE(index.contains("dji_0002"));

    // A later merge keeps the first original, whichever folder it walks.
    const auto merged = OriginalsIndex::build({dir.filePath("cardB")}, index);
    EXPECT_EQ(merged.value("dji_0001"), first);
    // A folder that can't be read leaves what was there.
    EXPECT_EQ(OriginalsIndex::build({dir.filePath("nowhere")}, index), index);
}

TEST_F(CutPlan, RowsTakeTheFirstRuleThatApplies)
{
    const QString out = dir.filePath("out");
    touch("card/DJI_0001.MP4");
    const auto index = OriginalsIndex::build({dir.filePath("card")});
    EDL edl;
    edl.id = "p1";
    edl.slug = "ridge";
    edl.items = {item(1, "DJI_0001", 1, 3),                          // ready
                 item(2, "dji_0001", 3, 3),                          // zero length beats everything
                 item(3, "DJI_0009", 1, 2),                          // no original
                 item(4, std::nullopt, 1, 2),                        // no source named at all
                 item(5, "Dji_0001", std::nullopt, 2),               // no start
                 item(6, "DJI_0001", 2, 4, "named.mp4"),             // already cut
                 item(7, "DJI_0001", 4, 5, "empty.mp4")};            // an empty file is no clip
    touch("out/named.mp4");
    touch("out/empty.mp4", {});

    auto rows = CutPlanner::plan(edl, index, out, false);
    EXPECT_EQ(kinds(rows), (QList<Kind>{Kind::pending, Kind::zeroDuration, Kind::missingSource, Kind::missingSource,
                                        Kind::zeroDuration, Kind::existing, Kind::pending}));
    EXPECT_EQ(rows[0].outURL, out + "/ridge_01.mp4");
    EXPECT_EQ(rows[0].sourceURL, index.value("dji_0001"));
    EXPECT_EQ(rows[0].labelText(), QStringLiteral("Clip 1  (2.0s)"));
    EXPECT_EQ(rows[0].status.words(), QStringLiteral("Ready"));
    EXPECT_EQ(rows[2].status.words(), QStringLiteral("No original"));

    // "Re-cut existing" makes every cut clip ready again.
    rows = CutPlanner::plan(edl, index, out, true);
    EXPECT_EQ(rows[5].status.kind, Kind::pending);
}

TEST_F(CutPlan, NamesFromTheServerStayInsideTheSaveFolder)
{
    EDL edl;
    edl.id = "p/../1";
    edl.items = {item(1, "a", 0, 1, "../../escape.mp4"), item(2, "a", 0, 1, ".."), item(12, "a", 0, 1)};
    const auto rows = CutPlanner::plan(edl, {}, dir.filePath("out"), false);
    for (const auto &row : rows)
        EXPECT_EQ(QFileInfo(row.outURL).absolutePath(), dir.filePath("out")) << row.outURL.toStdString();
    EXPECT_EQ(QFileInfo(rows[2].outURL).fileName(), QStringLiteral("p_.._1_12.mp4"));

    EXPECT_EQ(CutPlanner::reelBase(std::nullopt), QStringLiteral("reel"));
    edl.slug = "..";
    EXPECT_EQ(CutPlanner::reelBase(edl), QStringLiteral("reel"));
    edl.slug = "";
    EXPECT_EQ(CutPlanner::reelBase(edl), QStringLiteral("p_.._1"));
}

TEST_F(CutPlan, AnotherFolderResolvesMissingRowsAndKeepsFinishedOnes)
{
    EDL edl;
    edl.id = "p1";
    edl.items = {item(1, "DJI_0001", 0, 1), item(2, "DJI_0002", 0, 1), item(3, "DJI_0003", 0, 1), item(4, "DJI_0004", 0, 1)};
    const QString out = dir.filePath("out");
    touch("a/DJI_0001.MP4");
    auto index = OriginalsIndex::build({dir.filePath("a")});
    auto rows = CutPlanner::plan(edl, index, out, false);
    rows[0].status = CutPlanRow::Status::of(Kind::done);
    rows[1].status = CutPlanRow::Status::failed("ffmpeg exited 1");
    touch("out/p1_04.mp4");

    index.insert("dji_0002", touch("b/DJI_0002.MP4"));
    index.insert("dji_0003", touch("b/DJI_0003.MP4"));
    index.insert("dji_0004", touch("b/DJI_0004.MP4"));
    CutPlanner::refresh(rows, index, false);
    EXPECT_EQ(kinds(rows), (QList<Kind>{Kind::done, Kind::failed, Kind::pending, Kind::existing}));
    EXPECT_EQ(rows[2].sourceURL, index.value("dji_0003"));
    EXPECT_EQ(rows[1].status.words(), QStringLiteral("ffmpeg exited 1"));
}
