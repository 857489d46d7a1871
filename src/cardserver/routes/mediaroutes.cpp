#include "routes/mediaroutes.h"

#include "app/serveroptions.h"
#include "app/services.h"
#include "http/apierror.h"
#include "http/router.h"
#include "library/deckstore.h"
#include "media/gifsearch.h"
#include "media/imageprobe.h"
#include "media/mediastore.h"
#include "net/outgoingfetch.h"
#include "text/textfold.h"

#include <QDebug>
#include <QRegularExpression>
#include <QUrl>

namespace cardserver {

namespace {

using Access = Router::Access;

ImageProbe::Info checkedImage(const QByteArray &bytes)
{
    if (bytes.size() > MediaRoutes::MaxBytes)
        throw ApiError(413, QStringLiteral("That picture is larger than 10 MB."));
    const auto info = ImageProbe::probe(bytes);
    if (!info)
        throw ApiError(415, QStringLiteral("That is not a PNG, JPEG, GIF or WebP picture."));
    return *info;
}

// Fetches a picture from the web. The learner hears what kind of trouble it was; the address,
// the refused network address and curl's own words go to the log only.
QByteArray fetch(const Services &s, const QString &address)
{
    if (address.isEmpty())
        throw ApiError::invalid(QStringLiteral("That picture has no address to fetch it from."));
    const OutgoingFetch fetcher(AddressPolicy::fromOptions(s.options), MediaRoutes::MaxBytes,
                                s.options.fetchTimeoutSeconds * 1000);
    OutgoingFetch::Result r = fetcher.get(address);
    if (r.outcome != OutgoingFetch::Outcome::Fetched || r.status != 200)
        qWarning().noquote() << "picture import failed:" << r.detail << "status" << r.status;
    switch (r.outcome) {
    case OutgoingFetch::Outcome::NotAllowed:
        throw ApiError::invalid(QStringLiteral("That address is not allowed."));
    case OutgoingFetch::Outcome::TooLarge:
        throw ApiError(413, QStringLiteral("That picture is larger than 10 MB."));
    case OutgoingFetch::Outcome::TimedOut:
    case OutgoingFetch::Outcome::Failed:
        throw ApiError::invalid(QStringLiteral("The picture could not be fetched."));
    case OutgoingFetch::Outcome::Fetched:
        break;
    }
    if (r.status != 200)
        throw ApiError::invalid(QStringLiteral("The picture could not be fetched."));
    return std::move(r.body);
}

} // namespace

void MediaRoutes::install(Router &router, Services &s)
{
    router.post(R"(/api/media)", Access::SignedIn, [&s](Call &call) {
        if (!ImageProbe::acceptedType(call.header("Content-Type")))
            throw ApiError(415, QStringLiteral("Send a PNG, JPEG, GIF or WebP picture."));
        const QByteArray bytes = call.bodyBytes();
        const ImageProbe::Info info = checkedImage(bytes);
        call.reply(s.media.store(call.userId, bytes, info, {"upload", "", "", "", ""}), 201);
    });

    router.post(R"(/api/media/import)", Access::SignedIn, [&s](Call &call) {
        const RequestBody body = call.body();
        const QString address = body.string("url").trimmed();
        const MediaStore::Credit credit{
            body.optionalString("origin").value_or(QString()).trimmed(),
            body.optionalString("source_url").value_or(QString()).trimmed(),
            body.optionalString("author").value_or(QString()).trimmed(),
            body.optionalString("licence").value_or(QString()).trimmed(),
            body.optionalString("title").value_or(QString()).trimmed().left(500)};
        // One of the learner's own pictures comes back as it is.
        static const QRegularExpression own(QStringLiteral("^(?:https?://[^/]+)?/media/(\\d+)/"));
        if (const auto m = own.match(address); m.hasMatch()) {
            const qint64 id = m.captured(1).toLongLong();
            if (s.media.owns(call.userId, id)) {
                call.reply(s.media.media(call.userId, id));
                return;
            }
            if (address.startsWith('/'))
                throw ApiError::notFound(QStringLiteral("That picture does not exist."));
        }
        const QByteArray bytes = fetch(s, address);
        const ImageProbe::Info info = checkedImage(bytes);
        MediaStore::Credit stored = credit;
        if (stored.origin.isEmpty())
            stored.origin = QUrl(address).host();
        call.reply(s.media.store(call.userId, bytes, info, stored), 201);
    });

    router.get(
        R"(/api/media/search)", Access::SignedIn,
        [&s, gifs = GifSearch::fromEnvironment(AddressPolicy::fromOptions(s.options))](Call &call) {
            const QString query = call.query("q").trimmed();
            if (call.hasQuery("deck") && !call.query("deck").isEmpty()) {
                bool ok = false;
                const qint64 deck = call.query("deck").toLongLong(&ok);
                if (!ok)
                    throw ApiError::notFound(QStringLiteral("That deck does not exist."));
                s.decks.info(call.userId, deck);
            }
            const bool moving = call.query("kind") == QLatin1String("gif");
            // The learner's own pictures first; moving ones from the providers that have
            // keys.
            QJsonArray results = s.media.search(call.userId, TextFold::fold(query), moving, 60);
            if (moving)
                for (const QJsonValue &v : gifs.search(query, 24))
                    results.append(v);
            call.reply(QJsonObject{
                {"query", query},
                {"results", results},
                {"sources", QJsonObject{{"tenor", gifs.tenor()}, {"giphy", gifs.giphy()}}}});
        });

    router.get(R"(/media/(\d+)/([0-9a-f]+\.[a-z]+))", Access::Public, [&s](Call &call) {
        const auto picture = s.media.picture(call.id(1), call.capture(2));
        if (!picture)
            throw ApiError::notFound(QStringLiteral("That picture does not exist."));
        call.setHeader("Cache-Control", "private, max-age=31536000, immutable");
        call.setHeader("X-Content-Type-Options", "nosniff");
        call.send(picture->bytes, picture->mime.toStdString());
    });
}

} // namespace cardserver
