#pragma once

#include "GalleryQuery.h"

#include <QAbstractListModel>
#include <QSet>
#include <QUrl>

#include <functional>

/// @brief The gallery's groups laid out for a scrolling list: a header row per titled section,
/// then rows of up to `columns` cards. Cards are made when the view asks for a row, so a library
/// of thousands costs only what is on screen.
///
/// Roles: `kind` ("header" or "cards"), `label` (header text), `count` (flights in the section),
/// `cards` (list of card maps: id, title, dateText, durationText, altitudeText, speedText,
/// clipCount, hidden, selected, thumbUrl).
class GalleryRowsModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int columns READ columns WRITE setColumns NOTIFY columnsChanged FINAL)
    Q_PROPERTY(int count READ rowCountProperty NOTIFY countChanged FINAL)
public:
    enum Role { KindRole = Qt::UserRole + 1, LabelRole, CountRole, CardsRole };
    Q_ENUM(Role)

    /// What a card shows besides the flight itself.
    struct CardContext {
        const GalleryLibrary *library = nullptr;
        const QStringList *selected = nullptr;
        bool metric = false;
        std::function<QUrl(const QString &)> thumbUrl;
    };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int columns() const { return m_columns; }
    void setColumns(int columns);

    /// New sections: the rows are laid out afresh.
    void setGroups(QList<FlightGroup> groups, CardContext context);
    /// Same sections, changed card state (selection, units): rows keep their place.
    void refreshCards(CardContext context);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// The card map of one flight (also what the tests read).
    [[nodiscard]] QVariantMap card(int flightIndex) const;

Q_SIGNALS:
    void columnsChanged();
    void countChanged();

private:
    struct Row {
        bool header = false;
        int group = 0;
        qsizetype first = 0;  ///< into the group's items
        qsizetype count = 0;
    };
    void layOut();
    [[nodiscard]] int rowCountProperty() const { return int(m_rows.size()); }

    QList<FlightGroup> m_groups;
    QList<Row> m_rows;
    CardContext m_context;
    int m_columns = 4;
};
