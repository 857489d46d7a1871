#include "palette/commandpalette.h"

#include "app/services.h"
#include "app/timings.h"
#include "manual/manualbook.h"
#include "palette/palettekeys.h"
#include "palette/palettetexts.h"
#include "server/apiclient.h"

#include <QVariantMap>

namespace orvel {

namespace {

QVariantMap paletteHint(const QString &key, const QString &label)
{
    return {{QStringLiteral("keys"), QStringList{key}}, {QStringLiteral("label"), label}};
}

} // namespace

CommandPalette::CommandPalette(QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_manual(ManualBook::pages()),
      m_builder(std::make_unique<PaletteBuilder>(PaletteContext{}, m_manual)),
      m_list(new PaletteListModel(this))
{
    m_searchPause.setSingleShot(true);
    connect(&m_searchPause, &QTimer::timeout, this, [this] { search(m_searchedFor); });
}

CommandPalette::~CommandPalette() = default;

void CommandPalette::setContextSource(std::function<PaletteContext()> source)
{
    m_source = std::move(source);
    refresh();
}

void CommandPalette::setManual(QList<ManualPage> pages)
{
    m_manual = std::move(pages);
    refresh();
}

void CommandPalette::replaceBuilder()
{
    std::optional<SearchResults> reply = m_builder->reply();
    m_builder = std::make_unique<PaletteBuilder>(m_source ? m_source() : PaletteContext{}, m_manual,
                                                 std::move(reply));
}

QString CommandPalette::placeholder() const
{
    return palettetexts::placeholder();
}

QString CommandPalette::name() const
{
    return palettetexts::name();
}

std::optional<PaletteItem> CommandPalette::selectedItem() const
{
    if (m_selected < 0)
        return std::nullopt;
    return m_list->item(m_selected);
}

QString CommandPalette::emptyText() const
{
    if (m_list->itemCount() > 0)
        return {};
    if (m_stages.isEmpty() && PaletteBuilder::trimmed(m_query).isEmpty())
        return palettetexts::nothingYet();
    return palettetexts::nothingMatches();
}

QVariantList CommandPalette::hints() const
{
    const QVariantMap close = paletteHint(palettekeys::escapeCap(), palettetexts::hintClose());
    if (!m_stages.isEmpty())
        return {paletteHint(palettekeys::enterCap(), palettetexts::hintDoIt()),
                paletteHint(palettekeys::backspaceCap(), palettetexts::hintBack()), close};
    if (PaletteBuilder::trimmed(m_query) == QLatin1String("?"))
        return {close};
    return {paletteHint(palettekeys::enterCap(), palettetexts::hintOpen()),
            paletteHint(palettekeys::tabCap(), palettetexts::hintActions()), close};
}

void CommandPalette::open()
{
    m_searchPause.stop();
    m_calls.abandonLatest();
    const bool wasInStage = inStage();
    m_stages.clear();
    m_savedQueries.clear();
    m_searchedFor.clear();
    m_builder->setReply(std::nullopt);
    setQueryText(QString());
    replaceBuilder();
    rebuild(false);
    if (wasInStage)
        emit stageChanged();
    emit hintsChanged();
    if (!m_opened) {
        m_opened = true;
        emit openedChanged();
    } else {
        emit focusWanted();
    }
}

void CommandPalette::close()
{
    m_searchPause.stop();
    m_calls.abandonLatest();
    setArmed({});
    if (m_opened) {
        m_opened = false;
        emit openedChanged();
    }
}

void CommandPalette::refresh()
{
    // A closed palette reads the app afresh when it opens.
    if (!m_opened)
        return;
    replaceBuilder();
    rebuild(true);
}

void CommandPalette::setQueryText(const QString &query)
{
    if (query == m_query)
        return;
    const bool wasQuestion = PaletteBuilder::trimmed(m_query) == QLatin1String("?");
    m_query = query;
    emit queryChanged();
    if (wasQuestion != (PaletteBuilder::trimmed(m_query) == QLatin1String("?")))
        emit hintsChanged();
}

void CommandPalette::setQuery(const QString &query)
{
    if (query == m_query)
        return;
    setQueryText(query);
    rebuild(false);
    scheduleSearch();
}

void CommandPalette::rebuild(bool keepSelection)
{
    const std::optional<PaletteItem> before = keepSelection ? selectedItem() : std::nullopt;
    const QString armed = keepSelection ? m_armed : QString();
    m_list->show(m_stages.isEmpty() ? m_builder->sections(m_query)
                                    : m_stages.last().sections(m_query));
    const int kept = before ? m_list->indexOf(before->id) : -1;
    m_selected = -1;
    m_armed.clear();
    setSelected(kept >= 0 ? kept : (m_list->itemCount() > 0 ? 0 : -1));
    setArmed(armed.isEmpty() || m_list->indexOf(armed) < 0 ? QString() : armed);
    emit listChanged();
    emit selectionChanged();
    emit armedChanged();
}

void CommandPalette::setSelected(int index)
{
    if (index == m_selected)
        return;
    m_selected = index;
    m_list->setSelected(index);
    emit selectionChanged();
}

void CommandPalette::setArmed(const QString &id)
{
    if (id == m_armed)
        return;
    m_armed = id;
    m_list->setArmed(id);
    emit armedChanged();
}

bool CommandPalette::move(int step)
{
    const int count = m_list->itemCount();
    if (!m_opened || count == 0)
        return false;
    setSelected(((m_selected + step) % count + count) % count);
    setArmed({});
    return true;
}

bool CommandPalette::perform()
{
    // A copy: the row's action may change what the list holds.
    const std::optional<PaletteItem> item = selectedItem();
    if (!m_opened || !item)
        return false;
    if (item->confirm && m_armed != item->id) {
        setArmed(item->id);
        return true;
    }
    if (!item->run)
        return deeper();
    const PaletteOutcome outcome = item->run();
    if (outcome == PaletteOutcome::Close) {
        if (item->recent)
            PaletteRecent::note(*item->recent);
        close();
        return true;
    }
    setArmed({});
    refresh();
    emit focusWanted();
    return true;
}

bool CommandPalette::deeper()
{
    const std::optional<PaletteItem> item = selectedItem();
    if (!m_opened || !item || !item->stage)
        return false;
    m_searchPause.stop();
    m_stages.append(item->stage());
    m_savedQueries.append(m_query);
    setQueryText(QString());
    setArmed({});
    rebuild(false);
    emit stageChanged();
    emit hintsChanged();
    return true;
}

bool CommandPalette::back()
{
    if (!m_opened || !m_query.isEmpty() || m_stages.isEmpty())
        return false;
    m_stages.removeLast();
    setQueryText(m_savedQueries.takeLast());
    setArmed({});
    rebuild(false);
    emit stageChanged();
    emit hintsChanged();
    scheduleSearch();
    return true;
}

bool CommandPalette::escape()
{
    if (!m_opened)
        return false;
    close();
    return true;
}

bool CommandPalette::choose(int row)
{
    const int index = m_list->itemAtRow(row);
    if (!m_opened || index < 0)
        return false;
    if (index != m_selected) {
        setSelected(index);
        setArmed({});
    }
    return perform();
}

void CommandPalette::scheduleSearch()
{
    if (!m_stages.isEmpty())
        return;
    const QString text = PaletteBuilder::trimmed(m_query);
    if (text.isEmpty()) {
        // A new query starts from no reply rather than the last one's.
        m_searchPause.stop();
        m_calls.abandonLatest();
        m_searchedFor.clear();
        m_builder->setReply(std::nullopt);
        return;
    }
    if (text == QLatin1String("?") || text == m_searchedFor) {
        m_searchPause.stop();
        return;
    }
    m_searchedFor = text;
    m_searchPause.start(Timings::shared().paletteSearch);
}

QCoro::Task<> CommandPalette::search(QString text)
{
    // Quiet: a failed search keeps the reply there is, and says nothing.
    CallOptions options = CallOptions().latest().keepingTrouble();
    options.showsFailure = false;
    const auto found = co_await m_calls.run(m_api.search(text), options);
    if (!found)
        co_return;
    m_builder->setReply(*found);
    if (m_opened && m_stages.isEmpty())
        rebuild(true);
}

} // namespace orvel
