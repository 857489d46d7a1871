#pragma once

#include <QString>

namespace orvel {

// Learner input as it is sent: spaces and tabs trimmed from both ends, line breaks kept.
QString trimSpacesAndTabs(const QString &text);

} // namespace orvel
