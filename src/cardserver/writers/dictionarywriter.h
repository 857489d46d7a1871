#pragma once
#include "dictionaryshelf.h"
#include "writer.h"

namespace cardserver {

class WorkGate;

class DictionaryCard;

// The offline writer: cards, candidates and glosses from the installed FreeDict dictionaries,
// readings from espeak-ng where the dictionary has none. What needs a language model (short
// lessons, deeper levels, memory hooks) it refuses with a message saying how to get one.
class DictionaryWriter : public Writer {
public:
    // `tools`, when given, is the gate espeak-ng passes for readings the dictionary lacks.
    explicit DictionaryWriter(const QString &dictionaryFolder = QStringLiteral("/usr/share/dictd"),
                              WorkGate *tools = nullptr);

    QString name() const override { return QStringLiteral("dictionary"); }
    WrittenCard writeCard(const Languages &langs, const QString &input,
                          const CardProgress &progress) override;
    QJsonArray extract(const Languages &langs, const QString &text,
                       const std::function<void(const QJsonObject &candidate)> &onWord) override;
    QJsonObject byte(const Languages &langs, const QString &topic) override;
    QJsonArray annotateLine(const Languages &langs, const QString &line,
                            const QStringList &context) override;
    QJsonObject deepen(const Languages &langs, const QString &line, const QJsonObject &annotation,
                       int level) override;
    QStringList compose(const Languages &langs, const QString &kind, const QString &term) override;

    // Most characters of a pasted text that extract() reads.
    static constexpr int kExtractLimit = 20000;

    const DictionaryShelf &shelf() const { return m_shelf; }

private:
    Dictionary &dictionaryFor(const Languages &langs) const;
    // Entries for a word as typed or as it stands in a text: the word itself, then (for an
    // inflected or elided form) the word without its ending or its elided article.
    QList<DictEntry> entriesFor(Dictionary &dictionary, const QString &language,
                                const QString &word) const;
    // For an inflected form filed on its own ("sieht", no part of speech, "see: {sehen}, …"),
    // the entries of its dictionary form when they list the form back; otherwise none.
    QList<DictEntry> lemmaEntries(Dictionary &dictionary, const QList<DictEntry> &forms) const;
    // Entries for a learner's input: the whole phrase, then its first content word.
    QList<DictEntry> entriesForInput(Dictionary &dictionary, const QString &language,
                                     const QString &input) const;

    DictionaryShelf m_shelf;
    WorkGate *m_tools;
};

} // namespace cardserver
