#pragma once

#include "records/decksummary.h"
#include "records/folder.h"

#include <qcoro/qcorotask.h>
#include <QList>

namespace orvel {

class APIClient;

// Everything on the learner's shelf: the deck listing, then the folder listing.
struct ShelfListing {
    QList<DeckSummary> decks;
    QList<Folder> folders;

    static QCoro::Task<ShelfListing> fetch(APIClient &api);
};

} // namespace orvel
