#include "library/shelflisting.h"

#include "server/apiclient.h"

namespace orvel {

QCoro::Task<ShelfListing> ShelfListing::fetch(APIClient &api)
{
    ShelfListing listing;
    listing.decks = co_await api.decks();
    listing.folders = co_await api.folders();
    co_return listing;
}

} // namespace orvel
