// What the pilot does in the gallery: load, open, select, hide, delete, make an auto-story.
#include "GalleryStore.h"

#include "APIClient.h"
#include "SolarTime.h"

#include <QPointer>

void GalleryStore::load()
{
    // Nothing guards against two loads at once: the later reply simply wins.
    reload();
}

QCoro::Task<> GalleryStore::reload()
{
    QPointer<GalleryStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return;
    setLoading(true, std::nullopt);

    // All three start now and run side by side; the manifest is the one that matters.
    auto manifestTask = client->fetchManifest();
    auto countsTask = client->fetchClipCounts();
    auto hiddenTask = client->fetchHidden();

    auto manifest = co_await std::move(manifestTask);
    if (!self)
        co_return;
    if (!manifest) {
        // `flights` keeps what it had; the other two replies are not used.
        setLoading(false, manifest.failure().text);
        co_return;
    }
    m_library.setFlights(std::move(manifest).value());

    // Counts and the hidden set only enrich the screen: a failure reads as empty, silently.
    auto counts = co_await std::move(countsTask);
    if (!self)
        co_return;
    m_library.clipCounts = counts ? std::move(counts).value() : QHash<QString, int>{};

    auto hidden = co_await std::move(hiddenTask);
    if (!self)
        co_return;
    m_library.hiddenIDs = hidden ? std::move(hidden).value() : QSet<QString>{};

    m_library.todCache = SolarTime::todCache(m_library.flights);
    recompute();
    setLoading(false, std::nullopt);
}

std::optional<Flight> GalleryStore::flightWithId(const QString &id) const
{
    const int index = m_library.indexOf(id);
    if (index < 0)
        return std::nullopt;
    return m_library.flights[index];
}

void GalleryStore::press(const QString &flightId)
{
    if (m_selecting) {
        if (m_selected.contains(flightId))
            m_selected.removeAll(flightId);
        else
            m_selected.append(flightId);
        Q_EMIT selectionChanged();
        refreshCards();
        return;
    }
    openPin(flightId);
}

void GalleryStore::openPin(const QString &flightId)
{
    auto flight = flightWithId(flightId);
    if (!flight)
        return;
    m_opened = std::move(flight);
    Q_EMIT openedChanged();
    Q_EMIT flightOpened(flightId);
}

void GalleryStore::closeOpened()
{
    if (!m_opened)
        return;
    m_opened.reset();
    Q_EMIT openedChanged();
}

void GalleryStore::setSelecting(bool on)
{
    if (on == m_selecting)
        return;
    m_selecting = on;
    Q_EMIT selectionChanged();
}

void GalleryStore::toggleSelecting()
{
    setSelecting(!m_selecting);
}

void GalleryStore::clearSelection()
{
    if (m_selected.isEmpty())
        return;
    m_selected.clear();
    Q_EMIT selectionChanged();
    refreshCards();
}

void GalleryStore::finishSelecting()
{
    m_selected.clear();
    m_selecting = false;
    Q_EMIT selectionChanged();
    refreshCards();
}

QString GalleryStore::selectedText() const
{
    return QStringLiteral("%1 selected").arg(m_selected.size());
}

void GalleryStore::hideFlight(const QString &flightId)
{
    changeHidden(flightId, true);
}

void GalleryStore::unhideFlight(const QString &flightId)
{
    changeHidden(flightId, false);
}

QCoro::Task<> GalleryStore::changeHidden(QString flightId, bool hidden)
{
    QPointer<GalleryStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return;
    // The card goes (or comes back) at once; a refusal puts it back without a word.
    auto apply = [this, flightId](bool hide) {
        if (hide)
            m_library.hiddenIDs.insert(flightId);
        else
            m_library.hiddenIDs.remove(flightId);
        recompute();
    };
    apply(hidden);
    const auto reply = co_await client->setHidden(flightId, hidden);
    if (!self)
        co_return;
    if (!reply)
        apply(!hidden);
}

void GalleryStore::askDelete(const QString &flightId)
{
    auto flight = flightWithId(flightId);
    if (!flight)
        return;
    m_deleting = std::move(flight);
    Q_EMIT deleteChanged();
}

QString GalleryStore::deleteMessage() const
{
    if (!m_deleting)
        return {};
    const QString name = (m_deleting->place && !m_deleting->place->isEmpty()) ? *m_deleting->place
                                                                               : m_deleting->dateText();
    return name + QStringLiteral(". Its video and any marked clips are permanently removed. This can't be undone.");
}

void GalleryStore::confirmDelete()
{
    runDelete();
}

void GalleryStore::cancelDelete()
{
    if (!m_deleting)
        return;
    m_deleting.reset();
    Q_EMIT deleteChanged();
}

QCoro::Task<> GalleryStore::runDelete()
{
    QPointer<GalleryStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!m_deleting || !client)
        co_return;
    const QString flightId = m_deleting->id;
    m_deleting.reset();
    Q_EMIT deleteChanged();

    const auto reply = co_await client->deleteFlight(flightId);
    if (!self)
        co_return;
    if (!reply) {
        m_deleteError = QStringLiteral("Couldn't delete that flight — check your connection and try again.");
        Q_EMIT deleteChanged();
        co_return;
    }
    m_library.removeFlight(flightId);
    if (m_selected.removeAll(flightId) > 0)
        Q_EMIT selectionChanged();
    recompute();
}

void GalleryStore::dismissDeleteError()
{
    if (!m_deleteError)
        return;
    m_deleteError.reset();
    Q_EMIT deleteChanged();
}

void GalleryStore::askAutoStory()
{
    if (!canCreateAutoStory())
        return;
    m_askReelLength = true;
    Q_EMIT storyChanged();
}

QString GalleryStore::reelLengthNote() const
{
    return m_controls.clipsOnly
               ? QStringLiteral("Built from your marked clips only — the ★ Clips only filter is on.")
               : QStringLiteral("Your marked clips lead; the best detected moments fill in around them.");
}

void GalleryStore::chooseReelLength(int seconds)
{
    m_askReelLength = false;
    Q_EMIT storyChanged();
    runAutoStory(seconds);
}

void GalleryStore::cancelReelLength()
{
    if (!m_askReelLength)
        return;
    m_askReelLength = false;
    Q_EMIT storyChanged();
}

QCoro::Task<> GalleryStore::runAutoStory(double target)
{
    QPointer<GalleryStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return;
    m_directing = true;
    m_directError.reset();
    Q_EMIT storyChanged();
    Q_EMIT selectionChanged();  // the button is off while a story is being made

    const QStringList ids = m_selected;
    if (ids.isEmpty()) {
        m_directing = false;
        Q_EMIT storyChanged();
        Q_EMIT selectionChanged();
        co_return;
    }
    const auto project = co_await client->makeAutoreel(target, ids, std::nullopt, m_controls.clipsOnly);
    if (!self)
        co_return;
    if (!project) {
        // The same words whatever went wrong: to the pilot it is always "no story from these".
        m_directError = QStringLiteral("No story this time — those flights don’t have standout moments or "
                                       "marked clips yet. Try a different pick.");
    } else {
        m_selecting = false;
        m_selected.clear();
        m_autoOpen = project->id;
        refreshCards();
        Q_EMIT storyCreated(project->id);
    }
    m_directing = false;
    Q_EMIT storyChanged();
    Q_EMIT selectionChanged();
}

void GalleryStore::dismissDirectError()
{
    if (!m_directError)
        return;
    m_directError.reset();
    Q_EMIT storyChanged();
}

void GalleryStore::logOut()
{
    Q_EMIT logOutRequested();
}
