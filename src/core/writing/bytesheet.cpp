#include "writing/bytesheet.h"

#include "server/servererror.h"
#include "writing/writingtexts.h"

#include <QVariantMap>

namespace orvel {

ByteSheet::ByteSheet(Byte byte, QString language, QList<NoteSummary> notes, Keep keep,
                     QObject *parent)
    : QObject(parent), m_byte(std::move(byte)), m_language(std::move(language)),
      m_notes(std::move(notes)), m_keep(std::move(keep)), m_fates(m_byte.phrases.size(), Fate::Bin)
{}

ByteSheet::~ByteSheet() = default;

QVariantList ByteSheet::phrases() const
{
    QVariantList list;
    for (qsizetype at = 0; at < m_byte.phrases.size(); ++at) {
        const Phrase &phrase = m_byte.phrases[at];
        list.append(QVariantMap{{QStringLiteral("phrase"), phrase.phrase},
                                {QStringLiteral("reading"), phrase.reading},
                                {QStringLiteral("meaning"), phrase.meaning},
                                {QStringLiteral("when"), phrase.when},
                                {QStringLiteral("fate"), int(m_fates[at])}});
    }
    return list;
}

ByteSheet::Fate ByteSheet::fate(int at) const
{
    return at >= 0 && at < m_fates.size() ? m_fates[at] : Fate::Bin;
}

void ByteSheet::setFate(int at, Fate fate)
{
    if (at < 0 || at >= m_fates.size() || m_fates[at] == fate)
        return;
    m_fates[at] = fate;
    emit fatesChanged();
}

void ByteSheet::cycleFate(int at)
{
    switch (fate(at)) {
    case Fate::Bin:
        setFate(at, Fate::Note);
        break;
    case Fate::Note:
        setFate(at, Fate::Card);
        break;
    case Fate::Card:
        setFate(at, Fate::Bin);
        break;
    }
}

QVariantList ByteSheet::intoChoices() const
{
    QVariantList choices;
    for (const NoteSummary &note : m_notes) {
        const QString title = note.title.trimmed();
        choices.append(QVariantMap{
            {QStringLiteral("id"), note.id},
            {QStringLiteral("title"), title.isEmpty() ? writingtexts::untitled() : note.title}});
    }
    choices.append(QVariantMap{{QStringLiteral("id"), 0},
                               {QStringLiteral("title"), writingtexts::aNewNote()}});
    return choices;
}

void ByteSheet::setIntoId(int id)
{
    std::optional<int> into;
    for (const NoteSummary &note : m_notes) {
        if (id != 0 && note.id == id)
            into = id;
    }
    if (into == m_into)
        return;
    m_into = into;
    emit intoChanged();
}

void ByteSheet::setContext(bool context)
{
    if (m_context == context)
        return;
    m_context = context;
    emit contextChanged();
}

namespace {

bool hasIdea(const Byte &byte)
{
    return !byte.gist.trimmed().isEmpty() || !byte.explain.trimmed().isEmpty();
}

bool hasCorrection(const Byte &byte)
{
    return !byte.correction.wrong.trimmed().isEmpty() || !byte.correction.right.trimmed().isEmpty();
}

} // namespace

bool ByteSheet::offersContext() const
{
    return hasIdea(m_byte) || hasCorrection(m_byte);
}

QString ByteSheet::contextLabel() const
{
    QStringList parts;
    if (hasIdea(m_byte))
        parts.append(writingtexts::theIdea());
    if (hasCorrection(m_byte))
        parts.append(writingtexts::theCorrection());
    if (parts.isEmpty())
        return {};
    return parts.join(QStringLiteral(" and ")) + QStringLiteral(" too");
}

int ByteSheet::kept() const
{
    return int(m_fates.size() - m_fates.count(Fate::Bin));
}

int ByteSheet::cards() const
{
    return int(m_fates.count(Fate::Card));
}

QString ByteSheet::keepLabel() const
{
    return writingtexts::keepLabel(kept(), cards());
}

QString ByteSheet::keepHint() const
{
    return kept() == 0 ? writingtexts::nothingKeptYet() : QString();
}

QList<Kept> ByteSheet::keptList() const
{
    QList<Kept> list;
    for (qsizetype at = 0; at < m_fates.size(); ++at) {
        if (m_fates[at] != Fate::Bin)
            list.append(Kept{.at = int(at), .card = m_fates[at] == Fate::Card});
    }
    return list;
}

QCoro::Task<> ByteSheet::commit()
{
    if (working() || !m_keep || kept() == 0)
        co_return;
    const auto result = co_await m_calls.run(m_keep(keptList(), m_context, m_into));
    if (!result)
        co_return;
    emit landed(*result);
    emit closed();
}

void ByteSheet::keep()
{
    commit();
}

void ByteSheet::dismiss()
{
    emit closed();
}

QVariantMap ByteSheet::texts()
{
    return {{QStringLiteral("byte"), writingtexts::byteHeading()},
            {QStringLiteral("pattern"), writingtexts::patternHeading()},
            {QStringLiteral("remember"), writingtexts::rememberHeading()},
            {QStringLiteral("whatToRemember"), writingtexts::whatToRemember()},
            {QStringLiteral("hearIt"), writingtexts::hearIt()},
            {QStringLiteral("into"), writingtexts::into()},
            {QStringLiteral("cancel"), writingtexts::cancel()},
            {QStringLiteral("bin"), writingtexts::leaveIt()},
            {QStringLiteral("note"), writingtexts::toANote()},
            {QStringLiteral("card"), writingtexts::asACard()}};
}

} // namespace orvel
