#include "AppTestSupport.h"
#include "LoginViewModel.h"
#include "MemoryCredentialStore.h"
#include "RecordingServer.h"

#include <QTest>

#include <gtest/gtest.h>

#include <atomic>

using namespace std::chrono_literals;
using Mode = LoginViewModel::Mode;

namespace {
struct LoginFixture : ::testing::Test {
    IsolatedPrefs p;
    MemoryCredentialStore creds;
    std::unique_ptr<AppModel> app;
    std::unique_ptr<LoginViewModel> vm;

    void open()
    {
        app = std::make_unique<AppModel>(*p.prefs, creds, envWith({}));
        vm = std::make_unique<LoginViewModel>();
        vm->setApp(app.get());
        vm->setTiming({5s, 5ms});
    }
};
} // namespace

TEST_F(LoginFixture, StartsFromWhatIsStored)
{
    open();
    EXPECT_FALSE(vm->advanced());
    EXPECT_EQ(vm->mode(), Mode::email);
    EXPECT_EQ(vm->base(), AppModel::defaultBase);
    EXPECT_EQ(vm->submitText(), "Email me a sign-in link");

    p.prefs->setValue("base", "http://nas.local:8080");
    p.prefs->setValue("user", "ann");
    open();
    EXPECT_TRUE(vm->advanced());
    EXPECT_EQ(vm->mode(), Mode::password);
    EXPECT_EQ(vm->user(), "ann");
    EXPECT_EQ(vm->base(), "http://nas.local:8080");
    EXPECT_EQ(vm->submitText(), "Connect");
}

TEST_F(LoginFixture, SubmitButtonRules)
{
    open();
    vm->setEmail("pilot.example.com");
    EXPECT_FALSE(vm->canSubmit());
    vm->setEmail("a@");
    EXPECT_TRUE(vm->canSubmit());
    vm->setBase("   ");
    EXPECT_FALSE(vm->canSubmit());
    vm->setBase(" http://x ");

    vm->setAdvanced(true);
    vm->setMode(Mode::token);
    vm->setToken("  \t ");
    EXPECT_FALSE(vm->canSubmit());
    vm->setToken(" abc ");
    EXPECT_TRUE(vm->canSubmit());

    // Password mode allows an empty user: a local server without a password.
    vm->setMode(Mode::password);
    EXPECT_TRUE(vm->canSubmit());
}

TEST_F(LoginFixture, AdvancedOffReturnsToEmailButKeepsTypedText)
{
    open();
    vm->setAdvanced(true);
    vm->setMode(Mode::token);
    vm->setToken("typed");
    vm->setBase("http://mine");
    vm->setAdvanced(false);
    EXPECT_EQ(vm->mode(), Mode::email);
    EXPECT_EQ(vm->token(), "typed");
    EXPECT_EQ(vm->base(), "http://mine");
}

TEST_F(LoginFixture, TokenAndPasswordSignInAtOnce)
{
    open();
    vm->setAdvanced(true);
    vm->setMode(Mode::token);
    vm->setBase("  http://127.0.0.1:9/  ");
    vm->setToken("  tok  ");
    vm->submit();
    EXPECT_TRUE(app->loggedIn());
    EXPECT_EQ(app->client()->authHeader(), std::optional<QString>("Bearer tok"));
    EXPECT_EQ(app->client()->baseString(), "http://127.0.0.1:9");
    EXPECT_EQ(p.prefs->stringValue("base"), "http://127.0.0.1:9/");

    app->signOut();
    vm->setMode(Mode::password);
    vm->setUser("");
    vm->submit();
    EXPECT_TRUE(app->loggedIn());
    EXPECT_FALSE(app->client()->authHeader());
}

TEST_F(LoginFixture, MailSignInWaitsForTheLinkAndDropsTheTrailingSlash)
{
    RecordingServer server;
    std::atomic<int> polls{0};
    server.setHandler([&](const RecordingServer::Request &r) {
        RecordingServer::Reply reply;
        reply.headers.insert("Connection", "close");
        if (r.target.endsWith("/request"))
            reply.body = R"({"secret":"sec"})";
        else
            reply.body = ++polls < 3 ? R"({"status":"pending"})" : R"({"status":"ok","token":"mailtok"})";
        return reply;
    });
    open();
    vm->setHintDelay(20ms);
    vm->setTiming({5s, 30ms});
    vm->setBase(server.base() + "/");
    vm->setEmail("  pilot@example.com ");
    QSignalSpy hint(vm.get(), &LoginViewModel::hintVisibleChanged);
    vm->submit();
    EXPECT_TRUE(vm->waiting());
    EXPECT_EQ(vm->waitingLine(), "Open the sign-in link we sent to   pilot@example.com  — this screen finishes by itself.");

    QSignalSpy loggedIn(app.get(), &AppModel::loggedInChanged);
    ASSERT_TRUE(loggedIn.wait(5000));
    EXPECT_FALSE(vm->waiting());
    EXPECT_TRUE(vm->error().isEmpty());
    EXPECT_EQ(app->client()->baseString(), server.base());
    EXPECT_EQ(app->client()->authHeader(), std::optional<QString>("Bearer mailtok"));
    EXPECT_EQ(p.prefs->stringValue("base"), server.base());
    EXPECT_TRUE(server.requests().first().body.contains(R"("email":"pilot@example.com")"));
    // The hint came while waiting and went with the wait.
    EXPECT_GE(hint.count(), 2);
    EXPECT_FALSE(vm->hintVisible());
}

TEST_F(LoginFixture, MailSignInFailuresLandInErrorAndCancelLeavesNone)
{
    RecordingServer server;
    replyClosing(server, 404, "no", "text/plain");
    open();
    vm->setBase(server.base());
    vm->setEmail("a@b");
    QSignalSpy waiting(vm.get(), &LoginViewModel::waitingChanged);
    vm->submit();
    ASSERT_TRUE(waiting.wait(5000) || waiting.count() >= 2);
    while (vm->waiting())
        ASSERT_TRUE(waiting.wait(5000));
    EXPECT_EQ(vm->error(), "This server doesn't support email sign-in — use Password (classic box) or paste an API "
                           "token.");
    // Changing the mode clears the error.
    vm->setAdvanced(true);
    vm->setMode(Mode::password);
    EXPECT_TRUE(vm->error().isEmpty());
    vm->setMode(Mode::email);

    server.setHandler([](const RecordingServer::Request &r) {
        RecordingServer::Reply reply;
        reply.headers.insert("Connection", "close");
        reply.body = r.target.endsWith("/request") ? R"({"secret":"s"})" : R"({"status":"pending"})";
        return reply;
    });
    vm->setTiming({10min, 10min});
    vm->submit();
    ASSERT_TRUE(vm->waiting());
    // Let the request and the first poll go out, then cancel during the long sleep.
    while (server.count() < 3)
        QTest::qWait(10);
    vm->cancel();
    EXPECT_FALSE(vm->waiting());
    QTest::qWait(50);
    EXPECT_TRUE(vm->error().isEmpty());
    EXPECT_FALSE(app->loggedIn());

    // Leaving the screen mid-wait cancels the attempt without touching the dead screen.
    vm->submit();
    while (server.count() < 5)
        QTest::qWait(10);
    vm.reset();
    QTest::qWait(50);
    EXPECT_FALSE(app->loggedIn());
}

TEST_F(LoginFixture, LearnMoreLinkNeedsAUrl)
{
    open();
    vm->setBase("  https://ornivale.example  ");
    EXPECT_EQ(vm->learnMoreUrl(), "https://ornivale.example");
    vm->setBase("   ");
    EXPECT_TRUE(vm->learnMoreUrl().isEmpty());
    vm->setBase("no url here");
    EXPECT_TRUE(vm->learnMoreUrl().isEmpty());
}
