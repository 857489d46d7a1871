// The picture picker against a real orvel-server holding 500 of the learner's own pictures, each
// on a line of a note: from the last key of a query to the results in the picker, with the
// picker's real pause for typing and with the pause shrunk to nothing (the search alone).
#include "app/timings.h"
#include "benchlearner.h"
#include "notes/imagepicker.h"
#include "records/notedraftline.h"

#include <benchmark/benchmark.h>
#include <QBuffer>
#include <QElapsedTimer>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {

// A small PNG that differs from every other one made here.
QByteArray png(int n)
{
    // 8-bit grey, one pixel wide, n-dependent height so each file is distinct.
    QByteArray bytes = QByteArray::fromBase64("iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklE"
                                              "QVR4nGNoAAAAggCBd81ytgAAAABJRU5ErkJggg==");
    bytes.append("tEXt", 4); // trailing bytes after IEND change the file, not the picture
    bytes.append(QByteArray::number(n));
    return bytes;
}

// The learner with 500 pictures, each on a line of a note: "Katze 0", "Katze 1", …
struct Library {
    benchsupport::BenchLearner learner;
    int deck = 0;

    bool start()
    {
        if (!learner.start())
            return false;
        orvel::APIClient &api = *learner.api;
        deck = learner.newLearnerWithDeck();
        const Note note = await(api.createNote(deck, QString(), QString()));
        QList<NoteDraftLine> lines;
        for (int n = 0; n < 500; ++n) {
            const Media media = await(api.uploadImage(png(n), QStringLiteral("image/png")));
            NoteDraftLine line;
            line.text = QStringLiteral("Katze %1").arg(n);
            line.mediaId = media.id;
            lines.append(line);
        }
        await(api.saveNote(note.id, QStringLiteral("Bilder"), lines));
        return true;
    }
};

Library &library()
{
    static Library l;
    return l;
}

void lastKeyToResults(benchmark::State &state, double pauseFactor)
{
    Library &l = library();
    if (!l.learner.api && !l.start()) {
        state.SkipWithError(qPrintable(l.learner.error));
        return;
    }
    Timings::shared() = Timings{}.scaled(pauseFactor);
    ImagePicker picker(QString(), l.deck, QStringLiteral("img"));
    qsizetype results = 0;
    int round = 0;
    for (auto _ : state) {
        // Two queries in turn, so each keystroke changes the query and a search must run.
        const QString query = (++round % 2) ? QStringLiteral("Katze") : QStringLiteral("katz");
        bool arrived = false;
        auto connection = QObject::connect(&picker, &ImagePicker::resultsChanged,
                                           [&] { arrived = picker.searched() == query; });
        picker.setQuery(query); // the last key
        if (!QTest::qWaitFor([&] { return arrived; }, 10000)) {
            state.SkipWithError("no results within ten seconds");
            break;
        }
        QObject::disconnect(connection);
        results = picker.found().size();
    }
    Timings::shared() = Timings{};
    state.counters["results"] = double(results);
}

void BM_LastKeyToResults(benchmark::State &state)
{
    lastKeyToResults(state, 1.0);
}
BENCHMARK(BM_LastKeyToResults)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_SearchAloneWithoutPause(benchmark::State &state)
{
    lastKeyToResults(state, 0.0);
}
BENCHMARK(BM_SearchAloneWithoutPause)->Unit(benchmark::kMillisecond);

} // namespace
