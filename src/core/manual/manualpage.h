#pragma once

#include <QList>
#include <QObject>
#include <QString>

namespace orvel {

// One page of the manual: its stable id (file names and links use it), its title, and the page
// put as the question it answers ("How do I start a deck?").
struct ManualPage {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString question MEMBER question)
public:
    QString id;
    QString title;
    QString question;

    bool operator==(const ManualPage &) const = default;
};

// A chapter of the manual and its pages, in reading order.
struct ManualChapter {
    QString title;
    QList<ManualPage> pages;
};

} // namespace orvel
