#include "ClipRowsModel.h"

ClipRowsModel::ClipRowsModel(CardMaker card, QObject *parent) : QAbstractListModel(parent), m_card(std::move(card)) {}

void ClipRowsModel::setColumns(int columns)
{
    columns = std::max(1, columns);
    if (columns == m_columns)
        return;
    beginResetModel();
    m_columns = columns;
    layOut();
    endResetModel();
    Q_EMIT columnsChanged();
    Q_EMIT countChanged();
}

void ClipRowsModel::setGroups(QList<ClipGroup> groups)
{
    beginResetModel();
    m_groups = std::move(groups);
    layOut();
    endResetModel();
    Q_EMIT countChanged();
}

void ClipRowsModel::refreshCards()
{
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), {CardsRole});
}

void ClipRowsModel::layOut()
{
    m_rows.clear();
    for (int g = 0; g < m_groups.size(); ++g) {
        const auto size = m_groups[g].items.size();
        if (!m_groups[g].label.isEmpty())
            m_rows.append(Row{g, -1, size});
        for (qsizetype first = 0; first < size; first += m_columns)
            m_rows.append(Row{g, first, std::min<qsizetype>(m_columns, size - first)});
    }
}

int ClipRowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant ClipRowsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Row &row = m_rows[index.row()];
    const ClipGroup &group = m_groups[row.group];
    const bool heading = row.first < 0;
    switch (role) {
    case KindRole:
        return heading ? QStringLiteral("header") : QStringLiteral("cards");
    case LabelRole:
        return group.label;
    case CountRole:
        return int(group.items.size());
    case CardsRole: {
        QVariantList cards;
        if (!heading)
            for (qsizetype i = row.first; i < row.first + row.count; ++i)
                cards.append(m_card(group.items[i]));
        return cards;
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> ClipRowsModel::roleNames() const
{
    return {{KindRole, "kind"}, {LabelRole, "label"}, {CountRole, "count"}, {CardsRole, "cards"}};
}
