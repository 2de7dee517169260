#include "CutRowsModel.h"

#include <QFileInfo>

int CutRowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant CutRowsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() < 0 || index.row() >= count())
        return {};
    const CutPlanRow &row = m_rows[index.row()];
    switch (role) {
    case LabelRole:
        return row.labelText();
    case OutputRole:
        return QFileInfo(row.outURL).fileName();
    case StatusTextRole:
        return row.status.words();
    case StatusRole:
        return row.status.name();
    case ProgressRole:
        return row.status.kind == CutPlanRow::Status::Kind::cutting ? row.status.fraction : 0.0;
    default:
        return {};
    }
}

QHash<int, QByteArray> CutRowsModel::roleNames() const
{
    return {{LabelRole, "label"}, {OutputRole, "output"}, {StatusTextRole, "statusText"}, {StatusRole, "status"},
            {ProgressRole, "progress"}};
}

void CutRowsModel::setRows(QList<CutPlanRow> rows)
{
    const bool sizeChanges = rows.size() != m_rows.size();
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
    if (sizeChanges)
        Q_EMIT countChanged();
    Q_EMIT statusesChanged();
}

void CutRowsModel::setStatus(int row, const CutPlanRow::Status &status)
{
    if (row < 0 || row >= count() || m_rows[row].status == status)
        return;
    m_rows[row].status = status;
    const QModelIndex at = index(row);
    Q_EMIT dataChanged(at, at, {StatusTextRole, StatusRole, ProgressRole});
    Q_EMIT statusesChanged();
}
