#include "notes/notelines.h"

#include "notes/notetexts.h"
#include "records/credit.h"

#include <QSet>
#include <QUrl>
#include <QVariantMap>

#include <algorithm>

namespace orvel {

namespace {
bool isBlankLine(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c == u' ' || c == u'\t' || c == u'\n'; });
}
} // namespace

NoteLines::NoteLines(QObject *parent) : QAbstractListModel(parent) {}

int NoteLines::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_drafts.size());
}

QVariant NoteLines::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const int row = index.row();
    const Draft &draft = m_drafts.at(row);
    switch (role) {
    case KeyRole:
        return draft.key.toString(QUuid::WithoutBraces);
    case LineIdRole:
        return draft.id.value_or(0);
    case Qt::DisplayRole:
    case TextRole:
        return draft.text;
    case HasPictureRole:
        return draft.media.has_value();
    case PendingRole:
        return pending(row);
    case StaleRole:
        return marginState(row) == MarginState::Stale;
    case StaleTextRole:
        return marginState(row) == MarginState::Stale ? notetexts::stale() : QString();
    case RemarksRole:
        return remarks(row);
    case PictureRole:
        return picture(draft);
    default:
        return {};
    }
}

QVariantMap NoteLines::picture(const Draft &draft)
{
    if (!draft.media)
        return {};
    const Media &media = *draft.media;
    const QString path = QUrl(media.url).path().toLower();
    return {{QStringLiteral("url"), media.url},
            {QStringLiteral("width"), media.width},
            {QStringLiteral("height"), media.height},
            {QStringLiteral("credit"), media.credit()},
            {QStringLiteral("title"), media.title},
            {QStringLiteral("yours"), learnersOwnPicture(media.origin)},
            {QStringLiteral("moving"),
             path.endsWith(QLatin1String(".gif")) || path.endsWith(QLatin1String(".webp"))}};
}

QHash<int, QByteArray> NoteLines::roleNames() const
{
    return {{KeyRole, "key"},         {LineIdRole, "lineId"},         {TextRole, "text"},
            {PictureRole, "picture"}, {HasPictureRole, "hasPicture"}, {PendingRole, "pending"},
            {StaleRole, "stale"},     {StaleTextRole, "staleText"},   {RemarksRole, "remarks"}};
}

int NoteLines::rowOf(const QUuid &key) const
{
    for (qsizetype i = 0; i < m_drafts.size(); ++i)
        if (m_drafts[i].key == key)
            return int(i);
    return -1;
}

int NoteLines::rowOfId(int id) const
{
    for (qsizetype i = 0; i < m_drafts.size(); ++i)
        if (m_drafts[i].id == id)
            return int(i);
    return -1;
}

void NoteLines::reset(const QList<Draft> &drafts)
{
    const qsizetype before = m_drafts.size();
    beginResetModel();
    m_drafts = drafts;
    m_annotatedText.clear();
    m_unfolded.clear();
    m_deepeningRemark = -1;
    endResetModel();
    if (before != m_drafts.size())
        emit countChanged();
}

void NoteLines::assign(const QList<Draft> &drafts)
{
    QSet<QUuid> wanted;
    for (const Draft &draft : drafts)
        wanted.insert(draft.key);
    for (int row = count() - 1; row >= 0; --row)
        if (!wanted.contains(m_drafts[row].key))
            remove(row);
    for (int i = 0; i < drafts.size(); ++i) {
        const Draft &draft = drafts[i];
        if (i < count() && m_drafts[i].key == draft.key) {
            if (!(m_drafts[i] == draft))
                replace(i, draft);
            continue;
        }
        const int from = rowOf(draft.key);
        if (from > i) {
            move(from, i);
            if (!(m_drafts[i] == draft))
                replace(i, draft);
        } else {
            insert(i, draft);
        }
    }
}

void NoteLines::insert(int row, const Draft &draft)
{
    row = std::clamp(row, 0, count());
    beginInsertRows({}, row, row);
    m_drafts.insert(row, draft);
    endInsertRows();
    emit countChanged();
}

void NoteLines::remove(int row)
{
    if (row < 0 || row >= count())
        return;
    beginRemoveRows({}, row, row);
    m_drafts.remove(row);
    endRemoveRows();
    emit countChanged();
}

void NoteLines::move(int from, int to)
{
    if (from == to || from < 0 || to < 0 || from >= count() || to >= count())
        return;
    beginMoveRows({}, from, from, {}, to > from ? to + 1 : to);
    m_drafts.move(from, to);
    endMoveRows();
}

void NoteLines::setText(int row, const QString &text)
{
    if (row < 0 || row >= count() || m_drafts[row].text == text)
        return;
    m_drafts[row].text = text;
    const QModelIndex at = index(row);
    emit dataChanged(at, at, {TextRole, Qt::DisplayRole, PendingRole, StaleRole, StaleTextRole});
}

void NoteLines::replace(int row, const Draft &draft)
{
    if (row < 0 || row >= count())
        return;
    m_drafts[row] = draft;
    changed(row);
}

void NoteLines::setAnnotatedText(const QUuid &key, const QString &text)
{
    if (m_annotatedText.value(key) == text && m_annotatedText.contains(key))
        return;
    m_annotatedText.insert(key, text);
    const int row = rowOf(key);
    if (row >= 0)
        changed(row);
}

NoteLines::MarginState NoteLines::marginState(int row) const
{
    const Draft &draft = m_drafts.at(row);
    const QString annotated = m_annotatedText.value(draft.key);
    if (draft.annotations.isEmpty() && annotated.isEmpty())
        return MarginState::Blank;
    if (annotated != draft.text)
        return MarginState::Stale;
    return MarginState::Annotated;
}

bool NoteLines::pending(int row) const
{
    return !isBlankLine(m_drafts.at(row).text) && marginState(row) != MarginState::Annotated;
}

int NoteLines::pendingCount() const
{
    int pendingLines = 0;
    for (int row = 0; row < count(); ++row)
        pendingLines += pending(row) ? 1 : 0;
    return pendingLines;
}

QString NoteLines::remarkKey(const QUuid &key, int remark)
{
    return key.toString(QUuid::WithoutBraces) + u':' + QString::number(remark);
}

bool NoteLines::hasRemark(int row, int remark) const
{
    return row >= 0 && row < count() && remark >= 0 && remark < m_drafts[row].annotations.size();
}

int NoteLines::unfolded(int row, int remark) const
{
    if (!hasRemark(row, remark))
        return 0;
    const int stored = int(m_drafts[row].annotations[remark].deeper.size());
    return std::clamp(m_unfolded.value(remarkKey(m_drafts[row].key, remark)), 0, stored);
}

void NoteLines::setUnfolded(int row, int remark, int levels)
{
    if (row < 0 || row >= count())
        return;
    m_unfolded.insert(remarkKey(m_drafts[row].key, remark), std::max(0, levels));
    changed(row);
}

void NoteLines::remarkRemoved(int row, int remark)
{
    const QUuid key = m_drafts.at(row).key;
    const int remarks = int(m_drafts.at(row).annotations.size());
    for (int i = remark; i <= remarks; ++i)
        m_unfolded.insert(remarkKey(key, i), m_unfolded.value(remarkKey(key, i + 1)));
    if (m_deepeningKey == key && m_deepeningRemark > remark)
        --m_deepeningRemark;
}

void NoteLines::setDeepening(const QUuid &key, int remark)
{
    m_deepeningKey = key;
    m_deepeningRemark = remark;
    const int row = rowOf(key);
    if (row >= 0)
        changed(row);
}

void NoteLines::clearDeepening()
{
    const QUuid key = m_deepeningKey;
    m_deepeningKey = QUuid();
    m_deepeningRemark = -1;
    const int row = rowOf(key);
    if (row >= 0)
        changed(row);
}

QVariantList NoteLines::remarks(int row) const
{
    const Draft &draft = m_drafts.at(row);
    QVariantList list;
    list.reserve(draft.annotations.size());
    for (int i = 0; i < draft.annotations.size(); ++i) {
        const Annotation &remark = draft.annotations[i];
        const int shown = unfolded(row, i);
        QStringList levels;
        for (int level = 0; level < shown; ++level)
            levels.append(remark.deeper[level].body);
        // The offer ends once the deepest level the server has is unfolded.
        const bool ended = shown > 0 && remark.deeper[shown - 1].last;
        list.append(QVariantMap{
            {QStringLiteral("kind"), remark.kind},
            {QStringLiteral("kindLabel"), notetexts::kindLabel(remark.kind)},
            {QStringLiteral("span"), remark.span},
            {QStringLiteral("body"), remark.body},
            {QStringLiteral("term"), remark.term},
            {QStringLiteral("edited"), remark.edited},
            {QStringLiteral("levels"), levels},
            {QStringLiteral("deeperText"), ended ? QString() : notetexts::deeper(shown)},
            {QStringLiteral("canFold"), shown > 0},
            {QStringLiteral("deepening"), m_deepeningKey == draft.key && m_deepeningRemark == i},
        });
    }
    return list;
}

void NoteLines::changed(int row)
{
    const QModelIndex at = index(row);
    emit dataChanged(at, at);
}

} // namespace orvel
