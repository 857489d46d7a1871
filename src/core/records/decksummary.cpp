#include "records/decksummary.h"

namespace orvel {

QString DeckSummary::sidebarKey() const
{
    return QStringLiteral("deck-") + QString::number(id);
}

} // namespace orvel
