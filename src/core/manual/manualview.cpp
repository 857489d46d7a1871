#include "manual/manualview.h"

#include "manual/manualactions.h"
#include "manual/manualblock.h"
#include "manual/manualbook.h"
#include "manual/manualnavigator.h"
#include "manual/manualtexts.h"

namespace orvel {

ManualView::ManualView(QObject *parent) : QObject(parent), m_navigator(ManualNavigator::shared())
{
    connect(&m_navigator, &ManualNavigator::currentChanged, this, &ManualView::readPage);
    readPage();
}

void ManualView::setQuery(const QString &query)
{
    if (m_query == query)
        return;
    m_query = query;
    emit queryChanged();
}

bool ManualView::searching() const
{
    return !m_query.trimmed().isEmpty();
}

QVariantList ManualView::results() const
{
    QVariantList list;
    if (!searching())
        return list;
    for (const ManualPage &page : ManualBook::search(m_query)) {
        const auto chapter = ManualBook::chapterOf(page.id);
        list.append(QVariantMap{{QStringLiteral("id"), page.id},
                                {QStringLiteral("title"), page.title},
                                {QStringLiteral("question"), page.question},
                                {QStringLiteral("chapter"), chapter ? chapter->title : QString()}});
    }
    return list;
}

QVariantList ManualView::chapters() const
{
    QVariantList list;
    const QString current = m_navigator.current();
    for (const ManualChapter &chapter : ManualBook::chapters()) {
        QVariantList pages;
        for (const ManualPage &page : chapter.pages)
            pages.append(QVariantMap{{QStringLiteral("id"), page.id},
                                     {QStringLiteral("title"), page.title},
                                     {QStringLiteral("current"), page.id == current}});
        list.append(QVariantMap{{QStringLiteral("title"), chapter.title},
                                {QStringLiteral("pages"), pages}});
    }
    return list;
}

QString ManualView::pageId() const
{
    return m_navigator.current();
}

QString ManualView::pageTitle() const
{
    return titleOf(m_navigator.current());
}

QString ManualView::chapterTitle() const
{
    const auto chapter = ManualBook::chapterOf(m_navigator.current());
    return chapter ? chapter->title : QString();
}

QVariantMap ManualView::texts() const
{
    return {{QStringLiteral("window"), manualtexts::windowTitle()},
            {QStringLiteral("search"), manualtexts::searchPlaceholder()},
            {QStringLiteral("nothing"), manualtexts::nothingMatches()},
            {QStringLiteral("back"), manualtexts::back()},
            {QStringLiteral("forward"), manualtexts::forward()},
            {QStringLiteral("contents"), manualtexts::contents()}};
}

void ManualView::open(const QString &id)
{
    m_navigator.go(id);
}

bool ManualView::tryIt(const QString &action)
{
    return ManualActions::run(action);
}

QString ManualView::titleOf(const QString &id) const
{
    const auto page = ManualBook::page(id);
    return page ? page->title : QString();
}

void ManualView::readPage()
{
    m_blocks.clear();
    for (const ManualBlock &block : ManualBlock::parse(ManualBook::text(m_navigator.current())))
        m_blocks.append(block.toMap());
    emit pageChanged();
}

} // namespace orvel
