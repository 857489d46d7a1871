// Pictures that reach a note line from the desktop: what a clipboard or a drop holds is read as
// the bytes the copying application gave (an image format, or a copied picture file), with the
// type the bytes themselves show; pixels alone become PNG. Pasting through the real clipboard
// sends those exact bytes to the server.
#include "notereplies.h"
#include "notes/noteeditor.h"
#include "platform/imagetransfer.h"
#include "records/json.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "testservices.h"

#include <QBuffer>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;

namespace {

QByteArray pngOf(const QColor &colour)
{
    QImage image(4, 3, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QString write(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    QFile file(dir.filePath(name));
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(bytes);
    return file.fileName();
}

} // namespace

class TestImageTransfer : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

private slots:
    // The editor's journal of unsaved lines lives in this test's own folder.
    void initTestCase() { qputenv("XDG_DATA_HOME", m_dir.filePath("data").toUtf8()); }

    void whatAClipboardOrADropHolds()
    {
        const QByteArray png = pngOf(Qt::red);
        const QByteArray gif = QByteArray("GIF89a") + QByteArray(20, '\1');

        // An application's own image bytes go as they are.
        QMimeData copied;
        copied.setData(QStringLiteral("image/png"), png);
        auto picture = ImageTransfer::fromMime(copied);
        QVERIFY(picture);
        QCOMPARE(picture->bytes, png);
        QCOMPARE(picture->type, QStringLiteral("image/png"));

        // A file manager's copy: the file's bytes, typed by what they are, not by the name.
        const QString named = write(m_dir, QStringLiteral("cat.png"), gif);
        QMimeData files;
        files.setUrls({QUrl(QStringLiteral("https://example.org/x.png")),
                       QUrl::fromLocalFile(m_dir.filePath(QStringLiteral("missing.png"))),
                       QUrl::fromLocalFile(named)});
        picture = ImageTransfer::fromMime(files);
        QVERIFY(picture);
        QCOMPARE(picture->bytes, gif);
        QCOMPARE(picture->type, QStringLiteral("image/gif"));

        // A file that is no picture, whatever it is called, is not one.
        const QString text = write(m_dir, QStringLiteral("notes.png"), "just words");
        QVERIFY(!ImageTransfer::fromFiles({QUrl::fromLocalFile(text)}));
        ImageTransfer transfer;
        QVERIFY(transfer.holdsPicture({QUrl::fromLocalFile(text)})); // while it hovers
        QVERIFY(!transfer.holdsPicture({QUrl::fromLocalFile(m_dir.filePath("a.txt"))}));

        // Pixels alone become PNG.
        QMimeData pixels;
        QImage image(2, 2, QImage::Format_RGB32);
        image.fill(Qt::blue);
        pixels.setImageData(image);
        picture = ImageTransfer::fromMime(pixels);
        QVERIFY(picture);
        QCOMPARE(picture->type, QStringLiteral("image/png"));
        QCOMPARE(QImage::fromData(picture->bytes).pixelColor(1, 1), QColor(Qt::blue));

        QMimeData words;
        words.setText(QStringLiteral("der Hund"));
        QVERIFY(!ImageTransfer::fromMime(words));
    }

    void pastingSendsTheExactBytes()
    {
        ScriptedServer server;
        APIClient api(server.baseUrl(), m_dir.filePath("jar"), QString());
        testsupport::TestServices services(api);
        server.reply("POST", QStringLiteral("/api/media"), 200,
                     R"({"id":4,"url":"/media/4/p.png","width":4,"height":3,"origin":"yours",)"
                     R"("source_url":"","author":"","licence":"","title":""})");
        server.reply("PATCH", QStringLiteral("/api/notes/7"), 200,
                     notereplies::noteJson(7, {}, {}));
        NoteEditor editor;
        editor.open(json::decode<Note>(notereplies::noteJson(7, {}, {{11, "Katze"}})), 3,
                    QStringLiteral("de"));

        const QByteArray png = pngOf(Qt::green);
        auto *data = new QMimeData;
        data->setData(QStringLiteral("image/png"), png);
        QGuiApplication::clipboard()->setMimeData(data);
        ImageTransfer transfer;
        if (!transfer.clipboardHasPicture())
            QSKIP("this platform's clipboard does not keep what is set on it");
        QVERIFY(transfer.pasteInto(editor.pictures(), 0));
        QTRY_VERIFY(editor.lines()->at(0).media.has_value());
        QList<QByteArray> uploads;
        for (const auto &request : server.requests())
            if (request.method == "POST" && request.path == u"/api/media") {
                QCOMPARE(request.header("content-type"), QByteArray("image/png"));
                uploads.append(request.body);
            }
        QCOMPARE(uploads.size(), 1);
        QCOMPARE(uploads.first(), png);

        // A drop of a picture file onto the line does the same with the file's bytes.
        editor.pictures()->remove(0);
        const QString file = write(m_dir, QStringLiteral("drop.gif"), "GIF87a-------");
        QVERIFY(transfer.dropInto(editor.pictures(), 0, {QUrl::fromLocalFile(file)}));
        QTRY_VERIFY(editor.lines()->at(0).media.has_value());
        QByteArray dropped;
        for (const auto &request : server.requests())
            if (request.path == u"/api/media")
                dropped = request.body;
        QCOMPARE(dropped, QByteArray("GIF87a-------"));
        QVERIFY(!transfer.dropInto(editor.pictures(), 0, {QUrl::fromLocalFile(m_dir.path())}));
    }
};

QTEST_MAIN(TestImageTransfer)
#include "tst_imagetransfer.moc"
