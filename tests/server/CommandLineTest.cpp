// The command line of aeroloom-server, and the executable's words when it can't start.
#include "CommandLine.h"
#include "TestServer.h"
#include "TestPaths.h"

#include <gtest/gtest.h>

#include <QProcess>

namespace fs = std::filesystem;

namespace {
struct Run {
    int code = -1;
    std::string out;
    std::string err;
};

Run runServer(const QStringList &args, int timeoutMs = 30000)
{
    QProcess process;
    process.start(TestPaths::buildDir() + QStringLiteral("/src/server/aeroloom-server"), args);
    process.waitForFinished(timeoutMs);
    return {process.exitCode(), process.readAllStandardOutput().toStdString(), process.readAllStandardError().toStdString()};
}
} // namespace

TEST(CommandLine, ReadsEveryOption)
{
    const auto parsed = CommandLine::parse({"--library", "/tmp/lib", "--listen", "0.0.0.0:9000", "--auth", "basic",
                                            "--user", "u", "--password", "p", "--quota", "5000000000", "--no-samples"});
    ASSERT_TRUE(parsed) << parsed.errorText().toStdString();
    EXPECT_EQ(parsed->config.library, "/tmp/lib");
    EXPECT_EQ(parsed->config.host, "0.0.0.0");
    EXPECT_EQ(parsed->config.port, 9000);
    EXPECT_EQ(parsed->config.auth, AuthMode::Basic);
    EXPECT_EQ(parsed->config.quota, 5000000000LL);
    EXPECT_FALSE(parsed->config.samples);

    const auto token = CommandLine::parse({"--library", "x", "token", "create"});
    ASSERT_TRUE(token);
    EXPECT_EQ(token->command, CommandLine::Command::CreateToken);
}

TEST(CommandLine, RefusesWhatDoesNotFit)
{
    for (const std::vector<std::string> &args :
         {std::vector<std::string>{}, {"--listen", "127.0.0.1:80"}, {"--library", "x", "--listen", "nocolon"},
          {"--library", "x", "--listen", "h:99999"}, {"--library", "x", "--auth", "magic"},
          {"--library", "x", "--auth", "basic", "--user", "u"}, {"--library", "x", "--user", "u", "--password", "p"},
          {"--library", "x", "--quota", "-1"}, {"--library", "x", "--quota", "lots"}, {"--library", "x", "--bogus"},
          {"--library"}}) {
        const auto parsed = CommandLine::parse(args);
        EXPECT_FALSE(parsed) << (args.empty() ? "(none)" : args.back());
        if (!parsed) {
            EXPECT_FALSE(parsed.errorText().isEmpty());
        }
    }
}

TEST(Executable, APortInUseIsSaidPlainly)
{
    TestServer busy;
    QTemporaryDir dir;
    const auto run = runServer({QStringLiteral("--library"), dir.path() + QStringLiteral("/lib"),
                                QStringLiteral("--no-samples"), QStringLiteral("--listen"),
                                QStringLiteral("127.0.0.1:%1").arg(busy.server().port())});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err.find("is already in use"), std::string::npos) << run.err;
}

TEST(Executable, ALibraryServedAlreadyIsSaidPlainly)
{
    TestServer first;
    const auto run = runServer({QStringLiteral("--library"), QString::fromStdString(first.library().string()),
                                QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0")});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err.find("is already served by another aeroloom-server"), std::string::npos) << run.err;
    // A token can still be made for it while it is served, and works at once.
    const auto token = runServer({QStringLiteral("--library"), QString::fromStdString(first.library().string()),
                                  QStringLiteral("token"), QStringLiteral("create")});
    EXPECT_EQ(token.code, 0) << token.err;
}

TEST(Executable, AnUnwritableLibraryIsSaidPlainly)
{
    QTemporaryDir dir;
    // A plain file where a folder is needed can't be written into, whoever runs the test.
    writeFile(dir.path().toStdString() + "/file", "x");
    const auto run = runServer({QStringLiteral("--library"), dir.path() + QStringLiteral("/file/lib"),
                                QStringLiteral("--no-samples")});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err.find("can't be written"), std::string::npos) << run.err;

    const auto usage = runServer({QStringLiteral("--auth"), QStringLiteral("token")});
    EXPECT_EQ(usage.code, 2);
    EXPECT_NE(usage.err.find("--library DIR is required"), std::string::npos) << usage.err;
}

TEST(Executable, TokenCreateMakesTheSameNewLibraryAsServingAndATokenItTakes)
{
    QTemporaryDir dir;
    const QString library = dir.path() + QStringLiteral("/lib");
    // Making the samples takes ffmpeg a while on a loaded machine.
    const auto run =
        runServer({QStringLiteral("--library"), library, QStringLiteral("token"), QStringLiteral("create")}, 180000);
    ASSERT_EQ(run.code, 0) << run.err;
    const std::string token = run.out.substr(0, run.out.find('\n'));
    EXPECT_GE(token.size(), 32u);

    TestServer server([&](ServerConfig &c) {
        c.library = library.toStdString();
        c.auth = AuthMode::Token;
    });
    auto client = server.client();
    const httplib::Headers signedIn = {{"Authorization", "Bearer " + token}};
    EXPECT_EQ(client->Get("/api/me", signedIn)->status, 200);
    EXPECT_EQ(client->Get("/api/me")->status, 401);
    EXPECT_EQ(jsonOf(client->Get("/api/samples", signedIn))["count"], 3);
    EXPECT_GE(jsonOf(client->Get("/api/music", signedIn))["tracks"].size(), 3u);
}
