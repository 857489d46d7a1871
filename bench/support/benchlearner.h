#pragma once

// A learner signed in to a real orvel-server on loopback, with the services screens find (the
// client, the app state, a silent speech player), for benchmarks that drive the client's own
// classes against the real server. Needs orveltestsupport (ServerProcess, await).
#include "app/appstate.h"
#include "app/services.h"
#include "awaittask.h"
#include "server/apiclient.h"
#include "serverprocess.h"
#include "sound/silentoutput.h"
#include "sound/speech.h"

#include <memory>
#include <QTemporaryDir>

namespace benchsupport {

struct BenchLearner {
    QTemporaryDir dir;
    ServerProcess server{{QStringLiteral("--local")}};
    std::unique_ptr<orvel::APIClient> api;
    std::unique_ptr<orvel::AppState> state;
    orvel::SilentOutput output;
    std::unique_ptr<orvel::Speech> speech;
    std::unique_ptr<orvel::Services> services;
    QString error;
    int learners = 0;

    // Starts the server and installs the services; false (with `error`) when it did not start.
    bool start()
    {
        if (!server.start()) {
            error = server.errorText();
            return false;
        }
        api = std::make_unique<orvel::APIClient>(server.baseUrl(), dir.filePath("jar"), QString());
        state = std::make_unique<orvel::AppState>(*api);
        speech = std::make_unique<orvel::Speech>(*api, output, dir.path());
        services = std::make_unique<orvel::Services>(*api, *state, *speech);
        return true;
    }

    // Signs a new learner up and in, and gives them an empty German deck; its id.
    int newLearnerWithDeck()
    {
        using testsupport::await;
        const QString email = QStringLiteral("bench%1@example.org").arg(++learners);
        await(api->signUp(email, QStringLiteral("a long password"), QStringLiteral("Bench")));
        await(api->signIn(email, QStringLiteral("a long password")));
        return await(api->createDeck(QStringLiteral("Deutsch"), QString(), QStringLiteral("de"),
                                     QStringLiteral("en"), std::nullopt))
            .id;
    }
};

} // namespace benchsupport
