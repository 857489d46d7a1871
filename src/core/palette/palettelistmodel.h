#pragma once

#include "palette/palettesection.h"

#include <QAbstractListModel>
#include <QList>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

// The palette's sections as one list for the view: a heading row per section, then its item
// rows. Items are also counted on their own ("the flat list", index 0 being the first item of
// the first section), which is what the selection points into.
class PaletteListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The list belongs to CommandPalette")
public:
    enum Role {
        // "section" for a heading, "item" for a row.
        KindRole = Qt::UserRole + 1,
        IdRole,
        GlyphRole,
        TitleRole,
        // The heading's note ("2 in 1 deck").
        NoteRole,
        // An armed row reads "Press ↩ again to delete".
        SubtitleRole,
        MetaRole,
        ShortcutRole,
        // The shortcut's key caps: "1  2" is ["1", "2"].
        KeysRole,
        SerifRole,
        DestructiveRole,
        ArmedRole,
        SelectedRole,
        // What a screen reader says for the row: its texts in order, joined with commas.
        SpokenRole,
    };
    Q_ENUM(Role)

    explicit PaletteListModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Shows new sections with nothing selected or armed.
    void show(QList<PaletteSection> sections);
    const QList<PaletteSection> &sections() const { return m_sections; }

    int itemCount() const { return int(m_items.size()); }
    const PaletteItem &item(int index) const;
    // The item's row in the list, or -1.
    int rowOfItem(int index) const;
    // The item shown at a row, or -1 for a heading or a row outside the list.
    Q_INVOKABLE int itemAtRow(int row) const;
    // The flat index of the item with this id, or -1.
    int indexOf(const QString &id) const;

    // Marks which item is selected (-1 for none) and which is armed (empty for none).
    void setSelected(int index);
    void setArmed(const QString &id);

private:
    struct Row {
        int section = 0;
        // The item's flat index; -1 for the section's heading.
        int item = -1;
    };
    void changed(int index, const QList<int> &roles);

    QList<PaletteSection> m_sections;
    QList<Row> m_rows;
    // Flat index → (section, position in it) and → row.
    QList<std::pair<int, int>> m_items;
    QList<int> m_itemRows;
    int m_selected = -1;
    QString m_armed;
};

} // namespace orvel
