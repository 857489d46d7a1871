#pragma once

#include <optional>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace orvel {

// What one launch of `orvel` asks for, read from its arguments (program name excluded):
//   orvel orvel://auth?code=…      the desktop hands over a sign-in callback
//   orvel --add "word"             add a word from another application
//   orvel --add-selection          add the primary selection
//   orvel --new-deck               open the new-deck sheet (the desktop entry's action)
//   orvel --manual [page]          open the manual (on a page, by its id)
//   orvel --timings                print start-up figures
//   orvel --remind                 show the daily reminder's notification and exit (its timer
//                                  runs this; no window, no hand-over to a running instance)
// -ZELON_HOST URL and --ZELON_HOST=URL belong to the server client and are skipped here.
struct LaunchRequest {
    std::optional<QUrl> callback;
    std::optional<QString> addWord;
    bool addSelection = false;
    bool newDeck = false;
    // --manual: the page asked for, empty for the one shown last.
    std::optional<QString> manualPage;
    bool timings = false;
    bool remind = false;
    QStringList unknown;

    static LaunchRequest parse(const QStringList &arguments);
    // Whether a running instance has anything to do for this launch besides coming forward.
    bool carriesWork() const
    {
        return callback || addWord || addSelection || newDeck || manualPage;
    }
};

} // namespace orvel
