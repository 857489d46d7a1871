#pragma once

#include "library/sidebarrow.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQml/qqml.h>

namespace orvel {

// The sidebar's rows for the view (headings, decks, folders), in the order sidebarRows() gives.
// HomeView fills it; QML only reads it.
class SidebarModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The sidebar belongs to HomeView")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Role {
        KindRole = Qt::UserRole + 1, // "decksHeading", "foldersHeading", "deck", "folder"
        IdRole,
        KeyRole,
        NameRole,
        CountRole,
        FolderIdRole,
        DepthRole,
        OpenRole,
        ShortcutRole,
    };
    Q_ENUM(Role)

    explicit SidebarModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_rows.size()); }
    const QList<SidebarRow> &rows() const { return m_rows; }
    // Replaces the rows. When only the contents of rows changed (same keys in the same order)
    // the view is told which rows changed, so it keeps its scroll position and focus.
    void setRows(QList<SidebarRow> rows);
    // The row of a folder, or -1 (the view scrolls to a folder the palette reveals).
    Q_INVOKABLE int folderRow(int folderId) const;

signals:
    void countChanged();

private:
    QList<SidebarRow> m_rows;
};

} // namespace orvel
