#include "manual/manualblock.h"

#include <optional>

namespace orvel {

namespace {

// Spaces, tabs and line breaks at both ends.
QString trimmed(QStringView line)
{
    qsizetype from = 0;
    qsizetype to = line.size();
    const auto blank = [](QChar c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; };
    while (from < to && blank(line[from]))
        ++from;
    while (to > from && blank(line[to - 1]))
        --to;
    return line.mid(from, to - from).toString();
}

// The fields of a line's rest: split at every "|", empty fields kept, each trimmed of spaces
// and tabs; a field that is not there reads as empty.
QStringList fields(const QString &rest, qsizetype count)
{
    QStringList parts = rest.split(u'|');
    for (QString &part : parts) {
        qsizetype from = 0;
        qsizetype to = part.size();
        while (from < to && (part[from] == u' ' || part[from] == u'\t'))
            ++from;
        while (to > from && (part[to - 1] == u' ' || part[to - 1] == u'\t'))
            --to;
        part = part.mid(from, to - from);
    }
    while (parts.size() < count)
        parts.append(QString());
    return parts;
}

// "3. Press Return" → 3 and "Press Return"; nothing for "3.5 kg" or "A1. notes".
std::optional<std::pair<int, QString>> step(const QString &line)
{
    const qsizetype dot = line.indexOf(u'.');
    if (dot <= 0 || dot + 1 >= line.size() || line[dot + 1] != u' ')
        return std::nullopt;
    for (qsizetype at = 0; at < dot; ++at)
        if (line[at] < u'0' || line[at] > u'9')
            return std::nullopt;
    bool ok = false;
    const int number = line.left(dot).toInt(&ok);
    if (!ok)
        return std::nullopt;
    return std::make_pair(number, trimmed(QStringView(line).mid(dot + 1)));
}

ManualBlock block(ManualBlock::Kind kind, const QString &text = {})
{
    ManualBlock b;
    b.kind = kind;
    b.text = text;
    return b;
}

} // namespace

QList<ManualBlock> ManualBlock::parse(const QString &text)
{
    QList<ManualBlock> blocks;
    QStringList paragraph;
    const auto flush = [&] {
        if (!paragraph.isEmpty())
            blocks.append(block(Kind::Paragraph, paragraph.join(u' ')));
        paragraph.clear();
    };
    const auto rest = [](const QString &line, qsizetype prefix) {
        return trimmed(QStringView(line).mid(prefix));
    };

    for (const QString &raw : text.split(u'\n')) {
        const QString line = trimmed(raw);
        if (line.isEmpty()) {
            flush();
            continue;
        }
        if (line.startsWith(u"##")) {
            flush();
            blocks.append(block(Kind::Heading, rest(line, 2)));
        } else if (line.startsWith(u"# ")) {
            flush();
            blocks.append(block(Kind::Title, rest(line, 2)));
        } else if (line.startsWith(u"> ")) {
            flush();
            blocks.append(block(Kind::Lead, rest(line, 2)));
        } else if (line.startsWith(u"- ")) {
            flush();
            blocks.append(block(Kind::Bullet, rest(line, 2)));
        } else if (const auto numbered = step(line)) {
            flush();
            ManualBlock b = block(Kind::Step, numbered->second);
            b.number = numbered->first;
            blocks.append(b);
        } else if (line.startsWith(u"keys:")) {
            flush();
            const QStringList parts = fields(rest(line, 5), 2);
            ManualBlock b = block(Kind::Keys, parts[1]);
            b.keys = parts[0].split(u' ', Qt::SkipEmptyParts);
            blocks.append(b);
        } else if (line.startsWith(u"command:") || line.startsWith(u"try:") ||
                   line.startsWith(u"see:")) {
            flush();
            const Kind kind = line.startsWith(u"command:") ? Kind::Command
                              : line.startsWith(u"try:")   ? Kind::TryIt
                                                           : Kind::See;
            const qsizetype prefix = kind == Kind::Command ? 8 : 4; // "command:", "try:", "see:"
            const QStringList parts = fields(rest(line, prefix), 3);
            ManualBlock b = block(kind);
            b.first = parts[0];
            b.second = parts[1];
            b.third = kind == Kind::See ? QString() : parts[2];
            blocks.append(b);
        } else {
            paragraph.append(line);
        }
    }
    flush();
    return blocks;
}

QString ManualBlock::kindName(Kind kind)
{
    switch (kind) {
    case Kind::Title:
        return QStringLiteral("title");
    case Kind::Lead:
        return QStringLiteral("lead");
    case Kind::Heading:
        return QStringLiteral("heading");
    case Kind::Step:
        return QStringLiteral("step");
    case Kind::Bullet:
        return QStringLiteral("bullet");
    case Kind::Paragraph:
        return QStringLiteral("paragraph");
    case Kind::Keys:
        return QStringLiteral("keys");
    case Kind::Command:
        return QStringLiteral("command");
    case Kind::TryIt:
        return QStringLiteral("try");
    case Kind::See:
        return QStringLiteral("see");
    }
    return {};
}

QVariantMap ManualBlock::toMap() const
{
    return {{QStringLiteral("kind"), kindName(kind)}, {QStringLiteral("text"), text},
            {QStringLiteral("number"), number},       {QStringLiteral("keys"), keys},
            {QStringLiteral("first"), first},         {QStringLiteral("second"), second},
            {QStringLiteral("third"), third}};
}

} // namespace orvel
