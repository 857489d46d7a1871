#include "persistentcookiejar.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkCookie>
#include <QSaveFile>
#include <QStandardPaths>

namespace orvel {

PersistentCookieJar::PersistentCookieJar(QString path, QObject *parent)
    : QNetworkCookieJar(parent), m_path(std::move(path))
{
    load();
}

QString PersistentCookieJar::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/orvel/cookies");
}

bool PersistentCookieJar::setCookiesFromUrl(const QList<QNetworkCookie> &cookies, const QUrl &url)
{
    const bool changed = QNetworkCookieJar::setCookiesFromUrl(cookies, url);
    if (changed)
        save();
    return changed;
}

bool PersistentCookieJar::insertCookie(const QNetworkCookie &cookie)
{
    const bool changed = QNetworkCookieJar::insertCookie(cookie);
    if (changed)
        save();
    return changed;
}

bool PersistentCookieJar::updateCookie(const QNetworkCookie &cookie)
{
    const bool changed = QNetworkCookieJar::updateCookie(cookie);
    if (changed)
        save();
    return changed;
}

bool PersistentCookieJar::deleteCookie(const QNetworkCookie &cookie)
{
    const bool changed = QNetworkCookieJar::deleteCookie(cookie);
    if (changed)
        save();
    return changed;
}

QList<QNetworkCookie> PersistentCookieJar::liveCookies() const
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    QList<QNetworkCookie> live;
    for (const QNetworkCookie &cookie : allCookies()) {
        if (cookie.isSessionCookie() || cookie.expirationDate() > now)
            live.append(cookie);
    }
    return live;
}

void PersistentCookieJar::load()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QList<QNetworkCookie> cookies;
    // One cookie per line, in Set-Cookie form with its domain and path.
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (!line.isEmpty())
            cookies.append(QNetworkCookie::parseCookies(line));
    }
    setAllCookies(cookies);
    setAllCookies(liveCookies());
}

void PersistentCookieJar::save() const
{
    const QFileInfo info(m_path);
    QDir().mkpath(info.absolutePath());
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    // Restrict the file before any secret is written to it.
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    for (const QNetworkCookie &cookie : liveCookies()) {
        file.write(cookie.toRawForm(QNetworkCookie::Full));
        file.write("\n");
    }
    if (file.commit())
        QFile::setPermissions(m_path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

} // namespace orvel
