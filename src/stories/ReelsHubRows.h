#pragma once

#include "RenderRecords.h"
#include "StoryRecords.h"

#include <QAbstractListModel>
#include <QUrl>

#include <functional>

/// @brief The stories the hub shows after its filter, one row each.
///
/// Roles: `storyId`, `title`, `countText` ("3 clips · May 4"), `empty` (no clips), `videoCount`,
/// `videosText` ("2 videos", empty without any), `shared`, `latestVideoId` and `latestVideoUrl`
/// (the story's first video in the library's order, empty without one), `coverUrl`.
class ReelsHubRows : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCountProperty NOTIFY countChanged FINAL)
public:
    enum Role {
        StoryIdRole = Qt::UserRole + 1,
        TitleRole,
        CountTextRole,
        EmptyRole,
        VideoCountRole,
        VideosTextRole,
        SharedRole,
        LatestVideoIdRole,
        LatestVideoUrlRole,
        CoverRole,
    };
    Q_ENUM(Role)

    struct Row {
        ProjectSummary summary;
        QList<RenderEntry> videos;
        bool shared = false;
        QUrl cover;
        bool operator==(const Row &) const = default;
    };

    using QAbstractListModel::QAbstractListModel;

    /// Rows that are the same stories in the same order are updated in place.
    void setRows(QList<Row> rows);
    [[nodiscard]] const QList<Row> &rows() const { return m_rows; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();

private:
    [[nodiscard]] int rowCountProperty() const { return int(m_rows.size()); }

    QList<Row> m_rows;
};
