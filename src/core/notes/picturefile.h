#pragma once

#include <qcoro/qcorotask.h>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QUrl>

namespace orvel {

class APIClient;

// A picture of the server's (a line's picture, a search result's thumbnail) as a file on this
// computer for the view to show. It is fetched once through the app's own connection to the
// server (its session and its cache) and kept under the cache folder, so the view decodes a
// local file at the size it draws, never a second download.
class PictureFile : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString url READ url WRITE setUrl NOTIFY urlChanged)
    Q_PROPERTY(QUrl source READ source NOTIFY sourceChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY sourceChanged)
    Q_PROPERTY(bool failed READ failed NOTIFY sourceChanged)
public:
    explicit PictureFile(QObject *parent = nullptr);

    // The picture's address as the server gave it (relative ones are under the server).
    QString url() const { return m_url; }
    void setUrl(const QString &url);
    // The local file, once it is there.
    QUrl source() const { return m_source; }
    bool loading() const { return m_loading; }
    bool failed() const { return m_failed; }
    // The view could not decode the file: it is dropped, and shown as failed.
    Q_INVOKABLE void markBroken();

    // Where a picture's file is kept.
    static QString folder();
    static QString fileFor(const QUrl &address);

signals:
    void urlChanged();
    void sourceChanged();

private:
    QCoro::Task<> fetch(QUrl address, QString file, quint64 generation);
    void settle(const QUrl &source, bool failed);

    APIClient &m_api;
    QString m_url;
    QUrl m_source;
    bool m_loading = false;
    bool m_failed = false;
    quint64 m_generation = 0;
};

} // namespace orvel
