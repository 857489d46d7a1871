#pragma once

#include "writing/writing.h"

#include <QAbstractListModel>
#include <QtQml/qqml.h>

namespace orvel {

// The writing view's model: the word typed, a heading ("WRITING", or "NOT WRITTEN" with the
// server's message), and six rows — TERM, MEANS, DEFINITION, USAGE, EXAMPLES, PARADIGM — each
// pending until its value arrives. It only reads the Writing it is given; closing it (hide)
// leaves the writing going on the server.
class WritingSheet : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(orvel::Writing writing READ writing WRITE setWriting NOTIFY writingChanged)
    Q_PROPERTY(QString input READ input NOTIFY writingChanged)
    Q_PROPERTY(bool failed READ failed NOTIFY writingChanged)
    Q_PROPERTY(bool over READ over NOTIFY writingChanged)
    Q_PROPERTY(QString heading READ heading NOTIFY writingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY writingChanged)
    Q_PROPERTY(int filledCount READ filledCount NOTIFY writingChanged)
    Q_PROPERTY(QString footer READ footer CONSTANT)
    Q_PROPERTY(bool flattened READ flattened WRITE setFlattened NOTIFY flattenedChanged)
public:
    // DroppedRole: a count row (EXAMPLES, PARADIGM) the finished card has nothing for, which is
    // left out rather than shown as waiting or empty.
    enum Role { LabelRole = Qt::UserRole + 1, ValueRole, FilledRole, DroppedRole };
    Q_ENUM(Role)

    explicit WritingSheet(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const Writing &writing() const { return m_writing; }
    // Takes a new state of the record; only the rows whose value changed are reported.
    void setWriting(const Writing &writing);

    QString input() const { return m_writing.input; }
    bool failed() const { return m_writing.failed(); }
    // Written or failed: no more parts will arrive, so the empty rows stop waiting.
    bool over() const { return m_writing.failed() || m_writing.written; }
    QString heading() const;
    QString trouble() const { return m_writing.troubleText(); }
    int filledCount() const;
    QString footer() const;
    bool flattened() const { return m_flattened; }
    void setFlattened(bool flattened);

    // The row's label and its shown value (empty while pending).
    static QString labelOf(int row);
    static QString valueOf(const Writing &writing, int row);

    // Closes the view; the writing itself goes on.
    Q_INVOKABLE void hide();

signals:
    void writingChanged();
    void flattenedChanged();
    // The learner closed the view.
    void hidden();

private:
    Writing m_writing;
    bool m_flattened = false;
};

} // namespace orvel
