#pragma once

#include <QString>

namespace orvel {

// The credit line of a picture: the author, or "Unknown" when empty, then " · ", then the
// licence (appended even when empty).
QString pictureCredit(const QString &author, const QString &licence);
// Whether a picture's origin says the learner brought it (an upload, or one of their own pictures
// found again) rather than a search provider.
bool learnersOwnPicture(const QString &origin);

} // namespace orvel
