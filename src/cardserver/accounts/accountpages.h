#pragma once
#include <QString>

namespace cardserver {

// The few HTML pages the server shows in a browser: the confirmation result and the
// forgotten-password pages (ask for a link, choose a new password, done).
class AccountPages {
public:
    static QString page(const QString &title, const QString &body);
    static QString confirmed(bool ok);
    static QString forgotForm(const QString &email);
    static QString linkSent(const QString &email);
    static QString tooManyLinks(const QString &message);
    static QString resetForm(const QString &token, const QString &trouble);
    static QString resetDone();
    static QString resetInvalid();
};

} // namespace cardserver
