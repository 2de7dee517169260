#pragma once

#include "ClipRecords.h"
#include "StoryRecords.h"

#include <QAbstractListModel>
#include <QUrl>

#include <functional>

/// @brief The items of the open story as rows, for the detail screen's cut list.
///
/// A view over the list `ReelModel` edits: the model tells it each insert, removal, move and
/// change, so rows keep their place and identity across edits.
///
/// Roles: `uid` (text), `label` (the clip's, or "Untitled clip"), `thumbUrl`, `lengthText` (tenths
/// form), `start`, `end`, `flightId`, `inLibrary` (false when the clip was deleted from its
/// flight: the row still shows, with the item's own label).
class ReelItemsModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCountProperty NOTIFY countChanged FINAL)
public:
    enum Role { UidRole = Qt::UserRole + 1, LabelRole, ThumbRole, LengthRole, StartRole, EndRole, FlightRole, InLibraryRole };
    Q_ENUM(Role)

    struct Source {
        const QList<ReelItem> *items = nullptr;
        std::function<const QList<PoolClip> &()> pool;
        std::function<QUrl(const ReelItem &, const std::optional<PoolClip> &)> thumbUrl;
    };

    explicit ReelItemsModel(Source source, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Called by the owner around its edits.
    void aboutToInsert(int row) { beginInsertRows({}, row, row); }
    void inserted() { endInsertRows(); Q_EMIT countChanged(); }
    void aboutToRemove(int first, int last) { beginRemoveRows({}, first, last); }
    void removed() { endRemoveRows(); Q_EMIT countChanged(); }
    /// False when the move leaves the order as it is (nothing to do).
    bool aboutToMove(int from, int to) { return beginMoveRows({}, from, from, {}, to); }
    void moved() { endMoveRows(); }
    void changed(int row) { Q_EMIT dataChanged(index(row), index(row)); }
    void changedAll();
    void reset(const std::function<void()> &change);

Q_SIGNALS:
    void countChanged();

private:
    [[nodiscard]] int rowCountProperty() const { return rowCount(); }

    Source m_source;
};
