#include "ReelsHubRows.h"

void ReelsHubRows::setRows(QList<Row> rows)
{
    bool sameStories = rows.size() == m_rows.size();
    for (qsizetype i = 0; sameStories && i < rows.size(); ++i)
        sameStories = rows[i].summary.id == m_rows[i].summary.id;
    if (sameStories) {
        for (qsizetype i = 0; i < rows.size(); ++i) {
            if (rows[i] == m_rows[i])
                continue;
            m_rows[i] = std::move(rows[i]);
            Q_EMIT dataChanged(index(int(i)), index(int(i)));
        }
        return;
    }
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
    Q_EMIT countChanged();
}

int ReelsHubRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant ReelsHubRows::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Row &row = m_rows[index.row()];
    const int videos = int(row.videos.size());
    switch (role) {
    case StoryIdRole:
        return row.summary.id;
    case TitleRole:
        return row.summary.title;
    case CountTextRole:
        return row.summary.subtitle();
    case EmptyRole:
        return row.summary.count == 0;
    case VideoCountRole:
        return videos;
    case VideosTextRole:
        return videos == 0 ? QString() : QStringLiteral("%1 video%2").arg(videos).arg(videos == 1 ? "" : "s");
    case SharedRole:
        return row.shared;
    case LatestVideoIdRole:
        return videos ? row.videos.first().id : QString();
    case LatestVideoUrlRole:
        return videos ? row.videos.first().url.value_or(QString()) : QString();
    case CoverRole:
        return row.cover;
    default:
        return {};
    }
}

QHash<int, QByteArray> ReelsHubRows::roleNames() const
{
    return {{StoryIdRole, "storyId"},     {TitleRole, "title"},           {CountTextRole, "countText"},
            {EmptyRole, "empty"},         {VideoCountRole, "videoCount"}, {VideosTextRole, "videosText"},
            {SharedRole, "shared"},       {LatestVideoIdRole, "latestVideoId"},
            {LatestVideoUrlRole, "latestVideoUrl"}, {CoverRole, "coverUrl"}};
}
