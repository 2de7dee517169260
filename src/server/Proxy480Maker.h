#pragma once

#include "FlightIndex.h"
#include "Library.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

/// @brief Makes the light "proxy_480.mp4" (short side 480, never enlarged) of every flight that
/// lacks one, in the background and one flight at a time, and then lists the flight with
/// `p480` true, so players that don't ask for high quality stream a third of the pixels.
///
/// The work is found by looking, not remembered: a sweep over the index after each nudge (a
/// commit, a restore) and at start, so a flight committed while the server was down, or whose
/// encode a stop cut short, gets its light proxy on the next run. The file is made under tmp/
/// and renamed in only if the flight still has the proxy it was made from.
class Proxy480Maker
{
public:
    /// `folderLock` is the staging area's: every rename of flight files happens under it.
    Proxy480Maker(const Library &library, FlightIndex &index, std::mutex &folderLock, bool log);
    ~Proxy480Maker();
    Proxy480Maker(const Proxy480Maker &) = delete;
    Proxy480Maker &operator=(const Proxy480Maker &) = delete;

    /// Starts the worker, which sweeps once at once.
    void start();
    /// Something may need a light proxy: sweep again when the current encode is done.
    void nudge();
    /// Stops the encode in progress (its part file is dropped) and the worker.
    void stop();

    /// The filter that makes the short side 480 (or keeps a smaller one), even-sized.
    [[nodiscard]] static const char *scaleFilter();

private:
    struct Signature {
        std::uintmax_t size = 0;
        std::filesystem::file_time_type modified;
        bool operator==(const Signature &) const = default;
    };

    void run(std::stop_token stop);
    /// The next flight that needs an encode; flights whose file exists are only listed as such.
    std::optional<std::string> nextFlight();
    void make(const std::string &id, const std::stop_token &stop);
    [[nodiscard]] std::optional<Signature> signatureOf(const std::string &id) const;
    bool markListed(const std::string &id);

    const Library &m_library;
    FlightIndex &m_index;
    std::mutex &m_folderLock;
    const bool m_log;
    std::mutex m_mutex;
    std::condition_variable_any m_wake;
    bool m_nudged = false;
    /// Encodes that failed, by the proxy they failed on; tried again only once it changes.
    std::map<std::string, Signature> m_failed;
    std::jthread m_thread;
};
