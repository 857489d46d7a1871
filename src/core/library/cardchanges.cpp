#include "library/cardchanges.h"

namespace orvel {

CardChanges &CardChanges::shared()
{
    static CardChanges changes;
    return changes;
}

} // namespace orvel
