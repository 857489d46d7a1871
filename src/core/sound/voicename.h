#pragma once

#include <QString>

namespace orvel {

// A voice's name as the voice lists show it: the name itself and, when it has one, its manner
// ("English (Great Britain)" → "English" and "Great Britain"; "Anna — warm, slow" → "Anna" and
// "warm, slow"). A name with no second part is all name.
struct VoiceName {
    QString name;
    QString manner;

    static VoiceName split(const QString &full);
};

} // namespace orvel
