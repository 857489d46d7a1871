#include "palette/palettelistmodel.h"

#include "palette/palettetexts.h"

namespace orvel {

PaletteListModel::PaletteListModel(QObject *parent) : QAbstractListModel(parent) {}

int PaletteListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QHash<int, QByteArray> PaletteListModel::roleNames() const
{
    return {{KindRole, "kind"},
            {IdRole, "itemId"},
            {GlyphRole, "glyph"},
            {TitleRole, "title"},
            {NoteRole, "note"},
            {SubtitleRole, "subtitle"},
            {MetaRole, "meta"},
            {ShortcutRole, "shortcut"},
            {KeysRole, "keys"},
            {SerifRole, "serif"},
            {DestructiveRole, "destructive"},
            {ArmedRole, "armed"},
            {SelectedRole, "selected"},
            {SpokenRole, "spoken"}};
}

QVariant PaletteListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Row &row = m_rows[index.row()];
    const PaletteSection &section = m_sections[row.section];
    if (row.item < 0) {
        switch (role) {
        case KindRole:
            return QStringLiteral("section");
        case TitleRole:
            return section.title;
        case NoteRole:
            return section.note;
        case SpokenRole:
            return section.note.isEmpty() ? section.title
                                          : section.title + QStringLiteral(", ") + section.note;
        case SerifRole:
        case DestructiveRole:
        case ArmedRole:
        case SelectedRole:
            return false;
        case KeysRole:
            return QStringList();
        case IdRole:
        case GlyphRole:
        case SubtitleRole:
        case MetaRole:
        case ShortcutRole:
            return QString();
        default:
            return {};
        }
    }
    const PaletteItem &item = section.items[m_items[row.item].second];
    const bool armed = !m_armed.isEmpty() && item.id == m_armed;
    const QString subtitle = armed ? palettetexts::pressAgainToDelete() : item.subtitle;
    switch (role) {
    case KindRole:
        return QStringLiteral("item");
    case IdRole:
        return item.id;
    case GlyphRole:
        return item.glyph;
    case TitleRole:
        return item.title;
    case NoteRole:
        return QString();
    case SubtitleRole:
        return subtitle;
    case MetaRole:
        return item.meta;
    case ShortcutRole:
        return item.shortcut;
    case KeysRole:
        return item.shortcut.split(QStringLiteral("  "), Qt::SkipEmptyParts);
    case SerifRole:
        return item.serif;
    case DestructiveRole:
        return item.destructive;
    case ArmedRole:
        return armed;
    case SelectedRole:
        return row.item == m_selected;
    case SpokenRole: {
        QStringList parts{item.title};
        for (const QString &part : {subtitle, item.meta, item.shortcut})
            if (!part.isEmpty())
                parts.append(part);
        return parts.join(QStringLiteral(", "));
    }
    default:
        return {};
    }
}

void PaletteListModel::show(QList<PaletteSection> sections)
{
    beginResetModel();
    m_sections = std::move(sections);
    m_rows.clear();
    m_items.clear();
    m_itemRows.clear();
    m_selected = -1;
    m_armed.clear();
    for (int s = 0; s < m_sections.size(); ++s) {
        m_rows.append({s, -1});
        for (int i = 0; i < m_sections[s].items.size(); ++i) {
            m_itemRows.append(int(m_rows.size()));
            m_rows.append({s, int(m_items.size())});
            m_items.append({s, i});
        }
    }
    endResetModel();
}

const PaletteItem &PaletteListModel::item(int index) const
{
    const auto [section, position] = m_items.at(index);
    return m_sections[section].items[position];
}

int PaletteListModel::rowOfItem(int index) const
{
    return index >= 0 && index < m_itemRows.size() ? m_itemRows[index] : -1;
}

int PaletteListModel::itemAtRow(int row) const
{
    return row >= 0 && row < m_rows.size() ? m_rows[row].item : -1;
}

int PaletteListModel::indexOf(const QString &id) const
{
    for (int i = 0; i < m_items.size(); ++i)
        if (item(i).id == id)
            return i;
    return -1;
}

void PaletteListModel::setSelected(int index)
{
    if (index == m_selected)
        return;
    const int before = m_selected;
    m_selected = index;
    changed(before, {SelectedRole});
    changed(index, {SelectedRole});
}

void PaletteListModel::setArmed(const QString &id)
{
    if (id == m_armed)
        return;
    const int before = m_armed.isEmpty() ? -1 : indexOf(m_armed);
    m_armed = id;
    const QList<int> roles{ArmedRole, SubtitleRole, SpokenRole};
    changed(before, roles);
    changed(id.isEmpty() ? -1 : indexOf(id), roles);
}

void PaletteListModel::changed(int index, const QList<int> &roles)
{
    const int row = rowOfItem(index);
    if (row < 0)
        return;
    const QModelIndex at = this->index(row);
    emit dataChanged(at, at, roles);
}

} // namespace orvel
