#pragma once

#include <QNetworkCookieJar>
#include <QString>

namespace orvel {

// A cookie jar kept on disk so the session cookie survives a restart. The file is readable by
// its owner only (0600) and is replaced atomically on every change, so a crash never leaves a
// half-written jar behind. Expired cookies are dropped when the jar is read or written.
class PersistentCookieJar : public QNetworkCookieJar {
    Q_OBJECT
public:
    explicit PersistentCookieJar(QString path, QObject *parent = nullptr);

    static QString defaultPath();
    QString path() const { return m_path; }

    bool setCookiesFromUrl(const QList<QNetworkCookie> &cookies, const QUrl &url) override;
    bool insertCookie(const QNetworkCookie &cookie) override;
    bool updateCookie(const QNetworkCookie &cookie) override;
    bool deleteCookie(const QNetworkCookie &cookie) override;

private:
    void load();
    void save() const;
    QList<QNetworkCookie> liveCookies() const;

    QString m_path;
};

} // namespace orvel
