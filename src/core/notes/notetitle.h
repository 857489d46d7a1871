#pragma once

#include "notes/draft.h"

#include <QList>
#include <QString>

namespace orvel {

// The title an untitled note is offered: its first written line, spaces collapsed, cut at a word
// boundary to at most `maxLength` characters with "…" when longer. Blank lines and command lines
// ("/…") are passed over; when the first line that holds anything is a picture without words,
// there is no title to offer (empty).
QString suggestedTitle(const QList<Draft> &drafts, int maxLength = 40);

} // namespace orvel
