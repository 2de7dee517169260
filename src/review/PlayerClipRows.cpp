#include "PlayerClipRows.h"

#include "ClipPrompts.h"
#include "Units.h"

void PlayerClipRows::setClips(const QList<Clip> &clips)
{
    if (clips == m_clips)
        return;
    const bool resized = clips.size() != m_clips.size();
    beginResetModel();
    m_clips = clips;
    endResetModel();
    if (resized)
        Q_EMIT countChanged();
}

int PlayerClipRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_clips.size());
}

QVariant PlayerClipRows::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Clip &clip = m_clips[index.row()];
    switch (role) {
    case ClipIdRole:
        return clip.id;
    case LabelRole:
        return clip.label;
    case Qt::DisplayRole:
    case TitleRole:
        return clip.label.isEmpty() ? QStringLiteral("Untitled clip") : clip.label;
    case StartRole:
        return clip.start;
    case EndRole:
        return clip.end;
    case RangeTextRole:
        return Units::wholeTime(clip.start) + QStringLiteral(" – ") + Units::wholeTime(clip.end);
    case LengthTextRole:
        return Units::tenthsTime(clip.end - clip.start);
    case WhyRole:
        return clip.why.value_or(QString());
    case SuggestionRole:
        return ClipPrompts::isSuggestion(clip);
    default:
        return {};
    }
}

QHash<int, QByteArray> PlayerClipRows::roleNames() const
{
    return {{ClipIdRole, "clipId"},         {LabelRole, "label"},       {TitleRole, "title"},
            {StartRole, "start"},           {EndRole, "end"},           {RangeTextRole, "rangeText"},
            {LengthTextRole, "lengthText"}, {WhyRole, "why"},           {SuggestionRole, "suggestion"}};
}
