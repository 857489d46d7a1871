// A request's Content-Type and body, read the way the server's routes read them. The input's first
// line is the Content-Type header, the rest the body. A picture type sends the body to the upload
// route's reader (ImageProbe); anything else is a JSON body read through Call::body() and every
// typed read a route makes, on every key present and on items of lists. Bad input may only end in
// an ApiError answering 400 or 415 (or a refused picture); nothing may crash, leak or throw
// anything else, and every refusal must make an error reply that is itself valid JSON.
#include "http/apierror.h"
#include "http/call.h"
#include "http/requestbody.h"
#include "media/imageprobe.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstddef>
#include <cstdint>
#include <string>

using cardserver::ApiError;
using cardserver::Call;
using cardserver::ImageProbe;
using cardserver::RequestBody;

namespace {

void check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

// What the router does with a refusal: a JSON object {"error": message} with the status.
void replyWithError(const ApiError &error)
{
    cardserver::HttpResponse res;
    Call::sendError(res, error.status(), error.message());
    check(res.status == error.status());
    const QJsonDocument reply = QJsonDocument::fromJson(QByteArray::fromStdString(res.body));
    check(reply.isObject() && reply.object().value("error").isString());
    check(!error.message().isEmpty());
}

// Runs one typed read; a refusal must be a 400 with a readable reply.
template <class Read> void attempt(Read read)
{
    try {
        read();
    } catch (const ApiError &error) {
        check(error.status() == 400);
        replyWithError(error);
    }
}

// The reads a route makes of an item of a list (a note's lines, the words of a batch).
void readItem(const QJsonValue &item, const QString &key)
{
    attempt([&] {
        const QJsonObject o = RequestBody::asObject(item, key + QStringLiteral("[]"));
        for (const QString &inner : o.keys()) {
            attempt([&] { (void)RequestBody::stringIn(o, inner, key); });
            attempt([&] { (void)RequestBody::stringIn(o, inner, key, false); });
            attempt([&] {
                if (const auto n = RequestBody::integerIn(o, inner, key))
                    check(double(*n) == o.value(inner).toDouble());
            });
        }
    });
}

void readKey(const RequestBody &body, const QString &key)
{
    check(body.has(key));
    attempt([&] { (void)body.string(key); });
    attempt([&] {
        if (const auto s = body.optionalString(key))
            check(body.object().value(key).isString());
    });
    attempt([&] { (void)body.boolean(key); });
    attempt([&] { (void)body.optionalBoolean(key); });
    attempt([&] {
        if (const auto n = body.optionalInteger(key))
            check(double(*n) == body.object().value(key).toDouble() && body.integer(key) == *n);
    });
    attempt([&] { (void)body.number(key); });
    attempt([&] {
        const QJsonArray items = body.array(key);
        for (const QJsonValue &item : items)
            readItem(item, key);
    });
    attempt([&] { (void)body.objectAt(key); });
}

void readJsonBody(const Call &call)
{
    try {
        const RequestBody body = call.body();
        const QStringList keys = body.object().keys();
        for (const QString &key : keys)
            readKey(body, key);
        // A key the body does not have is missing, never a crash or a default.
        const QString absent = QStringLiteral("\x01absent");
        if (!body.has(absent)) {
            check(!body.optionalString(absent) && !body.optionalInteger(absent) &&
                  !body.optionalBoolean(absent));
            attempt([&] {
                (void)body.string(absent);
                __builtin_trap();
            });
        }
    } catch (const ApiError &error) {
        // Only the body as a whole can be refused here: not JSON, not an object (400), or not
        // sent as application/json (415).
        check(error.status() == 400 || error.status() == 415);
        replyWithError(error);
    }
}

// The upload route: the picture's own bytes decide what it is, whatever the header claimed.
void readPicture(const QByteArray &bytes)
{
    const auto info = ImageProbe::probe(bytes);
    if (!info)
        return;
    check(info->width > 0 && info->height > 0);
    check(info->mime.startsWith(QStringLiteral("image/")) && !info->extension.isEmpty());
    check(ImageProbe::acceptedType(info->mime));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::size_t newline = input.find('\n');
    cardserver::HttpRequest req;
    req.method = "POST";
    if (newline != std::string::npos) {
        req.headers.emplace_back("Content-Type", input.substr(0, newline));
        req.body = input.substr(newline + 1);
    } else {
        req.body = input;
    }
    cardserver::HttpResponse res;
    const Call call(req, res);
    if (ImageProbe::acceptedType(call.header("Content-Type")))
        readPicture(QByteArray::fromStdString(req.body));
    else
        readJsonBody(call);
    return 0;
}
