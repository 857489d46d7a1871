// The sound pane's margin switch: nothing shows before the settings arrive, a change is sent at
// once and the reply becomes what the whole app goes by, a refusal puts the switch back.
#include "app/appstate.h"
#include "awaittask.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "sound/soundpane.h"
#include "testservices.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {
QByteArray settings(bool margin)
{
    return QStringLiteral(R"({"voices":{},"rate":1.0,"gain":1.0,"hear_on_flip":false,)"
                          R"("skin":"paper","margin_as_you_go":%1})")
        .arg(margin ? "true" : "false")
        .toUtf8();
}
} // namespace

class TestSoundPane : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

private slots:
    void theMarginSwitch()
    {
        LocalSettings::useFile(m_dir.filePath("orvel.conf"));
        ScriptedServer server;
        APIClient api(server.baseUrl(), m_dir.filePath("cookies"), QString());
        testsupport::TestServices services(api);
        server.reply("GET", "/api/settings", 200, settings(false));
        server.reply("PATCH", "/api/settings", 200, settings(true));

        SoundPane pane;
        QVERIFY(!pane.loaded());
        pane.setMarginAsYouGo(true); // nothing to change before the settings are known
        QCOMPARE(server.requestCount(), 0);
        await(pane.load());
        QVERIFY(pane.loaded());
        QVERIFY(!pane.marginAsYouGo());

        pane.setMarginAsYouGo(true);
        QVERIFY(pane.marginAsYouGo()); // shown at once
        QTRY_VERIFY(!pane.saving());
        QVERIFY(pane.marginAsYouGo());
        const auto sent = QJsonDocument::fromJson(server.lastRequest().body).object();
        QCOMPARE(sent.size(), 1); // only the switch that changed
        QCOMPARE(sent.constBegin().value(), QJsonValue(true));
        // The editor reads the app's copy of the preferences.
        QCOMPARE(services.state().preferences()->marginAsYouGo, std::optional(true));

        server.reply("PATCH", "/api/settings", 503, R"({"error":"Try again in a minute."})");
        QSignalSpy changed(&pane, &SoundPane::preferencesChanged);
        pane.setMarginAsYouGo(false);
        QVERIFY(!pane.marginAsYouGo()); // shown at once, while the change is on its way
        QTRY_COMPARE(pane.trouble(), "Try again in a minute.");
        QVERIFY(pane.marginAsYouGo());
        QVERIFY(!changed.isEmpty()); // the switch is told to show the kept value again
        QVERIFY(!pane.saving());
    }
};

QTEST_GUILESS_MAIN(TestSoundPane)
#include "tst_soundpane.moc"
