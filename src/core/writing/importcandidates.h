#pragma once

#include "records/candidate.h"

#include <QAbstractListModel>
#include <QList>
#include <QSet>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

// The words the server found in a pasted text, in its order, each ticked or not. Specialist
// words are offered unticked; the learner ticks and unticks the rest.
class ImportCandidates : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The words of an import sheet")
    Q_PROPERTY(int chosenCount READ chosenCount NOTIFY chosenChanged)
public:
    enum Role {
        TermRole = Qt::UserRole + 1,
        SeenAsRole,
        GlossRole,
        SentenceRole,
        LevelRole,
        SeenAsTextRole, // "seen as …", empty when the word appeared as it is
        ChosenRole,
    };

    explicit ImportCandidates(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    QHash<int, QByteArray> roleNames() const override;

    const QList<Candidate> &words() const { return m_words; }
    // Appends one word as it arrives; it starts ticked unless it is a specialist word.
    void append(const Candidate &word);
    // Replaces the list with the finished one; the ticks start over the same way.
    void reset(const QList<Candidate> &words);
    void clear() { reset({}); }

    // A word's term is chosen once, however often the text used it.
    bool isChosen(const QString &term) const { return m_chosen.contains(term); }
    int chosenCount() const { return int(m_chosen.size()); }
    // The chosen words in the server's order.
    QList<Candidate> chosenWords() const;

    Q_INVOKABLE void setChosen(int row, bool chosen);
    Q_INVOKABLE void toggle(int row);
    // "None": nothing is chosen.
    Q_INVOKABLE void chooseNone();

    // Whether a word starts ticked: every level but "specialist".
    static bool startsChosen(const Candidate &word);

signals:
    void chosenChanged();

private:
    void emitChosenRows();

    QList<Candidate> m_words;
    QSet<QString> m_chosen;
};

} // namespace orvel
