#pragma once

#include "records/folder.h"

#include <QList>
#include <QString>

namespace orvel {

// The name of a new folder: "untitled folder" when no folder has that name, else "untitled
// folder 2", "untitled folder 3", … the first that is free. Names are compared in lower case, so
// "Untitled Folder" takes the plain name.
QString untitledFolderName(const QList<Folder> &folders);

} // namespace orvel
