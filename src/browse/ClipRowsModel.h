#pragma once

#include "ClipPool.h"

#include <QAbstractListModel>
#include <QVariantMap>

#include <functional>

/// @brief The clips browser's sections laid out for a scrolling list: a heading row per
/// labelled section, then rows of up to `columns` clip cards. Cards are made when the view asks
/// for a row, so a library of thousands of clips costs only what is on screen.
///
/// Roles: `kind` ("header" or "cards"), `label` (heading text), `count` (clips in the
/// section), `cards` (list of card maps, made by the owner's card function).
class ClipRowsModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int columns READ columns WRITE setColumns NOTIFY columnsChanged FINAL)
    Q_PROPERTY(int count READ rowCountProperty NOTIFY countChanged FINAL)
public:
    enum Role { KindRole = Qt::UserRole + 1, LabelRole, CountRole, CardsRole };
    Q_ENUM(Role)

    using CardMaker = std::function<QVariantMap(const PoolClip &)>;

    explicit ClipRowsModel(CardMaker card, QObject *parent = nullptr);

    [[nodiscard]] int columns() const { return m_columns; }
    void setColumns(int columns);

    /// New sections: the rows are laid out afresh.
    void setGroups(QList<ClipGroup> groups);
    /// Same sections, changed card state (picks): rows keep their place.
    void refreshCards();

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void columnsChanged();
    void countChanged();

private:
    struct Row {
        int group = 0;
        qsizetype first = -1;  ///< into the group's items; -1 for the heading
        qsizetype count = 0;
    };
    void layOut();
    [[nodiscard]] int rowCountProperty() const { return int(m_rows.size()); }

    CardMaker m_card;
    QList<ClipGroup> m_groups;
    QList<Row> m_rows;
    int m_columns = 4;
};
