#pragma once

#include "notes/draft.h"

#include <QAbstractListModel>
#include <QHash>
#include <QList>
#include <QString>
#include <QtQml/qqmlregistration.h>
#include <QUuid>
#include <QVariantList>
#include <QVariantMap>

namespace orvel {

// The lines of the open note as the editor holds them (its drafts), one row per line, with what
// the margin says about each. The editor changes them only through the calls below, each of
// which tells the view exactly which rows came, went, moved or changed: a line being typed in is
// never rebuilt under the learner's hands.
class NoteLines : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The lines belong to NoteEditor")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Role {
        KeyRole = Qt::UserRole + 1,
        LineIdRole,
        TextRole,
        HasPictureRole,
        PendingRole,
        StaleRole,
        StaleTextRole,
        RemarksRole,
        PictureRole, // {url, width, height, credit, yours, moving}, empty without a picture
    };
    Q_ENUM(Role)

    // Where a line's margin stands, by the server's rule: no margin ever written, written for
    // another text, or current.
    enum class MarginState { Blank, Stale, Annotated };

    explicit NoteLines(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_drafts.size()); }
    const QList<Draft> &drafts() const { return m_drafts; }
    const Draft &at(int row) const { return m_drafts.at(row); }
    // The row of the line with this key, or -1.
    int rowOf(const QUuid &key) const;
    // The row of the line with this server id, or -1.
    int rowOfId(int id) const;

    // Replaces everything (a note opened): one reset.
    void reset(const QList<Draft> &drafts);
    // Makes the rows equal to `drafts` with the fewest row changes: lines matched by key are
    // moved or updated in place, the others inserted or removed (undo, redo).
    void assign(const QList<Draft> &drafts);
    void insert(int row, const Draft &draft);
    void remove(int row);
    // Moves one line to another row (the rows between shift by one).
    void move(int from, int to);
    void setText(int row, const QString &text);
    // Puts a changed version of the line in its row.
    void replace(int row, const Draft &draft);

    // The text the line's margin was written for, as the server reported it.
    QString annotatedText(const QUuid &key) const { return m_annotatedText.value(key); }
    void setAnnotatedText(const QUuid &key, const QString &text);

    MarginState marginState(int row) const;
    // A line with words whose margin is missing or out of date.
    bool pending(int row) const;
    int pendingCount() const;

    // Whether the line at row has a remark at that place.
    bool hasRemark(int row, int remark) const;
    // How many deeper levels of a remark are unfolded (at most as many as it holds).
    int unfolded(int row, int remark) const;
    void setUnfolded(int row, int remark, int levels);
    // A remark removed: the unfolding of the ones after it moves up with them.
    void remarkRemoved(int row, int remark);
    // The remark being taken deeper (its line's key and index), or none.
    void setDeepening(const QUuid &key, int remark);
    void clearDeepening();
    bool deepening() const { return m_deepeningRemark >= 0; }

signals:
    void countChanged();

private:
    QVariantList remarks(int row) const;
    static QVariantMap picture(const Draft &draft);
    void changed(int row);
    static QString remarkKey(const QUuid &key, int remark);

    QList<Draft> m_drafts;
    QHash<QUuid, QString> m_annotatedText;
    QHash<QString, int> m_unfolded;
    QUuid m_deepeningKey;
    int m_deepeningRemark = -1;
};

} // namespace orvel
