#include "library/sidebarmodel.h"

namespace orvel {

namespace {
QString kindName(SidebarRow::Kind kind)
{
    switch (kind) {
    case SidebarRow::Kind::DecksHeading:
        return QStringLiteral("decksHeading");
    case SidebarRow::Kind::FoldersHeading:
        return QStringLiteral("foldersHeading");
    case SidebarRow::Kind::Deck:
        return QStringLiteral("deck");
    case SidebarRow::Kind::Folder:
        return QStringLiteral("folder");
    }
    return {};
}

bool sameKeys(const QList<SidebarRow> &a, const QList<SidebarRow> &b)
{
    if (a.size() != b.size())
        return false;
    for (qsizetype i = 0; i < a.size(); ++i)
        if (a[i].key != b[i].key || a[i].folderId != b[i].folderId)
            return false;
    return true;
}
} // namespace

SidebarModel::SidebarModel(QObject *parent) : QAbstractListModel(parent) {}

int SidebarModel::folderRow(int folderId) const
{
    for (qsizetype row = 0; row < m_rows.size(); ++row)
        if (m_rows[row].kind == SidebarRow::Kind::Folder && m_rows[row].id == folderId)
            return int(row);
    return -1;
}

int SidebarModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant SidebarModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const SidebarRow &row = m_rows[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return row.name;
    case KindRole:
        return kindName(row.kind);
    case IdRole:
        return row.id;
    case KeyRole:
        return row.key;
    case CountRole:
        return row.count;
    case FolderIdRole:
        return row.folderId;
    case DepthRole:
        return row.depth;
    case OpenRole:
        return row.open;
    case ShortcutRole:
        return row.shortcut;
    default:
        return {};
    }
}

QHash<int, QByteArray> SidebarModel::roleNames() const
{
    return {{KindRole, "kind"},   {IdRole, "rowId"},    {KeyRole, "key"},
            {NameRole, "name"},   {CountRole, "count"}, {FolderIdRole, "folderId"},
            {DepthRole, "depth"}, {OpenRole, "open"},   {ShortcutRole, "shortcut"}};
}

void SidebarModel::setRows(QList<SidebarRow> rows)
{
    if (sameKeys(m_rows, rows)) {
        for (qsizetype i = 0; i < rows.size(); ++i) {
            if (m_rows[i] == rows[i])
                continue;
            m_rows[i] = rows[i];
            emit dataChanged(index(int(i)), index(int(i)));
        }
        return;
    }
    const bool countChanges = m_rows.size() != rows.size();
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
    if (countChanges)
        emit countChanged();
}

} // namespace orvel
