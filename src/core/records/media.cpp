#include "records/media.h"

#include "records/credit.h"

namespace orvel {

QString Media::credit() const
{
    return pictureCredit(author, licence);
}

} // namespace orvel
