// Slash commands and pictures on note lines against a scripted server: reading a command line,
// the menu's keys, running each command (lines composed by the server replace the command line,
// an empty reply, a refusal, the word from the line above), and pictures found, pasted and
// taken off a line.
#include "editorsuite.h"
#include "notes/imagepicker.h"
#include "notes/imagetype.h"
#include "notes/notecommands.h"
#include "notes/notepictures.h"
#include "notes/slash.h"

#include <QSignalSpy>
#include <QTest>

using namespace notetests;

namespace {

const QString ComposePath = QStringLiteral("/api/notes/7/compose");
const QString SearchPath = QStringLiteral("/api/media/search");

QByteArray mediaJson(int id, const QByteArray &origin = "upload")
{
    return R"({"id":)" + QByteArray::number(id) + R"(,"url":"/media/)" + QByteArray::number(id) +
           R"(/p.png","width":640,"height":480,"origin":")" + origin +
           R"(","source_url":"","author":"","licence":"","title":""})";
}

QByteArray found(const QByteArray &query, int count, const QByteArray &sources = {})
{
    QByteArray results = "[";
    for (int n = 0; n < count; ++n)
        results += QByteArray(n ? "," : "") + R"({"url":"https://pictures.example/)" +
                   QByteArray::number(n) + R"(.png","thumb":"","width":10,"height":10,)" +
                   R"("title":"","author":"Ana","licence":"CC BY","source_url":"","origin":"x"})";
    results += "]";
    return R"({"query":")" + query + R"(","results":)" + results +
           (sources.isEmpty() ? QByteArray() : ",\"sources\":" + sources) + "}";
}

QJsonObject bodyOf(const ScriptedServer::Request &request)
{
    return QJsonDocument::fromJson(request.body).object();
}

} // namespace

class TestNoteCommands : public EditorSuite {
    Q_OBJECT

    NoteCommands &commands() { return *m_editor->commands(); }
    NotePictures &pictures() { return *m_editor->pictures(); }
    QString textAt(int row) { return m_editor->lines()->at(row).text; }
    bool press(int row, NoteEditor::LineKey key) { return m_editor->key(row, int(key)); }
    // Types a whole line as the field reports it.
    void type(int row, const QString &text)
    {
        m_editor->placeCaret(row);
        m_editor->edit(row, text);
    }

private slots:
    void init()
    {
        setUpEditor();
        m_server->reply("PATCH", NotePath, 200, notereplies::noteJson(7, {}, {}));
    }
    void cleanup() { tearDownEditor(); }

    void commandLinesAreRead_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("command");
        QTest::addColumn<QString>("verb");
        QTest::addColumn<QString>("arg");
        QTest::addColumn<QString>("named");
        QTest::addColumn<QStringList>("offered");
        const QStringList all{"img", "gif", "conj", "mnemonic", "say"};
        QTest::newRow("a slash alone") << "/" << true << ""
                                       << ""
                                       << "" << all;
        QTest::newRow("case is ignored") << "/IMG cat" << true << "img"
                                         << "cat"
                                         << "img" << QStringList{"img"};
        QTest::newRow("spaces and tabs around") << " \t/img   big cat \t" << true << "img"
                                                << "big cat"
                                                << "img" << QStringList{"img"};
        QTest::newRow("m") << "/m" << true << "m"
                           << ""
                           << "" << QStringList{"mnemonic"};
        QTest::newRow("s, also through speak") << "/s" << true << "s"
                                               << ""
                                               << "" << QStringList{"say"};
        QTest::newRow("an alias names its command") << "/pic" << true << "pic"
                                                    << ""
                                                    << "img" << QStringList{"img"};
        QTest::newRow("conjugate") << "/conjugate laufen" << true << "conjugate"
                                   << "laufen"
                                   << "conj" << QStringList{"conj"};
        QTest::newRow("mem") << "/MEM Hund" << true << "mem"
                             << "Hund"
                             << "mnemonic" << QStringList{"mnemonic"};
        QTest::newRow("c begins conj and nothing else") << "/c" << true << "c"
                                                        << ""
                                                        << "" << QStringList{"conj"};
        QTest::newRow("no such command") << "/xyz foo" << true << "xyz"
                                         << "foo"
                                         << "" << QStringList{};
        QTest::newRow("digits are no verb") << "/1" << false << ""
                                            << ""
                                            << "" << QStringList{};
        QTest::newRow("the slash must come first") << "not /img" << false << ""
                                                   << ""
                                                   << "" << QStringList{};
        QTest::newRow("a verb ends at a space") << "/img/cat" << false << ""
                                                << ""
                                                << "" << QStringList{};
    }

    void commandLinesAreRead()
    {
        QFETCH(QString, line);
        QFETCH(bool, command);
        QFETCH(QString, verb);
        QFETCH(QString, arg);
        QFETCH(QString, named);
        QFETCH(QStringList, offered);
        const std::optional<Slash::Reading> reading = Slash::read(line);
        QCOMPARE(reading.has_value(), command);
        if (!reading)
            return;
        QCOMPARE(reading->verb, verb);
        QCOMPARE(reading->arg, arg);
        QCOMPARE(reading->command ? reading->command->name : QString(), named);
        QStringList names;
        for (const Slash::Command &c : reading->offered)
            names.append(c.name);
        QCOMPARE(names, offered);
    }

    void theMenuFollowsTheCommandLine()
    {
        open({{11, "laufen"}, {12, ""}});
        QSignalSpy menu(&commands(), &NoteCommands::menuChanged);
        type(1, QStringLiteral("/"));
        QCOMPARE(commands().row(), 1);
        QCOMPARE(commands().offered().size(), 5);
        QCOMPARE(commands().offered()[0].toMap()["name"].toString(), QStringLiteral("/img"));
        QCOMPARE(commands().offered()[0].toMap()["hint"].toString(),
                 QStringLiteral("Find a picture of it"));
        QCOMPARE(commands().footer(), QStringLiteral("↑ ↓ to choose · ↩ to pick · esc to stop"));

        // Up and Down move within the menu, held at its ends; they don't leave the line.
        QVERIFY(press(1, NoteEditor::LineKey::Up));
        QCOMPARE(commands().at(), 0);
        QVERIFY(press(1, NoteEditor::LineKey::Down));
        QVERIFY(press(1, NoteEditor::LineKey::Down));
        QCOMPARE(commands().at(), 2);
        QCOMPARE(m_editor->caret(), 1);

        // Return picks the highlighted command: the line names it, the caret at its end.
        const int moves = m_editor->caretMoves();
        QVERIFY(press(1, NoteEditor::LineKey::Newline));
        QCOMPARE(textAt(1), QStringLiteral("/conj "));
        QCOMPARE(m_editor->caretPlace(), NoteEditor::LinePlace::End);
        QVERIFY(m_editor->caretMoves() > moves);
        QCOMPARE(m_editor->lines()->count(), 2); // no new line
        QCOMPARE(commands().row(), 1);

        // A picked command keeps what was typed after the verb.
        type(1, QStringLiteral("/me Hund"));
        commands().pick(0);
        QCOMPARE(textAt(1), QStringLiteral("/mnemonic Hund"));

        // An unknown name says so; Return runs nothing and adds no line.
        type(1, QStringLiteral("/zz"));
        QVERIFY(commands().unknown());
        QCOMPARE(commands().noSuchCommand(), QStringLiteral("No command by that name."));
        QVERIFY(press(1, NoteEditor::LineKey::Newline));
        QCOMPARE(m_editor->lines()->count(), 2);
        QCOMPARE(m_server->requestCount(), 0);

        // Escape stops: the menu closes, the line stays as typed; Return is a new line again.
        QVERIFY(press(1, NoteEditor::LineKey::Escape));
        QCOMPARE(commands().row(), -1);
        QCOMPARE(textAt(1), QStringLiteral("/zz"));
        QVERIFY(press(1, NoteEditor::LineKey::Newline));
        QCOMPARE(m_editor->lines()->count(), 3);

        // Leaving the line closes its menu; an ordinary line has none.
        type(0, QStringLiteral("/s"));
        QCOMPARE(commands().row(), 0);
        m_editor->placeCaret(1);
        QCOMPARE(commands().row(), -1);
        type(1, QStringLiteral("/1"));
        QCOMPARE(commands().row(), -1);
        QVERIFY(!menu.isEmpty());
    }

    void composedLinesTakeTheCommandLinesPlace()
    {
        open({{11, "laufen"}, {12, "Ende"}});
        m_editor->key(0, int(NoteEditor::LineKey::Newline));
        m_server->reply("POST", ComposePath, 200,
                        R"({"lines":["ich laufe","du läufst","er läuft"]})");
        // No word after the command: the line above gives it.
        type(1, QStringLiteral("/conj"));
        QVERIFY(press(1, NoteEditor::LineKey::Newline));
        QTRY_COMPARE(m_editor->lines()->count(), 5);
        QCOMPARE(bodyOf(requestsTo(*m_server, "POST", ComposePath).last()),
                 (QJsonObject{{"kind", "conj"}, {"term", "laufen"}}));
        QCOMPARE(textAt(0), QStringLiteral("laufen"));
        QCOMPARE(textAt(1), QStringLiteral("ich laufe"));
        QCOMPARE(textAt(3), QStringLiteral("er läuft"));
        QCOMPARE(textAt(4), QStringLiteral("Ende"));
        for (int row = 1; row <= 3; ++row)
            QCOMPARE(m_editor->lines()->at(row).source, QStringLiteral("/conj"));
        QCOMPARE(m_editor->caret(), 3);
        QCOMPARE(commands().message(), QString());
        // They are saved like any line, with where they came from.
        QTRY_VERIFY(!saves(*m_server).isEmpty() &&
                    sentTexts(saves(*m_server).last()).contains(QStringLiteral("du läufst")));
        const QJsonArray sent =
            QJsonDocument::fromJson(saves(*m_server).last().body)["lines"].toArray();
        QCOMPARE(sent[1]["source"].toString(), QStringLiteral("/conj"));

        // Undo brings the command line back.
        QVERIFY(press(3, NoteEditor::LineKey::Undo));
        QCOMPARE(textAt(1), QStringLiteral("/conj"));
    }

    void aCommandThatCannotRunLeavesTheLine()
    {
        open({{11, ""}});
        // Nothing after the command and nothing above: no call, and a word is asked for.
        type(0, QStringLiteral("/mnemonic"));
        QVERIFY(press(0, NoteEditor::LineKey::Newline));
        QCOMPARE(commands().message(), QStringLiteral("Say which word — type it after the "
                                                      "command, or put it on the line above."));
        QCOMPARE(countOf(*m_server, "POST", ComposePath), 0);

        // An empty reply.
        m_server->reply("POST", ComposePath, 200, R"({"lines":[]})");
        type(0, QStringLiteral("/mem Hund"));
        QCOMPARE(commands().message(), QString()); // an edit clears it
        QVERIFY(press(0, NoteEditor::LineKey::Newline));
        QTRY_COMPARE(commands().message(), QStringLiteral("Nothing came back for “Hund”"));
        QCOMPARE(textAt(0), QStringLiteral("/mem Hund"));

        // A refusal shows the server's words and keeps the line.
        m_server->reply("POST", ComposePath, 503, R"({"error":"The writer is resting."})");
        type(0, QStringLiteral("/conj laufen"));
        QVERIFY(press(0, NoteEditor::LineKey::Newline));
        QTRY_COMPARE(commands().message(), QStringLiteral("The writer is resting."));
        QCOMPARE(textAt(0), QStringLiteral("/conj laufen"));
        QCOMPARE(m_editor->lines()->count(), 1);
    }

    void sayingAWordTouchesNeitherTheLineNorTheNote()
    {
        open({{11, "Hund"}, {12, ""}});
        type(1, QStringLiteral("/speak"));
        QVERIFY(press(1, NoteEditor::LineKey::Newline));
        QCOMPARE(m_services->speech().saying(), QStringLiteral("Hund"));
        QCOMPARE(textAt(1), QStringLiteral("/speak"));
        QCOMPARE(countOf(*m_server, "POST", ComposePath), 0);
        QTRY_COMPARE(countOf(*m_server, "GET", QStringLiteral("/api/audio")), 1);
        QCOMPARE(
            requestsTo(*m_server, "GET", QStringLiteral("/api/audio")).last().queryValue("lang"),
            QStringLiteral("de"));
    }

    void aFoundPictureIsPlacedOnItsLine()
    {
        open({{11, ""}, {12, "Ende"}});
        m_server->reply("GET", SearchPath, 200, found("Katze", 3));
        m_server->reply("POST", QStringLiteral("/api/media/import"), 200, mediaJson(5, "wiki"));
        type(0, QStringLiteral("/pic Katze"));
        QVERIFY(press(0, NoteEditor::LineKey::Newline));
        ImagePicker *picker = pictures().picker();
        QVERIFY(picker);
        QCOMPARE(pictures().pickingRow(), 0);
        QCOMPARE(picker->query(), QStringLiteral("Katze"));
        QVERIFY(!picker->moving());
        QTRY_COMPARE(picker->found().size(), 3);
        QCOMPARE(requestsTo(*m_server, "GET", SearchPath).last().queryValue("q"),
                 QStringLiteral("Katze"));
        QCOMPARE(requestsTo(*m_server, "GET", SearchPath).last().queryValue("deck"),
                 QStringLiteral("3"));

        // The keys walk one row, held at either end.
        picker->move(-1);
        QCOMPARE(picker->at(), 0);
        picker->move(1);
        picker->move(1);
        picker->move(1);
        QCOMPARE(picker->at(), 2);
        picker->choose();
        QTRY_VERIFY(!pictures().picker());
        QCOMPARE(
            bodyOf(requestsTo(*m_server, "POST", "/api/media/import").last())["url"].toString(),
            QStringLiteral("https://pictures.example/2.png"));
        const Draft &line = m_editor->lines()->at(0);
        QVERIFY(line.media);
        QCOMPARE(line.media->id, 5);
        // The command line keeps the word it was for.
        QCOMPARE(line.text, QStringLiteral("Katze"));
        const QVariantMap shown =
            m_editor->lines()->data(m_editor->lines()->index(0), NoteLines::PictureRole).toMap();
        QCOMPARE(shown["url"].toString(), QStringLiteral("/media/5/p.png"));
        QCOMPARE(shown["yours"].toBool(), false);
        QTRY_VERIFY(
            !saves(*m_server).isEmpty() &&
            QJsonDocument::fromJson(saves(*m_server).last().body)["lines"][0]["media_id"].toInt() ==
                5);

        // Taken off again.
        pictures().remove(0);
        QVERIFY(!m_editor->lines()->at(0).media);
    }

    void thePickerSearchesOnceTypingPausesAndOnlyForSomething()
    {
        open({{11, ""}});
        m_server->reply("GET", SearchPath, 200, found("Hund", 0));
        type(0, QStringLiteral("/img"));
        QVERIFY(press(0, NoteEditor::LineKey::Newline));
        // No word at all: the picker opens and asks for one, without a call.
        QCOMPARE(commands().message(),
                 QStringLiteral("Say which word — type it after the command, or put it on the "
                                "line above."));
        QVERIFY(!pictures().picker());

        pictures().open(m_editor->lines()->at(0).key, QString(), QStringLiteral("img"));
        ImagePicker *picker = pictures().picker();
        QCOMPARE(picker->notice(), QStringLiteral("Type what the picture should be of."));
        picker->setQuery(QStringLiteral("  \t"));
        QTest::qWait(60);
        QCOMPARE(countOf(*m_server, "GET", SearchPath), 0);
        QCOMPARE(picker->notice(), QStringLiteral("Type what the picture should be of."));

        // Four letters in quick succession: one search, for all four.
        for (const char *typed : {"H", "Hu", "Hun", "Hund"})
            picker->setQuery(QString::fromLatin1(typed));
        QTRY_COMPARE(countOf(*m_server, "GET", SearchPath), 1);
        QTest::qWait(60);
        QCOMPARE(countOf(*m_server, "GET", SearchPath), 1);
        QCOMPARE(requestsTo(*m_server, "GET", SearchPath).last().queryValue("q"),
                 QStringLiteral("Hund"));
        QTRY_COMPARE(picker->notice(), QStringLiteral("Nothing found for “Hund”"));
        // Escape places nothing.
        picker->close();
        QVERIFY(!pictures().picker());
        QVERIFY(!m_editor->lines()->at(0).media);
    }

    void movingPicturesSayWhenTheServerHasNone()
    {
        open({{11, "Hund"}, {12, ""}});
        m_server->reply("GET", SearchPath, 200,
                        found("Hund", 1, R"({"tenor":false,"giphy":false})"));
        type(1, QStringLiteral("/gif"));
        QVERIFY(press(1, NoteEditor::LineKey::Newline));
        ImagePicker *picker = pictures().picker();
        QVERIFY(picker && picker->moving());
        QTRY_COMPARE(picker->found().size(), 1);
        QCOMPARE(requestsTo(*m_server, "GET", SearchPath).last().queryValue("kind"),
                 QStringLiteral("gif"));
        QCOMPARE(picker->notice(), QStringLiteral("Diagrams only — set TENOR_API_KEY or "
                                                  "GIPHY_API_KEY for reactions."));
    }

    void aPastedPictureIsUploadedAsItIs()
    {
        open({{11, "Hund"}});
        QByteArray png("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
        png += QByteArray(40, '\x07');
        QCOMPARE(imageTypeOf(png), QStringLiteral("image/png"));
        QCOMPARE(imageTypeOf("GIF89a..."), QStringLiteral("image/gif"));
        QCOMPARE(imageTypeOf(QByteArray("\xff\xd8\xff\xe0", 4)), QStringLiteral("image/jpeg"));
        QCOMPARE(imageTypeOf(QByteArray("RIFF\x10\0\0\0WEBPVP8 ", 16)),
                 QStringLiteral("image/webp"));
        QCOMPARE(imageTypeOf("<svg/>"), QString());

        m_server->reply("POST", QStringLiteral("/api/media"), 200, mediaJson(9));
        pictures().place(0, png, QStringLiteral("image/png"));
        QTRY_VERIFY(m_editor->lines()->at(0).media.has_value());
        const ScriptedServer::Request upload = requestsTo(*m_server, "POST", "/api/media").last();
        QCOMPARE(upload.body, png);
        QCOMPARE(upload.header("content-type"), QByteArray("image/png"));
        QCOMPARE(m_editor->lines()->at(0).text, QStringLiteral("Hund")); // words stay
        QCOMPARE(m_editor->lines()
                     ->data(m_editor->lines()->index(0), NoteLines::PictureRole)
                     .toMap()["yours"]
                     .toBool(),
                 true);

        // A refused upload places nothing and says why.
        pictures().remove(0);
        m_server->reply("POST", QStringLiteral("/api/media"), 415,
                        R"({"error":"That is not a picture."})");
        pictures().place(0, png, QStringLiteral("image/png"));
        QTRY_COMPARE(pictures().trouble(), QStringLiteral("That is not a picture."));
        QVERIFY(!m_editor->lines()->at(0).media);
    }
};

QTEST_GUILESS_MAIN(TestNoteCommands)
#include "tst_notecommands.moc"
