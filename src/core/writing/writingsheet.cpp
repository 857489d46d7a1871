#include "writing/writingsheet.h"

#include "writing/writingtexts.h"

namespace orvel {

namespace {

constexpr int rowTotal = 6;
constexpr int firstCountRow = 4; // EXAMPLES, then PARADIGM

} // namespace

WritingSheet::WritingSheet(QObject *parent) : QAbstractListModel(parent) {}

int WritingSheet::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rowTotal;
}

QString WritingSheet::labelOf(int row)
{
    switch (row) {
    case 0:
        return QStringLiteral("TERM");
    case 1:
        return QStringLiteral("MEANS");
    case 2:
        return QStringLiteral("DEFINITION");
    case 3:
        return QStringLiteral("USAGE");
    case 4:
        return QStringLiteral("EXAMPLES");
    case 5:
        return QStringLiteral("PARADIGM");
    default:
        return {};
    }
}

QString WritingSheet::valueOf(const Writing &writing, int row)
{
    switch (row) {
    case 0:
        return writing.term;
    case 1:
        return writing.translation;
    case 2:
        return writing.definition;
    case 3:
        return writing.usage;
    case 4:
        return writing.examples > 0 ? writingtexts::sentences(writing.examples) : QString();
    case 5:
        return writing.conjugations > 0 ? writingtexts::tenses(writing.conjugations) : QString();
    default:
        return {};
    }
}

QVariant WritingSheet::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() < 0 || index.row() >= rowTotal)
        return {};
    switch (role) {
    case LabelRole:
    case Qt::DisplayRole:
        return labelOf(index.row());
    case ValueRole:
        return valueOf(m_writing, index.row());
    case FilledRole:
        return !valueOf(m_writing, index.row()).isEmpty();
    case DroppedRole:
        return over() && index.row() >= firstCountRow && valueOf(m_writing, index.row()).isEmpty();
    default:
        return {};
    }
}

QHash<int, QByteArray> WritingSheet::roleNames() const
{
    return {{LabelRole, "label"},
            {ValueRole, "value"},
            {FilledRole, "filled"},
            {DroppedRole, "dropped"}};
}

void WritingSheet::setWriting(const Writing &writing)
{
    if (writing == m_writing)
        return;
    const bool wasOver = over();
    const Writing old = std::exchange(m_writing, writing);
    for (int row = 0; row < rowTotal; ++row) {
        if (valueOf(old, row) != valueOf(m_writing, row))
            emit dataChanged(index(row), index(row), {ValueRole, FilledRole, DroppedRole});
    }
    if (wasOver != over())
        emit dataChanged(index(firstCountRow), index(rowTotal - 1), {DroppedRole});
    emit writingChanged();
}

QString WritingSheet::heading() const
{
    return failed() ? writingtexts::notWrittenHeading() : writingtexts::writingHeading();
}

int WritingSheet::filledCount() const
{
    int filled = 0;
    for (int row = 0; row < rowTotal; ++row)
        filled += valueOf(m_writing, row).isEmpty() ? 0 : 1;
    return filled;
}

QString WritingSheet::footer() const
{
    return writingtexts::writingFooter();
}

void WritingSheet::setFlattened(bool flattened)
{
    if (m_flattened == flattened)
        return;
    m_flattened = flattened;
    emit flattenedChanged();
}

void WritingSheet::hide()
{
    emit hidden();
}

} // namespace orvel
