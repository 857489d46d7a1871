#pragma once

#include "app/servercalls.h"
#include "records/foundimage.h"
#include "records/gifsources.h"

#include <optional>
#include <qcoro/qcorotask.h>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

class APIClient;

// The picture picker of a note line: it searches as the learner types (once typing pauses; only
// the last query's answer counts), and the arrows and Return choose a result. Still pictures for
// "/img", moving ones for "/gif".
class ImagePicker : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A picture picker is opened by the note editor")
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(bool moving READ moving CONSTANT)
    Q_PROPERTY(QVariantList results READ results NOTIFY resultsChanged)
    Q_PROPERTY(int at READ at NOTIFY atChanged)
    Q_PROPERTY(bool looking READ looking NOTIFY lookingChanged)
    Q_PROPERTY(QString notice READ notice NOTIFY resultsChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(QString footer READ footer CONSTANT)
public:
    // "img" for still pictures, "gif" for moving ones; the deck the note belongs to.
    ImagePicker(QString query, int deck, QString kind, QObject *parent = nullptr);

    QString query() const { return m_query; }
    void setQuery(const QString &query);
    QString kind() const { return m_kind; }
    bool moving() const { return m_kind == QLatin1String("gif"); }
    const QList<FoundImage> &found() const { return m_results; }
    // Each result for the grid: {thumb, title, credit, width, height}.
    QVariantList results() const;
    QString searched() const { return m_searched; }
    const std::optional<GifSources> &sources() const { return m_sources; }
    int at() const { return m_at; }
    bool looking() const { return m_calls.working(); }
    // What the grid says instead of (or above) its results: type something, nothing found, or
    // moving pictures not available.
    QString notice() const;
    QString trouble() const { return m_calls.trouble(); }
    QString footer() const;

    // Right/Down (+1) and Left/Up (-1), held at either end.
    Q_INVOKABLE void move(int step);
    Q_INVOKABLE void select(int index);
    // Return: the highlighted result (or the one given) is chosen.
    Q_INVOKABLE void choose(int index = -1);
    // Escape: nothing is placed.
    Q_INVOKABLE void close();

signals:
    void queryChanged();
    void resultsChanged();
    void atChanged();
    void lookingChanged();
    void troubleChanged();
    void chosen(const orvel::FoundImage &image);
    void closed();

private:
    void look();
    QCoro::Task<> search(QString query);

    APIClient &m_api;
    ServerCalls m_calls{this, &ImagePicker::lookingChanged, &ImagePicker::troubleChanged};
    const int m_deck;
    const QString m_kind;
    QString m_query;
    QString m_searched;
    QList<FoundImage> m_results;
    std::optional<GifSources> m_sources;
    int m_at = 0;
    QTimer m_pause;
};

} // namespace orvel
