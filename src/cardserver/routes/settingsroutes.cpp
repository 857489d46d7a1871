#include "routes/settingsroutes.h"

#include "app/services.h"
#include "http/apierror.h"
#include "http/router.h"
#include "library/deckstore.h"
#include "library/languagecatalog.h"
#include "settings/preferencesstore.h"
#include "speech/speechrenderer.h"

#include <QHash>

namespace cardserver {

namespace {

using Access = Router::Access;

constexpr int MaxSpokenText = 1000;

// A sentence for hearing what a voice sounds like, in its own language where we have one.
QString sample(const QString &lang)
{
    static const QHash<QString, QString> samples = {
        {"de", "Hallo! So klingt diese Stimme."},
        {"fr", "Bonjour ! Voici cette voix."},
        {"es", "¡Hola! Así suena esta voz."},
        {"it", "Ciao! Ecco come suona questa voce."},
        {"pt", "Olá! É assim que soa esta voz."},
        {"nl", "Hallo! Zo klinkt deze stem."},
        {"en", "Hello! This is how this voice sounds."},
        {"sv", "Hej! Så här låter rösten."},
        {"da", "Hej! Sådan lyder denne stemme."},
        {"pl", "Cześć! Tak brzmi ten głos."},
    };
    return samples.value(lang.section('-', 0, 0), samples.value("en"));
}

QString chosenVoice(const QJsonObject &prefs, const QString &lang)
{
    return prefs.value("voices").toObject().value(lang).toString();
}

void requireSpeech(Services &s)
{
    if (!s.speech.available())
        throw ApiError(503, QStringLiteral("This server cannot speak: espeak-ng and lame are not "
                                           "installed."));
}

void sendClip(Call &call, const QByteArray &mp3)
{
    call.setHeader("Cache-Control", "private, max-age=86400");
    call.send(mp3, "audio/mpeg");
}

} // namespace

void SettingsRoutes::install(Router &router, Services &s)
{
    router.get(R"(/api/settings)", Access::SignedIn,
               [&s](Call &call) { call.reply(s.preferences.get(call.userId)); });

    router.patch(R"(/api/settings)", Access::SignedIn, [&s](Call &call) {
        call.reply(s.preferences.update(call.userId, call.body().object()));
    });

    router.get(R"(/api/settings/voices)", Access::SignedIn, [&s](Call &call) {
        const QJsonObject prefs = s.preferences.get(call.userId);
        QStringList codes = s.decks.languages(call.userId);
        for (const QString &code : prefs.value("voices").toObject().keys())
            if (!codes.contains(code))
                codes.append(code);
        QJsonArray languages;
        for (const QString &code : std::as_const(codes)) {
            const QJsonArray voices = s.speech.available() ? s.speech.voices(code) : QJsonArray();
            QString selected = chosenVoice(prefs, code);
            bool offered = false;
            for (const QJsonValue &v : voices)
                offered = offered || v.toObject().value("id").toString() == selected;
            if (!offered)
                selected =
                    voices.isEmpty() ? QString() : voices.first().toObject().value("id").toString();
            QJsonObject language{{"code", code},
                                 {"name", LanguageCatalog::name(code)},
                                 {"locale", code},
                                 {"selected", selected},
                                 {"voices", voices}};
            if (!s.speech.available())
                language.insert("error", QStringLiteral("This server cannot speak."));
            else if (voices.isEmpty())
                language.insert("error", QStringLiteral("espeak-ng has no voice for %1.")
                                             .arg(LanguageCatalog::name(code)));
            languages.append(language);
        }
        call.reply(QJsonObject{{"audio", s.speech.available()}, {"languages", languages}});
    });

    router.get(R"(/api/audio)", Access::SignedIn, [&s](Call &call) {
        requireSpeech(s);
        const QString text = call.query("text").trimmed();
        const QString lang = call.query("lang").trimmed();
        if (text.isEmpty() || lang.isEmpty())
            throw ApiError::invalid(QStringLiteral("Say what to speak, and in which language."));
        if (text.size() > MaxSpokenText)
            throw ApiError::invalid(QStringLiteral("That is too long to speak in one go."));
        double rate = 1.0;
        if (call.hasQuery("rate") && !call.query("rate").isEmpty()) {
            bool ok = false;
            rate = call.query("rate").toDouble(&ok);
            if (!ok || rate < 0.25 || rate > 4.0)
                throw ApiError::invalid(QStringLiteral("The rate must be between 0.25 and 4."));
        }
        QString voice = call.query("voice").trimmed();
        if (voice.isEmpty())
            voice = chosenVoice(s.preferences.get(call.userId), lang);
        sendClip(call, s.speech.render(text, lang, rate, voice));
    });

    router.get(R"(/api/audio/preview)", Access::SignedIn, [&s](Call &call) {
        requireSpeech(s);
        const QString lang = call.query("lang").trimmed();
        if (lang.isEmpty())
            throw ApiError::invalid(QStringLiteral("Say which language to preview."));
        sendClip(call, s.speech.render(sample(lang), lang, 1.0, call.query("voice").trimmed()));
    });
}

} // namespace cardserver
