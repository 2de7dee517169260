#include "ReelItemsModel.h"

#include "ReelMatch.h"
#include "Units.h"

ReelItemsModel::ReelItemsModel(Source source, QObject *parent) : QAbstractListModel(parent), m_source(std::move(source)) {}

int ReelItemsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() || !m_source.items ? 0 : int(m_source.items->size());
}

QVariant ReelItemsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const ReelItem &item = m_source.items->at(index.row());
    switch (role) {
    case UidRole:
        return item.uid.toString(QUuid::WithoutBraces);
    case LabelRole:
        return item.label.isEmpty() ? QStringLiteral("Untitled clip") : item.label;
    case ThumbRole:
        return m_source.thumbUrl ? m_source.thumbUrl(item, ReelMatch::poolClip(item, m_source.pool())) : QUrl();
    case LengthRole:
        return Units::tenthsTime(item.end - item.start);
    case StartRole:
        return item.start;
    case EndRole:
        return item.end;
    case FlightRole:
        return item.flightId.value_or(QString());
    case InLibraryRole:
        return ReelMatch::poolClip(item, m_source.pool()).has_value();
    default:
        return {};
    }
}

QHash<int, QByteArray> ReelItemsModel::roleNames() const
{
    return {{UidRole, "uid"},     {LabelRole, "label"}, {ThumbRole, "thumbUrl"}, {LengthRole, "lengthText"},
            {StartRole, "start"}, {EndRole, "end"},     {FlightRole, "flightId"}, {InLibraryRole, "inLibrary"}};
}

void ReelItemsModel::changedAll()
{
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

void ReelItemsModel::reset(const std::function<void()> &change)
{
    beginResetModel();
    change();
    endResetModel();
    Q_EMIT countChanged();
}
