// The share sheet's model against the real library's links and suggestions; the proxy in front
// of it stands in for a library that refuses or answers oddly.
#include "ShareSheetModel.h"
#include "VideosFixture.h"

#include <QSignalSpy>

using nlohmann::json;

namespace {

class ShareSheet : public VideosFixture
{
protected:
    static inline std::string story;
    static inline std::string video;
    HandedOver desktop;
    std::unique_ptr<ShareSheetModel> sheet;

    void SetUp() override
    {
        VideosFixture::SetUp();
        if (story.empty()) {
            story = storyOfTwo("Shared");
            video = renderOnServer(story)["id"];
        }
        const auto shares = jsonOf(server->client()->Get("/api/shares"));
        for (const auto &share : shares["shares"])
            server->client()->Delete(("/api/shares/" + share["token"].get<std::string>()).c_str());
    }
    void TearDown() override
    {
        sheet.reset();
        VideosFixture::TearDown();
    }
    ShareSheetModel &open()
    {
        sheet = std::make_unique<ShareSheetModel>();
        sheet->setStore(store.get());
        sheet->setDesktop(&desktop);
        sheet->setProjectId(QString::fromStdString(story));
        sheet->setRenderId(QString::fromStdString(video));
        sheet->noteSlot().setStand(std::chrono::milliseconds(10000));
        return *sheet;
    }
    std::string sharesPath() const { return "/api/projects/" + story + "/shares"; }
    std::string suggestPath() const { return "/api/projects/" + story + "/suggest"; }
    json serverShares() const { return jsonOf(server->client()->Get("/api/shares"))["shares"]; }
};

TEST_F(ShareSheet, OpeningMakesALinkUnlessOneIsKnown)
{
    ShareSheetModel &s = open();
    QSignalSpy told(&s, &ShareSheetModel::linkChanged);
    EXPECT_EQ(s.state(), "creating");
    run(s.begin());
    ASSERT_EQ(s.state(), "shown");
    ASSERT_EQ(serverShares().size(), 1u);
    EXPECT_EQ(s.url().toStdString(), serverShares()[0]["url"]);
    EXPECT_EQ(s.viewsText(), "Not viewed yet");
    EXPECT_TRUE(s.aiAvailable());  // the library proposes words
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told[0][0].value<ReelShare>(), *s.share());

    // Copy puts the link on the clipboard and says so.
    s.copy();
    EXPECT_EQ(desktop.copied, QStringList{s.url()});
    EXPECT_EQ(s.note(), "Link copied");

    // The hub knows the link: the sheet shows it and makes none.
    const QString made = s.url();
    run(store->reload());
    proxy->clear();
    ShareSheetModel &again = open();
    run(again.begin());
    EXPECT_EQ(proxy->count("POST", sharesPath()), 0);
    EXPECT_EQ(again.url(), made);
    EXPECT_EQ(serverShares().size(), 1u);
}

TEST_F(ShareSheet, AFailedCreationOffersRetry)
{
    proxy->answer("POST", sharesPath(), 404, R"({"error":"no shares here"})");
    ShareSheetModel &s = open();
    run(s.begin());
    EXPECT_EQ(s.state(), "failed");
    proxy->forget("POST", sharesPath());
    run(s.createLink());
    EXPECT_EQ(s.state(), "shown");
    EXPECT_EQ(serverShares().size(), 1u);
}

TEST_F(ShareSheet, SuggestionsAreAskedForOnceThenCycle)
{
    ShareSheetModel &s = open();
    run(s.begin());
    EXPECT_EQ(s.suggestText(), "Suggest for me");

    // The library's own proposals fill the fields, and nothing is saved yet.
    run(s.askForSuggestion());
    EXPECT_FALSE(s.editTitle().isEmpty());
    EXPECT_EQ(s.suggestText(), "Try another");
    EXPECT_FALSE(serverShares()[0].contains("title") && serverShares()[0]["title"] == s.editTitle().toStdString());

    // Three proposals go round without asking again.
    ShareSheetModel &three = open();
    proxy->answer("POST", suggestPath(), 200, json{{"suggestions", {{{"title", "One"}, {"description", "First"}},
                                                                    {{"title", "Two"}},
                                                                    {{"title", "Three"}, {"description", "Third"}}}}}
                                                  .dump());
    proxy->clear();
    run(three.begin());
    QStringList titles;
    for (int i = 0; i < 4; ++i) {
        run(three.askForSuggestion());
        titles.append(three.editTitle());
    }
    EXPECT_EQ(titles, (QStringList{"One", "Two", "Three", "One"}));
    EXPECT_EQ(three.editDesc(), "First");
    EXPECT_EQ(proxy->count("POST", suggestPath()), 1);

    // "Two" has no description: the field empties rather than keeping "First".
    run(three.askForSuggestion());
    EXPECT_EQ(three.editDesc(), "");

    // Nothing to propose: the button stays as it was, so the next press asks again.
    ShareSheetModel &none = open();
    proxy->answer("POST", suggestPath(), 200, R"({"suggestions":[]})");
    proxy->clear();
    run(none.begin());
    run(none.askForSuggestion());
    EXPECT_EQ(none.suggestText(), "Suggest for me");
    run(none.askForSuggestion());
    EXPECT_EQ(proxy->count("POST", suggestPath()), 2);

    proxy->answer("POST", suggestPath(), 500, "{}");
    run(none.askForSuggestion());
    EXPECT_EQ(none.note(), "Couldn’t get suggestions — try again");
    EXPECT_FALSE(none.suggesting());
}

TEST_F(ShareSheet, SaveSendsTheFieldsAsTheyStand)
{
    // A link without a title (the library gives its links the story's) fills empty fields,
    // and saving sends them empty.
    ReelShare untitled = ReelShare::fromJson(Wire::Json::parse(shareOnServer(story, video).dump())).value();
    untitled.title.reset();
    untitled.description.reset();
    ShareSheetModel &s = open();
    s.setExisting(untitled);
    QSignalSpy told(&s, &ShareSheetModel::linkChanged);
    run(s.begin());
    EXPECT_EQ(s.editTitle(), "");
    proxy->clear();
    run(s.saveEdit());
    EXPECT_EQ(bodies("PATCH", "/api/shares/" + s.share()->token.toStdString()),
              std::vector<std::string>{R"({"title":"","description":""})"});
    EXPECT_EQ(s.note(), "Share updated");

    s.setEditTitle("Dawn over the lagoon");
    s.setEditDesc("Two flights, one morning.");
    run(s.saveEdit());
    EXPECT_EQ(serverShares()[0]["title"], "Dawn over the lagoon");
    EXPECT_EQ(serverShares()[0]["description"], "Two flights, one morning.");
    EXPECT_EQ(told.size(), 2);  // saved twice
    EXPECT_EQ(told.last()[0].value<ReelShare>().title, "Dawn over the lagoon");

    proxy->answer("PATCH", "/api/shares/" + s.share()->token.toStdString(), 500, "{}");
    s.setEditTitle("Lost");
    run(s.saveEdit());
    EXPECT_EQ(s.note(), "Save failed");
    EXPECT_EQ(s.editTitle(), "Lost");  // the pilot's words stay
    EXPECT_FALSE(s.savingEdit());
}

TEST_F(ShareSheet, RevokeEndsTheLinkAndItsPage)
{
    ShareSheetModel &s = open();
    run(s.begin());
    const std::string token = s.share()->token.toStdString();
    QSignalSpy told(&s, &ShareSheetModel::linkChanged);
    QSignalSpy closing(&s, &ShareSheetModel::closeRequested);

    proxy->answer("DELETE", "/api/shares/" + token, 500, "{}");
    run(s.revokeLink());
    EXPECT_EQ(s.note(), "Revoke failed");
    EXPECT_TRUE(closing.isEmpty());

    proxy->forget("DELETE", "/api/shares/" + token);
    s.askRevoke();
    s.revoke();
    ASSERT_TRUE(waitUntil([&] { return !closing.isEmpty(); }));
    EXPECT_FALSE(s.confirmRevoke());
    ASSERT_EQ(told.size(), 1);
    EXPECT_FALSE(told[0][0].isValid());
    EXPECT_TRUE(serverShares().empty());
    // The public page is gone with it.
    EXPECT_EQ(server->client()->Get(("/s/" + token).c_str())->status, 404);
}

} // namespace
