// The library in a real browser: what a visitor without a session can and cannot reach.
#include "PageScript.h"
#include "TestServer.h"

#include <gtest/gtest.h>

TEST(LibraryInBrowser, RefusesEveryDataRouteWithoutASession)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const auto result = runPageScript(QStringLiteral("tests/server/signed_out.mjs"),
                                      {QStringLiteral("--url=%1").arg(QString::fromStdString(server.base())),
                                       QStringLiteral("--paths=/manifest.json,/api/me,/api/flights,/api/projects")});
    ASSERT_FALSE(result.contains("error")) << result.dump(2);
    for (const auto &[path, status] : result.at("statuses").items())
        EXPECT_EQ(status.get<int>(), 401) << path;
}
