#pragma once

#include <QByteArray>
#include <QString>

namespace orvel {

// The type of picture the bytes hold, read from their first bytes: "image/png", "image/jpeg",
// "image/gif" or "image/webp"; empty for anything else (the four kinds a line's picture may be).
QString imageTypeOf(const QByteArray &bytes);

} // namespace orvel
