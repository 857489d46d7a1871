#pragma once

#include <QString>

namespace orvel {

// The credit line of a picture: the author, or "Unknown" when empty, then " · ", then the
// licence (appended even when empty).
QString pictureCredit(const QString &author, const QString &licence);

} // namespace orvel
