#include "notes/picturefile.h"

#include "app/services.h"
#include "server/apiclient.h"
#include "server/servererror.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QSaveFile>
#include <QStandardPaths>

namespace orvel {

PictureFile::PictureFile(QObject *parent) : QObject(parent), m_api(Services::current().api()) {}

QString PictureFile::folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) +
           QStringLiteral("/pictures");
}

QString PictureFile::fileFor(const QUrl &address)
{
    const QByteArray name = QCryptographicHash::hash(address.toString(QUrl::FullyEncoded).toUtf8(),
                                                     QCryptographicHash::Sha1)
                                .toHex();
    const QString suffix = QFileInfo(address.path()).suffix().toLower();
    return folder() + u'/' + QString::fromLatin1(name) +
           (suffix.isEmpty() || suffix.size() > 5 ? QString() : u'.' + suffix);
}

void PictureFile::setUrl(const QString &url)
{
    if (m_url == url)
        return;
    m_url = url;
    emit urlChanged();
    const quint64 generation = ++m_generation;
    if (url.isEmpty()) {
        settle({}, false);
        return;
    }
    const QUrl address = m_api.baseUrl().resolved(QUrl(url));
    const QString file = fileFor(address);
    if (QFileInfo(file).size() > 0) {
        settle(QUrl::fromLocalFile(file), false);
        return;
    }
    m_loading = true;
    m_source.clear();
    m_failed = false;
    emit sourceChanged();
    fetch(address, file, generation);
}

QCoro::Task<> PictureFile::fetch(QUrl address, QString file, quint64 generation)
{
    QPointer<PictureFile> self(this);
    QByteArray bytes;
    bool fetched = false;
    try {
        bytes = co_await m_api.fetch(address);
        fetched = !bytes.isEmpty();
    } catch (const ServerError &) {
    }
    if (!self || generation != m_generation)
        co_return;
    if (fetched) {
        QDir().mkpath(folder());
        QSaveFile out(file);
        fetched =
            out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size() && out.commit();
    }
    settle(fetched ? QUrl::fromLocalFile(file) : QUrl(), !fetched);
}

void PictureFile::markBroken()
{
    if (m_source.isLocalFile())
        QFile::remove(m_source.toLocalFile());
    settle({}, true);
}

void PictureFile::settle(const QUrl &source, bool failed)
{
    m_source = source;
    m_failed = failed;
    m_loading = false;
    emit sourceChanged();
}

} // namespace orvel
