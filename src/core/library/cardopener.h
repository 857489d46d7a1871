#pragma once

#include <optional>
#include <QObject>

namespace orvel {

class HomeView;

// Opens a card of any deck from outside the card list (the command palette): shows the deck's
// cards, waits for them to load when the deck was not open, then selects the card and does what
// was asked with it: nothing more, rewrite it, or delete it (through the undoable bin). A later
// request, another deck opened meanwhile or a deck that fails to load drops the waiting one, so a
// delete never lands on a card the learner has since moved away from.
class CardOpener : public QObject {
    Q_OBJECT
public:
    enum class Then { Show, Rewrite, Delete };

    explicit CardOpener(HomeView &home);

    // False when the deck is not on the shelf.
    bool open(int deckId, int cardId, Then then = Then::Show);
    bool waiting() const { return m_pending.has_value(); }

private:
    struct Pending {
        int deckId = 0;
        int cardId = 0;
        Then then = Then::Show;
    };
    void settle();

    HomeView &m_home;
    std::optional<Pending> m_pending;
};

} // namespace orvel
