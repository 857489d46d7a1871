#include "notes/claimnotice.h"

namespace orvel {

ClaimNotice &ClaimNotice::shared()
{
    static ClaimNotice notice;
    return notice;
}

} // namespace orvel
