#include "routes/authroutes.h"

#include "accounts/accountpages.h"
#include "accounts/accountstore.h"
#include "accounts/loginthrottle.h"
#include "accounts/outbox.h"
#include "accounts/passwordhasher.h"
#include "accounts/sessioncookie.h"
#include "app/serveroptions.h"
#include "app/services.h"
#include "http/apierror.h"
#include "http/router.h"
#include "net/clientaddress.h"

#include <QRegularExpression>
#include <QUrl>
#include <QUrlQuery>

namespace cardserver {

namespace {

constexpr qint64 ConfirmSeconds = 7LL * 24 * 3600;
constexpr qint64 ResetSeconds = 3600;

using Access = Router::Access;

bool emailShaped(const QString &email)
{
    static const QRegularExpression shape(QStringLiteral("^[^@\\s]+@[^@\\s]+\\.[^@\\s]+$"));
    return email.size() <= 254 && shape.match(email).hasMatch();
}

QString checkedEmail(const QString &raw)
{
    const QString email = raw.trimmed();
    if (!emailShaped(email))
        throw ApiError::invalid(QStringLiteral("Enter a valid email address."));
    return email;
}

void checkPassword(const QString &password)
{
    if (password.size() < 8)
        throw ApiError::invalid(QStringLiteral("Choose a password of at least 8 characters."));
    if (password.size() > 1024)
        throw ApiError::invalid(QStringLiteral("That password is too long."));
}

// Answers 429 with Retry-After while `wait` is not over.
void refuseWhileWaiting(Call &call, std::chrono::milliseconds wait)
{
    if (wait.count() <= 0)
        return;
    const qint64 seconds = (wait.count() + 999) / 1000; // whole seconds, rounded up
    call.setHeader("Retry-After", std::to_string(seconds));
    throw ApiError(429, QStringLiteral("Too many tries. Wait %1 %2, then try again.")
                            .arg(seconds)
                            .arg(seconds == 1 ? "second" : "seconds"));
}

// Counts a request for a mailed link, or refuses it while this address or this client has
// asked for too many. A one-person server (--local) has no one to ration.
void rationMail(Call &call, Services &s, const QString &email)
{
    if (s.options.local)
        return;
    const QString client = s.clientAddress.of(call);
    refuseWhileWaiting(call, s.throttle.mailWaitBefore(email, client));
    s.throttle.mailAsked(email, client);
}

void sendConfirmation(Services &s, const Account &a)
{
    const QString token = s.accounts.issueToken(a.id, "confirm", ConfirmSeconds);
    const QString link = s.publicUrl + "/confirm?token=" + token;
    s.outbox.post(a.email, QStringLiteral("Confirm your address for orvel"),
                  QStringLiteral("Hello %1,\n\nOpen this link to confirm your address:\n%2\n\n"
                                 "If you did not make an account, ignore this message.")
                      .arg(a.displayName, link),
                  link);
}

void signIn(Call &call, Services &s, const Account &a)
{
    const QString token = s.accounts.startSession(a.id);
    call.setHeader("Set-Cookie", SessionCookie::set(token, call, s.publicUrl));
    call.reply(a.json());
}

} // namespace

void AuthRoutes::install(Router &router, Services &s)
{
    router.get(R"(/api/auth/options)", Access::Public, [&s](Call &call) {
        call.reply(QJsonObject{{"google", s.options.testProviders},
                               {"apple", s.options.testProviders},
                               {"signup", !s.options.noSignup}});
    });

    router.post(R"(/api/auth/signup)", Access::Public, [&s](Call &call) {
        if (s.options.noSignup)
            throw ApiError(403, QStringLiteral("This server takes no new accounts. Ask the person "
                                               "who runs it to make one for you."));
        const RequestBody body = call.body();
        const QString email = checkedEmail(body.string("email"));
        const QString password = body.string("password");
        checkPassword(password);
        QString name = body.optionalString("display_name").value_or(QString()).trimmed();
        if (name.isEmpty())
            name = email.section('@', 0, 0);
        if (name.size() > 100)
            throw ApiError::invalid(QStringLiteral("That name is too long."));
        rationMail(call, s, email);
        const Account a = s.accounts.create(email, password, name, s.options.local);
        sendConfirmation(s, a);
        call.reply(QJsonObject{{"ok", true}}, 201);
    });

    router.post(R"(/api/auth/resend)", Access::Public, [&s](Call &call) {
        const QString email = checkedEmail(call.body().string("email"));
        rationMail(call, s, email);
        // The answer is the same whether or not the address has an account.
        if (const auto a = s.accounts.byEmail(email); a && !a->confirmed)
            sendConfirmation(s, *a);
        call.reply(QJsonObject{{"ok", true}});
    });

    router.post(R"(/api/auth/login)", Access::Public, [&s](Call &call) {
        // The address's shape first: nothing is looked up or hashed for one that cannot be.
        const RequestBody body = call.body();
        const QString email = checkedEmail(body.string("email"));
        const QString password = body.string("password");
        if (password.size() > 1024)
            throw ApiError::invalid(QStringLiteral("That password is too long."));
        const QString client = s.clientAddress.of(call);
        refuseWhileWaiting(call, s.throttle.waitBefore(email, client));
        const auto account = s.accounts.byEmail(email);
        // An unknown address costs the same hashing time as a wrong password, so the answer's
        // timing does not tell which addresses have accounts.
        const bool matches =
            s.hasher.verify(account ? account->passwordHash : s.hasher.decoy(), password);
        if (!account || !matches) {
            s.throttle.failed(email, client);
            throw ApiError(401, QStringLiteral("That email and password don’t match."));
        }
        s.throttle.succeeded(email, client);
        if (!account->confirmed)
            throw ApiError(403, QStringLiteral("Confirm your address first: open the link we "
                                               "sent to %1.")
                                    .arg(account->email));
        signIn(call, s, *account);
    });

    router.post(R"(/api/auth/logout)", Access::Public, [&s](Call &call) {
        const QString token = SessionCookie::read(call);
        if (!token.isEmpty())
            s.accounts.endSession(token);
        call.setHeader("Set-Cookie", SessionCookie::cleared(call, s.publicUrl));
        call.reply(QJsonObject{{"ok", true}});
    });

    router.get(R"(/api/auth/me)", Access::SignedIn, [&s](Call &call) {
        const auto account = s.accounts.byId(call.userId);
        if (!account)
            throw ApiError(401, QStringLiteral("You are signed out."));
        call.reply(account->json());
    });

    router.get(R"(/api/auth/oauth/([A-Za-z0-9_-]+))", Access::Public, [&s](Call &call) {
        const QString provider = call.capture(1).toLower();
        if (!s.options.testProviders || (provider != "google" && provider != "apple"))
            throw ApiError::notFound(
                QStringLiteral("This server does not offer sign-in with %1.").arg(provider));
        QUrl back(QStringLiteral("orvel://signed-in"));
        QUrlQuery query;
        if (!call.query("fail").isEmpty()) {
            query.addQueryItem("error", call.query("fail"));
        } else {
            const Account a = s.accounts.providerAccount(provider);
            query.addQueryItem("code", s.accounts.issueSignInCode(a.id));
        }
        back.setQuery(query);
        call.redirect(back.toString(QUrl::FullyEncoded));
    });

    router.post(R"(/api/auth/exchange)", Access::Public, [&s](Call &call) {
        const QString code = call.body().string("code");
        const qint64 userId = code.isEmpty() ? 0 : s.accounts.takeSignInCode(code);
        const auto account = userId ? s.accounts.byId(userId) : std::nullopt;
        if (!account)
            throw ApiError(401, QStringLiteral("That sign-in did not complete. Try again."));
        signIn(call, s, *account);
    });

    router.post(R"(/api/settings/password)", Access::SignedIn, [&s](Call &call) {
        const RequestBody body = call.body();
        const QString current = body.string("current");
        const QString next = body.string("next");
        const auto account = s.accounts.byId(call.userId);
        if (!account)
            throw ApiError(401, QStringLiteral("You are signed out."));
        // Checking the current password is a sign-in by another door: it counts, and waits, as
        // sign-in failures of the account's address do, so that a borrowed session cannot be
        // used to guess the password (and with it the account for good).
        const QString client = s.clientAddress.of(call);
        refuseWhileWaiting(call, s.throttle.waitBefore(account->email, client));
        if (current.size() > 1024 || !s.hasher.verify(account->passwordHash, current)) {
            s.throttle.failed(account->email, client);
            throw ApiError(403, QStringLiteral("Your current password is not right."));
        }
        s.throttle.succeeded(account->email, client);
        checkPassword(next);
        s.accounts.setPassword(call.userId, next);
        s.accounts.endSessionsExcept(call.userId, SessionCookie::read(call));
        call.reply(QJsonObject{{"ok", true}});
    });

    router.get(R"(/confirm)", Access::Public, [&s](Call &call) {
        const QString token = call.query("token");
        const qint64 userId = token.isEmpty() ? 0 : s.accounts.takeToken(token, "confirm");
        if (userId)
            s.accounts.confirm(userId);
        call.html(AccountPages::confirmed(userId != 0), userId ? 200 : 400);
    });

    router.get(R"(/app)", Access::Public, [](Call &call) {
        if (call.hasQuery("reset")) {
            call.html(AccountPages::resetForm(call.query("reset"), QString()));
            return;
        }
        call.html(AccountPages::forgotForm(call.query("email")));
    });

    router.post(R"(/app/forgot)", Access::Public, [&s](Call &call) {
        const QString email = call.query("email").trimmed();
        // The page is the same either way; an address that cannot be one is not looked up.
        if (emailShaped(email)) {
            try {
                rationMail(call, s, email);
            } catch (const ApiError &e) {
                call.html(AccountPages::tooManyLinks(e.message()), e.status());
                return;
            }
        }
        if (const auto a = emailShaped(email) ? s.accounts.byEmail(email) : std::nullopt) {
            const QString token = s.accounts.issueToken(a->id, "reset", ResetSeconds);
            const QString link = s.publicUrl + "/app?reset=" + token;
            s.outbox.post(a->email, QStringLiteral("Choose a new password for orvel"),
                          QStringLiteral("Hello %1,\n\nOpen this link within an hour to choose a "
                                         "new password:\n%2\n\nIf you did not ask for it, ignore "
                                         "this message; your password stays as it is.")
                              .arg(a->displayName, link),
                          link);
        }
        call.html(AccountPages::linkSent(email));
    });

    router.post(R"(/app/reset)", Access::Public, [&s](Call &call) {
        const QString token = call.query("token");
        const QString password = call.query("password");
        if (password.size() < 8 || password.size() > 1024) {
            call.html(AccountPages::resetForm(
                          token, password.size() < 8
                                     ? QStringLiteral("Choose a password of at least 8 characters.")
                                     : QStringLiteral("That password is too long.")),
                      422);
            return;
        }
        const qint64 userId = token.isEmpty() ? 0 : s.accounts.takeToken(token, "reset");
        if (!userId) {
            call.html(AccountPages::resetInvalid(), 400);
            return;
        }
        s.accounts.setPassword(userId, password);
        s.accounts.endSessionsExcept(userId, QString());
        call.html(AccountPages::resetDone());
    });
}

} // namespace cardserver
