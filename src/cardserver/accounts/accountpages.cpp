#include "accounts/accountpages.h"

namespace cardserver {

QString AccountPages::page(const QString &title, const QString &body)
{
    return QStringLiteral("<!doctype html><html lang=\"en\"><head><meta charset=\"utf-8\">"
                          "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
                          "<title>%1 — orvel</title><style>"
                          "body{font-family:system-ui,sans-serif;max-width:28rem;margin:4rem auto;"
                          "padding:0 1rem;color:#222;line-height:1.5}"
                          "h1{font-weight:600;font-size:1.5rem}input{display:block;width:100%;"
                          "box-sizing:border-box;padding:.5rem;margin:.25rem 0 1rem;font-size:1rem}"
                          "button{padding:.5rem 1rem;font-size:1rem}.trouble{color:#a00}"
                          "</style></head><body><h1>%1</h1>%2</body></html>")
        .arg(title.toHtmlEscaped(), body);
}

QString AccountPages::confirmed(bool ok)
{
    if (ok)
        return page(QStringLiteral("Your address is confirmed"),
                    QStringLiteral("<p>Thank you. Go back to orvel and sign in.</p>"));
    return page(QStringLiteral("This link does not work any more"),
                QStringLiteral("<p>It may have been used already, or it is too old. Ask orvel "
                               "to send the confirmation link again.</p>"));
}

QString AccountPages::forgotForm(const QString &email)
{
    return page(QStringLiteral("Forgot your password?"),
                QStringLiteral("<p>Enter the address you signed up with and we will send a link "
                               "to choose a new password.</p>"
                               "<form method=\"post\" action=\"/app/forgot\">"
                               "<label for=\"email\">Email</label>"
                               "<input id=\"email\" name=\"email\" type=\"email\" required "
                               "value=\"%1\"><button type=\"submit\">Send the link</button>"
                               "</form>")
                    .arg(email.toHtmlEscaped()));
}

QString AccountPages::linkSent(const QString &email)
{
    return page(QStringLiteral("Check your inbox"),
                QStringLiteral("<p>If an account uses %1, a link to choose a new password is on "
                               "its way. It works for one hour.</p>")
                    .arg(email.toHtmlEscaped()));
}

QString AccountPages::tooManyLinks(const QString &message)
{
    return page(QStringLiteral("Too many links"),
                QStringLiteral("<p class=\"trouble\">%1</p>").arg(message.toHtmlEscaped()));
}

QString AccountPages::resetForm(const QString &token, const QString &trouble)
{
    const QString note =
        trouble.isEmpty()
            ? QString()
            : QStringLiteral("<p class=\"trouble\">%1</p>").arg(trouble.toHtmlEscaped());
    return page(QStringLiteral("Choose a new password"),
                note + QStringLiteral("<form method=\"post\" action=\"/app/reset\">"
                                      "<input type=\"hidden\" name=\"token\" value=\"%1\">"
                                      "<label for=\"password\">New password — at least 8 "
                                      "characters</label><input id=\"password\" name=\"password\" "
                                      "type=\"password\" minlength=\"8\" required>"
                                      "<button type=\"submit\">Save the password</button></form>")
                           .arg(token.toHtmlEscaped()));
}

QString AccountPages::resetDone()
{
    return page(QStringLiteral("Your password is changed"),
                QStringLiteral("<p>Go back to orvel and sign in with the new password. Every "
                               "other place you were signed in has been signed out.</p>"));
}

QString AccountPages::resetInvalid()
{
    return page(QStringLiteral("This link does not work any more"),
                QStringLiteral("<p>It may have been used already, or it is more than an hour old. "
                               "<a href=\"/app?forgot=1\">Ask for a new one</a>.</p>"));
}

} // namespace cardserver
