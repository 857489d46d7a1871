#include "manual/manualbook.h"

#include "app/textfold.h"

#include <QFile>
#include <QHash>

namespace orvel {

namespace {

ManualPage p(const char *id, const char *title, const char *question)
{
    return {QString::fromUtf8(id), QString::fromUtf8(title), QString::fromUtf8(question)};
}

// What a page is searched by: its title, its question and its text, folded once per run.
const QHash<QString, QString> &searchable()
{
    static const QHash<QString, QString> texts = [] {
        QHash<QString, QString> all;
        for (const ManualPage &page : ManualBook::pages())
            all.insert(page.id, foldText(page.title + u'\n' + page.question + u'\n' +
                                         ManualBook::text(page.id)));
        return all;
    }();
    return texts;
}

} // namespace

const QList<ManualChapter> &ManualBook::chapters()
{
    static const QList<ManualChapter> table = {
        {QStringLiteral("Getting Started"),
         {p("first-deck", "Your first deck", "How do I start a deck?"),
          p("writing-a-card", "Writing a card", "How do I write a card?"),
          p("studying", "Studying", "How do I study?")}},
        {QStringLiteral("Cards"),
         {p("on-a-card", "What is on a card", "What does a card show?"),
          p("reviewing", "Knew it, didn't, rewrite", "How do I rewrite or delete a card?")}},
        {QStringLiteral("Notes"),
         {p("notes", "Lines and the margin", "How do I get the margin on a note?"),
          p("slash-commands", "Slash commands", "What can I type after / in a note?"),
          p("card-from-line", "A card from a line", "How do I make a card from a note?")}},
        {QStringLiteral("Folders"), {p("folders", "Folders", "How do I put decks in folders?")}},
        {QStringLiteral("Find or Do (Ctrl+K)"),
         {p("find-or-do", "Find or Do", "How do I find a card in any deck?")}},
        {QStringLiteral("Adding from Other Apps"),
         {p("other-apps", "Adding from other apps", "How do I add a word from another app?")}},
        {QStringLiteral("Sound, Look and Reminders"),
         {p("sound-look", "Sound, look and reminders", "How do I change the skin or the voice?")}},
        {QStringLiteral("Keyboard Shortcuts"),
         {p("shortcuts", "Keyboard shortcuts", "What are the keyboard shortcuts?")}},
        {QStringLiteral("What's New"), {p("whats-new", "What's new", "What's new in orvel?")}},
    };
    return table;
}

const QList<ManualPage> &ManualBook::pages()
{
    static const QList<ManualPage> all = [] {
        QList<ManualPage> list;
        for (const ManualChapter &chapter : chapters())
            list += chapter.pages;
        return list;
    }();
    return all;
}

std::optional<ManualPage> ManualBook::page(const QString &id)
{
    for (const ManualPage &page : pages())
        if (page.id == id)
            return page;
    return std::nullopt;
}

std::optional<ManualChapter> ManualBook::chapterOf(const QString &id)
{
    for (const ManualChapter &chapter : chapters())
        for (const ManualPage &page : chapter.pages)
            if (page.id == id)
                return chapter;
    return std::nullopt;
}

QString ManualBook::text(const QString &id)
{
    return text(id, {QStringLiteral(":/"), QStringLiteral(":/Manual/")});
}

QString ManualBook::text(const QString &id, const QStringList &folders)
{
    const std::optional<ManualPage> known = page(id);
    if (!known)
        return {};
    const QString name = QStringLiteral("manual-") + id + QStringLiteral(".md");
    for (const QString &folder : folders) {
        QFile file(folder + (folder.endsWith(u'/') ? QString() : QStringLiteral("/")) + name);
        if (file.open(QIODevice::ReadOnly))
            return QString::fromUtf8(file.readAll());
    }
    return QStringLiteral("# ") + known->title +
           QStringLiteral("\n> This page is missing from the app.");
}

QList<ManualPage> ManualBook::search(const QString &query)
{
    const QStringList words = foldText(query).split(u' ', Qt::SkipEmptyParts);
    QList<ManualPage> found;
    for (const ManualPage &page : pages()) {
        const QString &text = searchable().value(page.id);
        if (std::all_of(words.cbegin(), words.cend(),
                        [&](const QString &word) { return text.contains(word); }))
            found.append(page);
    }
    return found;
}

} // namespace orvel
