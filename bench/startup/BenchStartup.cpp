// Process start to the first frame of the main window, for the desktop program (signed out:
// the sign-in screen; signed in: the main view) and for an empty Qt Quick window, each run N
// times in this one process. Prints the medians and the ratios to the baseline.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

/// Milliseconds from start to the "first-frame" line, or -1 when the program failed.
double timeToFirstFrame(const QString &program, const QStringList &args, const QProcessEnvironment &env)
{
    QProcess process;
    process.setProcessEnvironment(env);
    QElapsedTimer clock;
    clock.start();
    process.start(program, args);
    double ms = -1;
    QByteArray seen;
    while (process.waitForReadyRead(30000)) {
        seen += process.readAllStandardOutput();
        if (seen.contains("first-frame")) {
            ms = double(clock.nsecsElapsed()) / 1e6;
            break;
        }
    }
    if (!process.waitForFinished(10000))
        process.kill();
    return ms;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, atoi(argv[1])) : 9;

    QTemporaryDir home;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"SPIKE_BASE", "SPIKE_TOKEN", "SPIKE_USER", "SPIKE_PASS", "SPIKE_SCREEN"})
        env.remove(QString::fromLatin1(name));
    env.insert(QStringLiteral("HOME"), home.path());
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral(".config")));
    if (!env.contains(QStringLiteral("QT_QPA_PLATFORM")))
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    QProcessEnvironment signedIn = env;
    signedIn.insert(QStringLiteral("SPIKE_BASE"), QStringLiteral("http://127.0.0.1:1"));

    std::vector<double> empty, signedOutTimes, signedInTimes;
    const QStringList appArgs{QStringLiteral("--first-frame-exit")};
    // Interleaved, so that a slow moment of the machine hits all three alike.
    for (int i = 0; i < runs; ++i) {
        empty.push_back(timeToFirstFrame(QStringLiteral(AEROLOOM_EMPTY_BINARY), {}, env));
        signedOutTimes.push_back(timeToFirstFrame(QStringLiteral(AEROLOOM_APP_BINARY), appArgs, env));
        signedInTimes.push_back(timeToFirstFrame(QStringLiteral(AEROLOOM_APP_BINARY), appArgs, signedIn));
    }
    for (const auto *v : {&empty, &signedOutTimes, &signedInTimes}) {
        if (std::any_of(v->begin(), v->end(), [](double ms) { return ms < 0; })) {
            std::fprintf(stderr, "a run did not reach its first frame\n");
            return 1;
        }
    }
    const double base = median(empty);
    const double out = median(signedOutTimes);
    const double in = median(signedInTimes);
    std::printf("platform %s, %d runs each, medians to first frame:\n", qPrintable(env.value("QT_QPA_PLATFORM")), runs);
    std::printf("  empty Qt Quick window      %8.1f ms\n", base);
    std::printf("  aeroloom, sign-in screen   %8.1f ms   ratio %.2f\n", out, out / base);
    std::printf("  aeroloom, main view        %8.1f ms   ratio %.2f\n", in, in / base);
    return 0;
}
