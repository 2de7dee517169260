#include "TrimSheetModel.h"

#include "APIClient.h"
#include "ClipFilmstrip.h"
#include "Units.h"

TrimSheetModel::TrimSheetModel(std::shared_ptr<APIClient> client, LightboxEngine::PlayerFactory makePlayer,
                               QObject *parent)
    : QObject(parent), m_client(std::move(client)), m_engine(new LightboxEngine(std::move(makePlayer), this)),
      m_strip(new ClipFilmstrip(m_engine, minClip, this))
{
    connect(m_strip, &ClipFilmstrip::draftChanged, this, &TrimSheetModel::lengthChanged);
    connect(m_strip, &ClipFilmstrip::clipChanged, this, &TrimSheetModel::lengthChanged);
    connect(m_strip, &ClipFilmstrip::handleCommitted, this,
            [this](double start, double end) { Q_EMIT changed(m_key, start, end); });
}

TrimSheetModel::~TrimSheetModel() = default;

void TrimSheetModel::setClient(std::shared_ptr<APIClient> client)
{
    m_client = std::move(client);
}

void TrimSheetModel::setHq(bool hq)
{
    if (hq == m_hq)
        return;
    m_hq = hq;
    Q_EMIT hqChanged();
}

void TrimSheetModel::open(const QString &key, const QString &flightId, bool p480, const QString &label,
                          const QString &subtitle, double originalIn, double originalOut)
{
    if (!m_client)
        return;
    m_key = key;
    m_label = label;
    m_subtitle = subtitle;
    const QUrl video = m_client->proxyURL(flightId, p480, m_hq);
    m_engine->load(video, m_client->mediaHeaders(), originalIn, originalOut);
    m_engine->startObserving();
    m_strip->setClip(video, m_client->ffmpegHeaders(), originalIn, originalOut);
    m_open = true;
    Q_EMIT openChanged();
}

void TrimSheetModel::close()
{
    m_engine->stop();
    if (!m_open)
        return;
    m_open = false;
    Q_EMIT openChanged();
}

QString TrimSheetModel::lengthText() const
{
    return QStringLiteral("clip ") + Units::tenthsTime(m_strip->draftEnd() - m_strip->draftStart());
}
