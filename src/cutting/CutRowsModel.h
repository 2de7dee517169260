#pragma once

#include "CutPlanRow.h"

#include <QAbstractListModel>
#include <QList>

/// @brief The cut screen's table: one row per cut-list entry with its Label, Output and Status.
class CutRowsModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)
public:
    enum Role {
        LabelRole = Qt::UserRole + 1,  ///< "Cliffs  (4.5s)"
        OutputRole,                    ///< the clip's file name
        StatusTextRole,                ///< the Status column's words
        StatusRole,                    ///< the status case, "pending", "cutting", "missingSource", ...
        ProgressRole,                  ///< 0 to 1 while cutting
    };
    Q_ENUM(Role)

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return static_cast<int>(m_rows.size()); }
    [[nodiscard]] const QList<CutPlanRow> &rows() const { return m_rows; }
    void setRows(QList<CutPlanRow> rows);
    /// Nothing happens for an index that is no longer there (the plan changed meanwhile).
    void setStatus(int row, const CutPlanRow::Status &status);

Q_SIGNALS:
    void countChanged();
    /// Any row's status changed, or the rows were replaced.
    void statusesChanged();

private:
    QList<CutPlanRow> m_rows;
};
