#include "library/carddetail.h"

#include "app/services.h"
#include "library/cardbin.h"
#include "library/cardlist.h"
#include "server/apiclient.h"

#include <QRegularExpression>
#include <QVariantMap>

namespace orvel {

namespace {
const QString separator = QStringLiteral(" · ");
}

CardDetail::CardDetail(CardList &list, CardBin &bin, QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_list(list), m_bin(bin)
{
    connect(&m_list, &CardList::selectionChanged, this, [this] {
        // A message about one card does not stay when another is chosen.
        if (m_list.selectedCardId() != m_shownId) {
            m_shownId = m_list.selectedCardId();
            m_calls.setTrouble({});
        }
        emit cardChanged();
    });
}

bool CardDetail::hasCard() const
{
    return m_list.hasSelection();
}

Card CardDetail::card() const
{
    return m_list.selectedCard();
}

QString CardDetail::heading() const
{
    const Card card = this->card();
    const QString article = card.article();
    return article.isEmpty() ? card.term : article + u' ' + card.term;
}

QString CardDetail::genderWord(const QString &gender)
{
    const QString text = gender.trimmed().toLower();
    static const QRegularExpression words(QStringLiteral("[^\\w.]+"));
    for (const QString &word : text.split(words, Qt::SkipEmptyParts)) {
        // Feminine is tested first: "feminine" never contains the masculine stems, while a
        // text may name both ("masculine or feminine"), and then the first named wins below.
        if (word == u"f" || word.startsWith(u"fem"))
            return QStringLiteral("feminine");
        if (word == u"m" || word.startsWith(u"masc") || word.startsWith(u"mask"))
            return QStringLiteral("masculine");
    }
    return {};
}

QString CardDetail::kindLine(const Card &card)
{
    QStringList parts;
    if (!card.partOfSpeech.trimmed().isEmpty())
        parts.append(card.partOfSpeech.trimmed());
    const QString gender = genderWord(card.gender);
    if (!gender.isEmpty())
        parts.append(gender);
    return parts.join(separator);
}

QString CardDetail::kindLine() const
{
    return kindLine(card());
}

QVariantList CardDetail::examples() const
{
    QVariantList list;
    for (const Example &example : card().examples)
        list.append(QVariantMap{{QStringLiteral("sentence"), example.sentence},
                                {QStringLiteral("translation"), example.translation},
                                {QStringLiteral("note"), example.note}});
    return list;
}

QVariantList CardDetail::nearby() const
{
    QVariantList list;
    for (const Related &related : card().related) {
        const QString text = related.translation.isEmpty()
                                 ? related.word
                                 : related.word + separator + related.translation;
        list.append(QVariantMap{{QStringLiteral("word"), related.word},
                                {QStringLiteral("translation"), related.translation},
                                {QStringLiteral("relation"), related.relation},
                                {QStringLiteral("text"), text}});
    }
    return list;
}

QVariantList CardDetail::forms() const
{
    QVariantList list;
    for (const Conjugation &table : card().conjugations) {
        QVariantList forms;
        for (const Form &form : table.forms)
            forms.append(QVariantMap{{QStringLiteral("label"), form.label},
                                     {QStringLiteral("form"), form.form}});
        list.append(QVariantMap{{QStringLiteral("tense"), table.tense},
                                {QStringLiteral("note"), table.note},
                                {QStringLiteral("forms"), forms}});
    }
    return list;
}

QString CardDetail::foot(const Card &card)
{
    return QStringLiteral("seen ") + QString::number(card.seen) + separator +
           QString::number(card.known) + QStringLiteral(" right · streak ") +
           QString::number(card.streak);
}

QString CardDetail::foot() const
{
    return foot(card());
}

QCoro::Task<> CardDetail::rewrite()
{
    if (!hasCard() || working())
        co_return;
    co_await run(m_api.regenerate(card().id));
}

QCoro::Task<> CardDetail::answer(bool known)
{
    if (!hasCard() || working())
        co_return;
    co_await run(m_api.review(card().id, known));
}

QCoro::Task<> CardDetail::run(QCoro::Task<Card> call)
{
    if (auto updated = co_await m_calls.run(std::move(call)))
        m_list.replaceCard(*updated);
}

void CardDetail::requestRewrite()
{
    rewrite();
}

void CardDetail::requestAnswer(bool known)
{
    answer(known);
}

void CardDetail::remove()
{
    if (hasCard())
        m_bin.bin(card().id);
}

} // namespace orvel
