#include "launchrequest.h"

namespace orvel {

LaunchRequest LaunchRequest::parse(const QStringList &arguments)
{
    LaunchRequest request;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        if (argument == QLatin1String("--add")) {
            request.addWord = i + 1 < arguments.size() ? arguments[++i] : QString();
        } else if (argument.startsWith(QLatin1String("--add="))) {
            request.addWord = argument.mid(6);
        } else if (argument == QLatin1String("--add-selection")) {
            request.addSelection = true;
        } else if (argument == QLatin1String("--manual")) {
            // The page is optional: a next argument that is an option or a callback is not one.
            const bool page =
                i + 1 < arguments.size() && !arguments[i + 1].startsWith(u'-') &&
                !arguments[i + 1].startsWith(QLatin1String("orvel:"), Qt::CaseInsensitive);
            request.manualPage = page ? arguments[++i] : QString();
        } else if (argument.startsWith(QLatin1String("--manual="))) {
            request.manualPage = argument.mid(9);
        } else if (argument == QLatin1String("--new-deck")) {
            request.newDeck = true;
        } else if (argument == QLatin1String("--timings")) {
            request.timings = true;
        } else if (argument == QLatin1String("--remind")) {
            request.remind = true;
        } else if (argument == QLatin1String("-ZELON_HOST") ||
                   argument == QLatin1String("--ZELON_HOST")) {
            ++i;
        } else if (argument.startsWith(QLatin1String("--ZELON_HOST=")) ||
                   argument.startsWith(QLatin1String("-ZELON_HOST="))) {
            continue;
        } else if (argument.startsWith(QLatin1String("orvel:"), Qt::CaseInsensitive)) {
            request.callback = QUrl(argument, QUrl::StrictMode);
        } else {
            request.unknown.append(argument);
        }
    }
    return request;
}

} // namespace orvel
