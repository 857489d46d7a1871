#include "app/serveroptions.h"

#include "net/addresspolicy.h"

#include <QDir>
#include <QProcessEnvironment>

namespace cardserver {

namespace {

QString defaultDataDir()
{
    const auto env = QProcessEnvironment::systemEnvironment();
    QString base = env.value(QStringLiteral("XDG_DATA_HOME"));
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.local/share");
    return base + QStringLiteral("/orvel-server");
}

} // namespace

QString ServerOptions::usage()
{
    return QStringLiteral(
        "Usage: orvel-server [options]\n"
        "The Orvel card server: accounts, decks, cards, notes and speech over HTTP.\n"
        "\n"
        "  --listen HOST:PORT   address to serve on (default 127.0.0.1:8470; port 0 picks a\n"
        "                       free port). When ready it prints \"listening on "
        "http://HOST:PORT\".\n"
        "  --data DIR           folder for the store, pictures, outgoing mail and the clip cache\n"
        "                       (default $XDG_DATA_HOME/orvel-server)\n"
        "  --local              one-person machine: sign-up confirms the address at once (the\n"
        "                       confirmation link is still written to the outbox and the log)\n"
        "  --writer KIND        who writes cards: dictionary (default, offline, FreeDict) or llm\n"
        "  --llm-url URL        OpenAI-compatible chat-completions endpoint for --writer llm\n"
        "                       (the key is read from ORVEL_LLM_KEY)\n"
        "  --llm-model NAME     model to ask for with --writer llm\n"
        "  --dictionaries DIR   where the FreeDict dictionaries are (default /usr/share/dictd)\n"
        "  --database URL       store location: a SQLite file path or sqlite://PATH (default\n"
        "                       DIR/orvel.sqlite), or postgresql://USER@HOST:PORT/DB (the\n"
        "                       password from ORVEL_DATABASE_PASSWORD or ~/.pgpass; a Unix\n"
        "                       socket folder as ?host=/path)\n"
        "  --migrate-only       bring the store's schema up to date, print its version, exit\n"
        "  --check              check that the store is reachable and its schema current;\n"
        "                       exit 0 if so, 1 if not, with one line saying which\n"
        "  --allow-private-fetch  let outgoing requests reach loopback, link-local and private\n"
        "                       addresses (for a language model on this machine or network);\n"
        "                       without it picture imports from such addresses are refused\n"
        "  --fetch-timeout SECONDS  deadline for fetching one picture (default 20)\n"
        "  --test-providers     offer Google and Apple sign-in that completes at once (for\n"
        "                       testing clients only; never on by default)\n"
        "  --help               show this text\n");
}

ServerOptions ServerOptions::parse(const QStringList &arguments)
{
    ServerOptions o;
    o.dataDir = defaultDataDir();
    auto fail = [&o](const QString &why) {
        o.error = why;
        return o;
    };
    for (int i = 1; i < arguments.size(); ++i) {
        QString arg = arguments.at(i);
        QString value;
        bool inlineValue = false;
        const int eq = arg.indexOf('=');
        if (arg.startsWith(QStringLiteral("--")) && eq > 0) {
            value = arg.mid(eq + 1);
            arg = arg.left(eq);
            inlineValue = true;
        }
        const QStringList withValue = {"--listen",       "--data",          "--writer",
                                       "--llm-url",      "--llm-model",     "--database",
                                       "--dictionaries", "--fetch-timeout", "--test-public-host",
                                       "--test-schema"};
        if (withValue.contains(arg) && !inlineValue) {
            if (i + 1 >= arguments.size())
                return fail(arg + QStringLiteral(" needs a value"));
            value = arguments.at(++i);
        } else if (!withValue.contains(arg) && inlineValue) {
            return fail(arg + QStringLiteral(" takes no value"));
        }
        if (arg == QLatin1String("--help") || arg == QLatin1String("-h")) {
            o.help = true;
        } else if (arg == QLatin1String("--local")) {
            o.local = true;
        } else if (arg == QLatin1String("--test-providers")) {
            o.testProviders = true;
        } else if (arg == QLatin1String("--migrate-only")) {
            o.migrateOnly = true;
        } else if (arg == QLatin1String("--check")) {
            o.check = true;
        } else if (arg == QLatin1String("--test-schema")) {
            bool ok = false;
            o.testSchema = value.toInt(&ok);
            if (!ok || o.testSchema < 0)
                return fail(
                    QStringLiteral("--test-schema wants a schema version, got \"%1\"").arg(value));
        } else if (arg == QLatin1String("--allow-private-fetch")) {
            o.allowPrivateFetch = true;
        } else if (arg == QLatin1String("--fetch-timeout")) {
            bool ok = false;
            const int seconds = value.toInt(&ok);
            if (!ok || seconds < 1 || seconds > 600)
                return fail(QStringLiteral("--fetch-timeout wants 1 to 600 seconds, got \"%1\"")
                                .arg(value));
            o.fetchTimeoutSeconds = seconds;
        } else if (arg == QLatin1String("--test-public-host")) {
            if (!AddressPolicy().addPublicHost(value))
                return fail(
                    QStringLiteral("--test-public-host wants a numeric HOST:PORT, got \"%1\"")
                        .arg(value));
            o.testPublicHosts.append(value);
        } else if (arg == QLatin1String("--listen")) {
            const int colon = value.lastIndexOf(':');
            bool ok = false;
            const int port = colon > 0 ? value.mid(colon + 1).toInt(&ok) : -1;
            if (colon <= 0 || !ok || port < 0 || port > 65535)
                return fail(QStringLiteral("--listen wants HOST:PORT, got \"%1\"").arg(value));
            o.host = value.left(colon);
            if (o.host.startsWith('[') && o.host.endsWith(']'))
                o.host = o.host.mid(1, o.host.size() - 2);
            o.port = port;
        } else if (arg == QLatin1String("--data")) {
            if (value.isEmpty())
                return fail(QStringLiteral("--data needs a folder"));
            o.dataDir = value;
        } else if (arg == QLatin1String("--writer")) {
            if (value != QLatin1String("dictionary") && value != QLatin1String("llm"))
                return fail(QStringLiteral("--writer is dictionary or llm, not \"%1\"").arg(value));
            o.writer = value;
        } else if (arg == QLatin1String("--llm-url")) {
            o.llmUrl = value;
        } else if (arg == QLatin1String("--llm-model")) {
            o.llmModel = value;
        } else if (arg == QLatin1String("--database")) {
            o.database = value;
        } else if (arg == QLatin1String("--dictionaries")) {
            o.dictionaryDir = value;
        } else {
            return fail(QStringLiteral("unknown option \"%1\" (see --help)").arg(arguments.at(i)));
        }
    }
    if (o.migrateOnly && o.check)
        return fail(QStringLiteral("--migrate-only and --check do not go together"));
    if (o.testSchema >= 0 && !o.migrateOnly)
        return fail(QStringLiteral("--test-schema goes with --migrate-only"));
    return o;
}

} // namespace cardserver
