#pragma once

#include <chrono>

namespace orvel {

// The app's last act before it quits: every open note with changes the server has not
// acknowledged is saved now, waiting at most `bound` in all. Whatever does not make it stays in
// the draft journal and is saved at the next start. True when every note reached the server.
bool flushNotesBeforeQuitting(std::chrono::milliseconds bound);

} // namespace orvel
