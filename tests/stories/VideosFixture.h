#pragma once

#include "DesktopHandoff.h"
#include "MpvPlayer.h"
#include "StoriesFixture.h"

#include <QThread>

#include <set>

/// @brief The desktop, as far as the video screens can tell: what they copied. Mail, browser and
/// file manager are proven against stand-ins on a private bus in the desktop share test.
class HandedOver : public DesktopHandoff
{
public:
    QStringList copied;
    void copyText(const QString &text) override { copied.append(text); }
    void emailLink(const QUrl &, const QString &) override {}
    void openLink(const QUrl &) override {}
    void emailFile(const QString &, const QString &) override {}
    void showFile(const QString &) override {}
    void openFile(const QString &) override {}
    QString keepInVideos(const QString &) override { return {}; }
};

/// @brief The stories' library with made videos: stories the real server renders, players that
/// really play them (headless), and a wait at the end for any video still being made, since the
/// library makes one at a time for all tests of the suite.
class VideosFixture : public StoriesFixture
{
protected:
    std::set<std::string> touched;

    void SetUp() override
    {
        StoriesFixture::SetUp();
        store->setPlayerFactory([] { return new MpvPlayer(MpvPlayer::Output::Headless); });
    }
    void TearDown() override
    {
        for (const std::string &story : touched)
            finished(story);
        StoriesFixture::TearDown();
    }

    /// A story of a widescreen clip and a vertical one, 1.5 s each.
    std::string storyOfTwo(const std::string &title)
    {
        const std::string id = makeStory(title, nlohmann::json::array({item("20240512_093000_0001", "c1", 0.5, 2.0, "Lagoon reveal"),
                                                                       item("20240601_184512_0002", "c3", 1.0, 2.5, "Ridge climb")}));
        touched.insert(id);
        return id;
    }
    /// Makes a video of `story` on the server and waits for it; the story's status then.
    nlohmann::json renderOnServer(const std::string &story,
                                  const nlohmann::json &body = {{"track", "none"}, {"hud", false}, {"xfade", 0.2}})
    {
        touched.insert(story);
        finished(story);
        const auto started = server->client()->Post(("/api/projects/" + story + "/render").c_str(), body.dump(),
                                                    "application/json");
        EXPECT_TRUE(started && started->status == 200) << (started ? started->body : "no reply");
        return finished(story);
    }
    /// Waits until no video of `story` is being made; its status then.
    nlohmann::json finished(const std::string &story)
    {
        auto http = server->client();
        for (int i = 0; i < 1200; ++i) {
            const auto status = jsonOf(http->Get(("/api/projects/" + story + "/render").c_str()));
            if (status.value("status", "") != "running")
                return status;
            QThread::msleep(50);
        }
        ADD_FAILURE() << "the video of " << story << " was never finished";
        return {};
    }
    /// Makes a public link of a video straight on the server.
    nlohmann::json shareOnServer(const std::string &story, const std::string &renderId)
    {
        const auto made = server->client()->Post(("/api/projects/" + story + "/shares").c_str(),
                                                 nlohmann::json{{"renderId", renderId}}.dump(), "application/json");
        EXPECT_TRUE(made && made->status == 200) << (made ? made->body : "no reply");
        return jsonOf(made);
    }
    /// The bodies of the requests with this method and path that reached the proxy.
    std::vector<std::string> bodies(const std::string &method, const std::string &path) const
    {
        std::vector<std::string> found;
        for (const StoryProxy::Seen &s : proxy->seen())
            if (s.method == method && s.path == path)
                found.push_back(s.body);
        return found;
    }
};
