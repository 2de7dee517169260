#pragma once

#include "ClipRecords.h"

#include <QAbstractListModel>
#include <QList>

/// @brief One side of the player's clip list (the pilot's clips or the server's suggestions),
/// as rows for QML. Replaced whole whenever the flight's clips change.
///
/// Roles: `clipId`, `label` (as stored, may be empty), `title` (the label or "Untitled clip"),
/// `start`, `end` (seconds), `rangeText` ("0:12 – 0:18"), `lengthText` (tenths form), `why`
/// (the server's reason, or empty), `suggestion` (bool).
class PlayerClipRows : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged FINAL)
public:
    enum Role { ClipIdRole = Qt::UserRole + 1, LabelRole, TitleRole, StartRole, EndRole, RangeTextRole,
                LengthTextRole, WhyRole, SuggestionRole };
    Q_ENUM(Role)

    using QAbstractListModel::QAbstractListModel;

    void setClips(const QList<Clip> &clips);
    [[nodiscard]] const QList<Clip> &clips() const { return m_clips; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();

private:
    QList<Clip> m_clips;
};
