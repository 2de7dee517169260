// The scripts that start library servers stop them again, whether they end well or fail
// midway. Each runs against a build folder of its own whose aeroloom-server is the real one
// under a path no other process has, so a server left behind is found by that path.
#include "TestPaths.h"
#include "TestServer.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <thread>

namespace fs = std::filesystem;

namespace {
/// A build folder with the real server and stand-ins for the other tools a script calls.
class FakeBuild
{
public:
    FakeBuild()
    {
        const fs::path root = m_dir.path().toStdString();
        fs::create_directories(root / "src/server");
        fs::create_symlink(TestPaths::buildDir().toStdString() + "/src/server/aeroloom-server",
                           root / "src/server/aeroloom-server");
    }
    /// Puts a shell script at `relative` that exits with `code`.
    void tool(const std::string &relative, int code)
    {
        const fs::path file = path() / relative;
        fs::create_directories(file.parent_path());
        writeFile(file, "#!/bin/sh\nexit " + std::to_string(code) + "\n");
        fs::permissions(file, fs::perms::owner_all);
    }
    [[nodiscard]] fs::path path() const { return m_dir.path().toStdString(); }

private:
    QTemporaryDir m_dir;
};

struct Ran {
    int code = -1;
    std::string out;
    std::string err;
};

Ran runScript(const QString &script, const QStringList &arguments)
{
    QProcess bash;
    bash.setWorkingDirectory(TestPaths::sourceDir());
    bash.start(QStringLiteral("bash"), QStringList{script} + arguments);
    bash.waitForFinished(120000);
    return {bash.exitCode(), bash.readAllStandardOutput().toStdString(), bash.readAllStandardError().toStdString()};
}

/// Processes started from a file under `folder`: their ids and command lines.
std::vector<std::string> runningFrom(const fs::path &folder)
{
    std::vector<std::string> found;
    for (const auto &entry : fs::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const std::string cmdline = readFile(entry.path() / "cmdline");
        if (cmdline.rfind(folder.string(), 0) == 0) {
            std::string shown = cmdline;
            std::replace(shown.begin(), shown.end(), '\0', ' ');
            found.push_back(name + ": " + shown);
        }
    }
    return found;
}
} // namespace

TEST(Scripts, TheIngestBenchmarkStopsItsServersWhenItFails)
{
    FakeBuild build;
    build.tool("tests/fixtures/aeroloom-fixture", 0);
    build.tool("src/cli/aeroloom-cli", 1);  // the ingest fails once the first server is up
    const auto ran = runScript(QStringLiteral("bench/ingest/ingest_bench.sh"),
                               {QString::fromStdString(build.path().string()), QStringLiteral("1")});
    EXPECT_NE(ran.code, 0) << ran.err;
    EXPECT_EQ(runningFrom(build.path()), std::vector<std::string>{}) << ran.err;
}

TEST(Scripts, TheUploadMemoryBenchmarkStopsItsServerWhetherItEndsOrIsStopped)
{
    FakeBuild build;
    const QString folder = QString::fromStdString(build.path().string());
    const auto passed = runScript(QStringLiteral("bench/server/put_rss.sh"), {folder, QStringLiteral("100000")});
#ifdef __SANITIZE_ADDRESS__
    // A sanitized server carries its shadow memory, so its peak is over the limit by design;
    // what matters here is that the script ran to its verdict.
    EXPECT_NE(passed.out.find("ratio: "), std::string::npos) << passed.err;
#else
    EXPECT_EQ(passed.code, 0) << passed.err;
#endif
    EXPECT_EQ(runningFrom(build.path()), std::vector<std::string>{}) << passed.err;

    // Stopped (as by Ctrl-C or a CI timeout) while its server takes a large upload.
    QProcess bash;
    bash.setWorkingDirectory(TestPaths::sourceDir());
    bash.start(QStringLiteral("bash"), {QStringLiteral("bench/server/put_rss.sh"), folder, QStringLiteral("1000000000")});
    const auto takingTheUpload = [&] {
        const auto running = runningFrom(build.path());
        return std::any_of(running.begin(), running.end(),
                           [](const std::string &line) { return line.find("/busy ") != std::string::npos; });
    };
    for (int i = 0; i < 600 && !takingTheUpload(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ASSERT_TRUE(takingTheUpload());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    bash.terminate();
    ASSERT_TRUE(bash.waitForFinished(60000));
    EXPECT_EQ(runningFrom(build.path()), std::vector<std::string>{}) << bash.readAllStandardError().toStdString();
}
