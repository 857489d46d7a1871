#include "writing/importcandidates.h"

#include "writing/writingtexts.h"

namespace orvel {

ImportCandidates::ImportCandidates(QObject *parent) : QAbstractListModel(parent) {}

int ImportCandidates::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_words.size());
}

QVariant ImportCandidates::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Candidate &word = m_words[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case TermRole:
        return word.term;
    case SeenAsRole:
        return word.seenAs;
    case GlossRole:
        return word.gloss;
    case SentenceRole:
        return word.sentence;
    case LevelRole:
        return word.level;
    case SeenAsTextRole:
        return word.seenAs.isEmpty() ? QString() : writingtexts::seenAs(word.seenAs);
    case ChosenRole:
        return m_chosen.contains(word.term);
    default:
        return {};
    }
}

bool ImportCandidates::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != ChosenRole ||
        !checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return false;
    setChosen(index.row(), value.toBool());
    return true;
}

QHash<int, QByteArray> ImportCandidates::roleNames() const
{
    return {{TermRole, "term"},         {SeenAsRole, "seenAs"}, {GlossRole, "gloss"},
            {SentenceRole, "sentence"}, {LevelRole, "level"},   {SeenAsTextRole, "seenAsText"},
            {ChosenRole, "chosen"}};
}

bool ImportCandidates::startsChosen(const Candidate &word)
{
    return word.level != QLatin1String("specialist");
}

void ImportCandidates::append(const Candidate &word)
{
    const int row = int(m_words.size());
    beginInsertRows({}, row, row);
    m_words.append(word);
    endInsertRows();
    if (startsChosen(word) && !m_chosen.contains(word.term)) {
        m_chosen.insert(word.term);
        emitChosenRows();
        emit chosenChanged();
    }
}

void ImportCandidates::reset(const QList<Candidate> &words)
{
    beginResetModel();
    m_words = words;
    m_chosen.clear();
    for (const Candidate &word : words)
        if (startsChosen(word))
            m_chosen.insert(word.term);
    endResetModel();
    emit chosenChanged();
}

QList<Candidate> ImportCandidates::chosenWords() const
{
    QList<Candidate> chosen;
    QSet<QString> taken;
    for (const Candidate &word : m_words)
        if (m_chosen.contains(word.term) && !taken.contains(word.term)) {
            taken.insert(word.term);
            chosen.append(word);
        }
    return chosen;
}

void ImportCandidates::setChosen(int row, bool chosen)
{
    if (row < 0 || row >= m_words.size())
        return;
    const QString &term = m_words[row].term;
    if (m_chosen.contains(term) == chosen)
        return;
    if (chosen)
        m_chosen.insert(term);
    else
        m_chosen.remove(term);
    // Every row of the same term shows the same tick.
    emitChosenRows();
    emit chosenChanged();
}

void ImportCandidates::toggle(int row)
{
    if (row >= 0 && row < m_words.size())
        setChosen(row, !m_chosen.contains(m_words[row].term));
}

void ImportCandidates::chooseNone()
{
    if (m_chosen.isEmpty())
        return;
    m_chosen.clear();
    emitChosenRows();
    emit chosenChanged();
}

void ImportCandidates::emitChosenRows()
{
    if (!m_words.isEmpty())
        emit dataChanged(index(0), index(int(m_words.size()) - 1), {ChosenRole});
}

} // namespace orvel
