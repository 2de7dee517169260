// Random mutations of plausible replies, fed to every decoder and to the clips.json edits for a
// bounded time. A decoder must either refuse a body or return a record that reads back what it
// writes; nothing may crash or hang. AEROLOOM_FUZZ_SECONDS and AEROLOOM_FUZZ_SEED widen a run.
#include "ClipEdits.h"
#include "SampleBodies.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <random>

namespace {

const QList<QByteArray> &tokens()
{
    static const QList<QByteArray> list = {
        "{", "}", "[", "]", "\"", ",", ":", "null", "true", "false", "0", "-1", "1.5e3", "1e999",
        "18446744073709551616", "-0.0", "\"\\ud800\"", "\"\\u0000\"", "\xff", "\xc0\x80", "\xe2\x82",
        "[[[[[[[[[[", "{\"a\":", "\"in\":", "\"id\":", "\"auto\":true", "\\", "\"\"",
    };
    return list;
}

class Mutator
{
public:
    explicit Mutator(quint32 seed) : m_random(seed) {}

    QByteArray mutate(QByteArray body)
    {
        const int rounds = pick(1, 4);
        for (int i = 0; i < rounds; ++i) {
            const int at = body.isEmpty() ? 0 : pick(0, int(body.size()) - 1);
            switch (pick(0, 4)) {
            case 0:  // one byte to anything
                if (!body.isEmpty())
                    body[at] = char(pick(0, 255));
                break;
            case 1:  // cut a slice
                body.remove(at, pick(1, 16));
                break;
            case 2:  // repeat a slice
                body.insert(at, body.mid(at, pick(1, 32)));
                break;
            case 3:  // a structural or troublesome token
                body.insert(at, tokens().at(pick(0, int(tokens().size()) - 1)));
                break;
            default:  // swap two bytes far apart
                if (body.size() > 1)
                    std::swap(body[at], body[pick(0, int(body.size()) - 1)]);
                break;
            }
        }
        return body;
    }

private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    std::mt19937 m_random;
};

double fuzzSeconds()
{
    bool ok = false;
    const double seconds = qEnvironmentVariable("AEROLOOM_FUZZ_SECONDS").toDouble(&ok);
    return ok && seconds > 0 ? seconds : 3.0;
}

} // namespace

TEST(Fuzz, MutatedRepliesNeverCrashAndDecodedRecordsReadBack)
{
    bool seeded = false;
    const quint32 seed = qEnvironmentVariable("AEROLOOM_FUZZ_SEED").toUInt(&seeded);
    const quint32 used = seeded ? seed : 20261121u;
    Mutator mutator(used);
    const auto samples = SampleBodies::all();
    PoolClip target;
    target.flightId = "F1";
    target.clipId = "c1";
    PoolClip anonymous;
    anonymous.flightId = "F1";

    QElapsedTimer clock;
    clock.start();
    const qint64 budget = qint64(fuzzSeconds() * 1000);
    qint64 runs = 0;
    qint64 decoded = 0;
    while (clock.elapsed() < budget) {
        for (const auto &sample : samples) {
            const QByteArray body = mutator.mutate(sample.body);
            ++runs;
            for (const auto &decoder : samples) {
                bool broke = false;
                if (decoder.decode(body, broke)) {
                    ++decoded;
                    ASSERT_FALSE(broke) << "seed " << used << ", " << decoder.name << " on:\n" << body.toStdString();
                }
            }
            // The edits work on whatever object came back and must leave writable JSON.
            if (auto doc = Wire::parse(body); doc && doc->is_object()) {
                Wire::Json copy = *doc;
                ClipEdits::keep(copy, target);
                ClipEdits::toss(copy, anonymous);
                ClipEdits::retrim(copy, target, 1.25, 2.5);
                ASSERT_NO_THROW((void)copy.dump()) << "seed " << used;
                ASSERT_TRUE(copy["clips"].is_array());
                ASSERT_TRUE(copy["dismissed"].is_array());
            }
        }
    }
    std::printf("fuzz: seed %u, %lld mutated bodies, %lld decoded\n", used, static_cast<long long>(runs),
                static_cast<long long>(decoded));
    EXPECT_GT(runs, 1000);
}
