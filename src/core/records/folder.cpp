#include "records/folder.h"

namespace orvel {

QString Folder::sidebarKey() const
{
    return QStringLiteral("folder-") + QString::number(id);
}

} // namespace orvel
