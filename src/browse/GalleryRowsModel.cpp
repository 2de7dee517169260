#include "GalleryRowsModel.h"

#include "Units.h"

void GalleryRowsModel::setColumns(int columns)
{
    columns = std::max(1, columns);
    if (columns == m_columns)
        return;
    m_columns = columns;
    beginResetModel();
    layOut();
    endResetModel();
    Q_EMIT columnsChanged();
    Q_EMIT countChanged();
}

void GalleryRowsModel::setGroups(QList<FlightGroup> groups, CardContext context)
{
    beginResetModel();
    m_groups = std::move(groups);
    m_context = std::move(context);
    layOut();
    endResetModel();
    Q_EMIT countChanged();
}

void GalleryRowsModel::refreshCards(CardContext context)
{
    m_context = std::move(context);
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), {CardsRole});
}

void GalleryRowsModel::layOut()
{
    m_rows.clear();
    for (int g = 0; g < m_groups.size(); ++g) {
        const FlightGroup &group = m_groups[g];
        if (!group.label.isEmpty())
            m_rows.append(Row{true, g, 0, group.items.size()});
        for (qsizetype first = 0; first < group.items.size(); first += m_columns)
            m_rows.append(Row{false, g, first, std::min<qsizetype>(m_columns, group.items.size() - first)});
    }
}

int GalleryRowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant GalleryRowsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Row &row = m_rows[index.row()];
    const FlightGroup &group = m_groups[row.group];
    switch (role) {
    case KindRole:
        return row.header ? QStringLiteral("header") : QStringLiteral("cards");
    case LabelRole:
        return group.label;
    case CountRole:
        return int(group.items.size());
    case CardsRole: {
        if (row.header)
            return QVariantList();
        QVariantList cards;
        for (qsizetype i = row.first; i < row.first + row.count; ++i)
            cards.append(card(group.items[i]));
        return cards;
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> GalleryRowsModel::roleNames() const
{
    return {{KindRole, "kind"}, {LabelRole, "label"}, {CountRole, "count"}, {CardsRole, "cards"}};
}

QVariantMap GalleryRowsModel::card(int flightIndex) const
{
    if (!m_context.library || flightIndex < 0 || flightIndex >= m_context.library->flights.size())
        return {};
    const GalleryLibrary &library = *m_context.library;
    const Flight &flight = library.flights[flightIndex];
    const bool metric = m_context.metric;
    return {
        {QStringLiteral("id"), flight.id},
        {QStringLiteral("title"), flight.place.value_or(QString())},
        {QStringLiteral("dateText"), library.facts[flightIndex].dateLabel},
        {QStringLiteral("model"), flight.model.value_or(QString())},
        {QStringLiteral("durationText"), flight.durationText()},
        {QStringLiteral("altitudeText"),
         QStringLiteral("%1 %2").arg(flight.maxAltitudeDisplay(metric)).arg(Units::altitudeUnit(metric))},
        {QStringLiteral("speedText"),
         QStringLiteral("%1 %2").arg(flight.maxSpeedDisplay(metric)).arg(Units::speedUnit(metric))},
        {QStringLiteral("clipCount"), library.clipCounts.value(flight.id, 0)},
        {QStringLiteral("hidden"), library.hiddenIDs.contains(flight.id)},
        {QStringLiteral("selected"), m_context.selected && m_context.selected->contains(flight.id)},
        {QStringLiteral("thumbUrl"), m_context.thumbUrl ? m_context.thumbUrl(flight.id) : QUrl()},
    };
}
