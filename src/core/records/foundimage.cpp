#include "records/foundimage.h"

#include "records/credit.h"

namespace orvel {

QString FoundImage::credit() const
{
    return pictureCredit(author, licence);
}

} // namespace orvel
