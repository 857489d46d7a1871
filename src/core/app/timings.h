#pragma once

#include <chrono>

namespace orvel {

// The app's waiting times in one place: the debounces and undo windows that screens start and
// restart. Screens read the shared instance when they arm a timer, so a test can shrink every
// duration at once before it drives a screen.
struct Timings {
    std::chrono::milliseconds save{900};           // a note is saved this long after the last edit
    std::chrono::milliseconds undoSnapshot{450};   // edits closer together than this undo as one
    std::chrono::milliseconds marginAsYouGo{3000}; // the margin is written this long after a save
    std::chrono::milliseconds cardUndo{7000};      // a deleted card can be brought back this long
    std::chrono::milliseconds pictureSearch{350};  // picture search waits for typing to pause
    std::chrono::milliseconds journalRetry{30000}; // unsaved notes are offered to the server again
    std::chrono::milliseconds draftKeep{150};      // typed lines reach the journal this long after
    std::chrono::milliseconds saveRetry{2000};     // a failed note save is tried again, doubling
    std::chrono::milliseconds paletteSearch{120};  // the palette searches once typing pauses

    // Every duration multiplied by factor (at least 1 ms each).
    Timings scaled(double factor) const;

    // The instance screens read. Tests assign to it (for example shared() =
    // Timings{}.scaled(0.01)).
    static Timings &shared();
};

} // namespace orvel
