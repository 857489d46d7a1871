#pragma once

#include <QString>

namespace orvel {

// Text as searches compare it: case and diacritics folded away, with no locale ('Équipe',
// 'equipe' and 'EQUIPE' fold alike; 'ß' folds to 'ss'). Letters without a decomposition ('ø',
// 'ł') stay as they are.
QString foldText(const QString &text);

} // namespace orvel
