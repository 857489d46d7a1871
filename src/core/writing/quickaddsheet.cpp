#include "writing/quickaddsheet.h"

#include "app/appstate.h"
#include "app/services.h"
#include "library/learnerinput.h"
#include "library/shelflisting.h"
#include "server/apiclient.h"
#include "writing/cardwriter.h"
#include "writing/writingtexts.h"

#include <QVariantMap>

namespace orvel {

namespace {

QVariantMap choice(int id, const QString &name, bool section, bool indent)
{
    return {{QStringLiteral("id"), id},
            {QStringLiteral("name"), name},
            {QStringLiteral("section"), section},
            {QStringLiteral("indent"), indent}};
}

} // namespace

QuickAddSheet::QuickAddSheet(QObject *parent)
    : QObject(parent), m_services(Services::current()), m_writer(new CardWriter(this))
{
    connect(m_writer, &CardWriter::busyChanged, this, [this] {
        emit workingChanged();
        emit canWriteChanged();
    });
    connect(m_writer, &CardWriter::narrationChanged, this, [this] {
        m_narration = m_writer->narration();
        emit narrationChanged();
    });
    connect(m_writer, &CardWriter::written, this, [this](const Card &card) {
        emit added(m_writingInto, card);
        emit closed();
    });
    const auto writerTrouble = [this](const QString &message) { m_calls.setTrouble(message); };
    connect(m_writer, &CardWriter::failed, this, writerTrouble);
    connect(m_writer, &CardWriter::refused, this, writerTrouble);
    connect(m_writer, &CardWriter::finished, this,
            [this] { m_services.state().adoptPreferences(); });
}

QuickAddSheet::~QuickAddSheet() = default;

void QuickAddSheet::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    emit textChanged();
    emit canWriteChanged();
}

void QuickAddSheet::setDecks(const QList<DeckSummary> &decks, const QList<Folder> &folders)
{
    m_decks = decks;
    m_folders = folders;
    emit choicesChanged();
    if (m_deckId)
        setDeckId(*m_deckId);
    emit deckIdChanged();
}

QCoro::Task<> QuickAddSheet::load()
{
    if (loading())
        co_return;
    const auto listing = co_await m_calls.run(ShelfListing::fetch(m_services.api()));
    if (listing)
        setDecks(listing->decks, listing->folders);
}

void QuickAddSheet::reload()
{
    load();
}

void QuickAddSheet::setDeckId(int deckId)
{
    std::optional<int> chosen;
    for (const DeckSummary &deck : m_decks) {
        if (deck.id == deckId && deckId != 0)
            chosen = deckId;
    }
    if (chosen == m_deckId)
        return;
    m_deckId = chosen;
    emit deckIdChanged();
    emit canWriteChanged();
}

QVariantList QuickAddSheet::deckChoices() const
{
    QVariantList choices{choice(0, writingtexts::pickOne(), false, false)};
    QSet<int> folderIds;
    for (const Folder &folder : m_folders)
        folderIds.insert(folder.id);
    // A deck filed in a folder the list does not hold is shown with the loose decks, so that
    // every deck can be chosen.
    for (const DeckSummary &deck : m_decks) {
        if (!deck.folderId || !folderIds.contains(*deck.folderId))
            choices.append(choice(deck.id, deck.name, false, false));
    }
    for (const Folder &folder : m_folders) {
        QVariantList inFolder;
        for (const DeckSummary &deck : m_decks) {
            if (deck.folderId == folder.id)
                inFolder.append(choice(deck.id, deck.name, false, true));
        }
        if (inFolder.isEmpty())
            continue;
        choices.append(choice(0, folder.name, true, false));
        choices.append(inFolder);
    }
    return choices;
}

int QuickAddSheet::chosenIndex() const
{
    if (!m_deckId)
        return 0;
    const QVariantList choices = deckChoices();
    for (qsizetype at = 0; at < choices.size(); ++at) {
        const QVariantMap entry = choices[at].toMap();
        if (!entry.value(QStringLiteral("section")).toBool() &&
            entry.value(QStringLiteral("id")).toInt() == *m_deckId)
            return int(at);
    }
    return 0;
}

bool QuickAddSheet::working() const
{
    return m_writer->busy();
}

bool QuickAddSheet::canWrite() const
{
    return m_deckId.has_value() && !trimSpacesAndTabs(m_text).isEmpty() && !working();
}

QString QuickAddSheet::title() const
{
    return writingtexts::quickAddTitle();
}

QString QuickAddSheet::deckLabel() const
{
    return writingtexts::deckLabel();
}

QString QuickAddSheet::writeLabel() const
{
    return writingtexts::writeTheCard();
}

QString QuickAddSheet::cancelLabel() const
{
    return writingtexts::cancel();
}

void QuickAddSheet::add()
{
    if (!m_deckId || working())
        return;
    const QString word = trimSpacesAndTabs(m_text);
    if (word.isEmpty())
        return;
    for (const DeckSummary &deck : m_decks) {
        if (deck.id == *m_deckId)
            m_writingInto = deck;
    }
    m_calls.setTrouble({});
    m_writer->start(m_writingInto.id, word);
}

void QuickAddSheet::cancel()
{
    emit closed();
}

} // namespace orvel
