#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace orvel {

// One block of a manual page, read from the page's line-oriented text:
//   # Title               > Lead sentence         ## Heading
//   - Bullet              3. Numbered step        plain lines join into a paragraph
//   keys: Ctrl K | what they do                   command: name | argument | what it does
//   try: action | label | key hint                see: page-id | label
struct ManualBlock {
    enum class Kind { Title, Lead, Heading, Step, Bullet, Paragraph, Keys, Command, TryIt, See };

    Kind kind = Kind::Paragraph;
    QString text;     // title, lead, heading, step, bullet, paragraph and keys texts
    int number = 0;   // a step's number
    QStringList keys; // the key names of a keys block
    // command: name, argument, description; try: action, label, key; see: page id, label.
    QString first;
    QString second;
    QString third;

    bool operator==(const ManualBlock &) const = default;

    static QList<ManualBlock> parse(const QString &text);
    // The block for QML: {kind (its name), text, number, keys, first, second, third}.
    QVariantMap toMap() const;
    static QString kindName(Kind kind);
};

} // namespace orvel
