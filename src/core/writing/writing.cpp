#include "writing/writing.h"

#include <QUuid>

namespace orvel {

namespace {

// Replaces the value when it differs; true when it did.
template <class T> bool assign(T &member, const T &value)
{
    if (member == value)
        return false;
    member = value;
    return true;
}

} // namespace

Writing Writing::begin(const QString &input)
{
    Writing writing;
    writing.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    writing.input = input;
    return writing;
}

bool Writing::take(const CardEvent &event)
{
    switch (event.kind) {
    case CardEvent::Kind::Text:
        if (event.field == QStringLiteral("term"))
            return assign(term, event.value);
        if (event.field == QStringLiteral("translation"))
            return assign(translation, event.value);
        if (event.field == QStringLiteral("definition"))
            return assign(definition, event.value);
        if (event.field == QStringLiteral("usage_notes"))
            return assign(usage, event.value);
        return false;
    case CardEvent::Kind::Count:
        if (event.field == QStringLiteral("examples"))
            return assign(examples, event.count);
        if (event.field == QStringLiteral("conjugations"))
            return assign(conjugations, event.count);
        return false;
    case CardEvent::Kind::Failed:
        return assign(trouble, std::optional<QString>(event.message));
    case CardEvent::Kind::Card:
        return assign(written, true);
    case CardEvent::Kind::Unknown:
        return false;
    }
    return false;
}

std::optional<QString> Writing::narrationFor(const CardEvent &event)
{
    switch (event.kind) {
    case CardEvent::Kind::Text:
        return event.field + QStringLiteral(": ") + event.value;
    case CardEvent::Kind::Count:
        return event.field + QStringLiteral(": ") + QString::number(event.count);
    default:
        return std::nullopt;
    }
}

} // namespace orvel
