#include "app/serveroptions.h"

#include "net/addresspolicy.h"
#include "net/clientaddress.h"

#include <algorithm>
#include <optional>
#include <QDir>
#include <QProcessEnvironment>
#include <thread>

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

// A whole number from `low` to `high`, or nothing.
std::optional<int> number(const QString &value, int low, int high)
{
    bool ok = false;
    const int n = value.toInt(&ok);
    if (!ok || n < low || n > high)
        return std::nullopt;
    return n;
}

struct Bound {
    const char *flag;
    int ServerOptions::*field;
    int low;
    int high;
    const char *unit;
};

// The flags that take one whole number.
const Bound Bounds[] = {
    {"--fetch-timeout", &ServerOptions::fetchTimeoutSeconds, 1, 600, "seconds"},
    {"--hash-workers", &ServerOptions::hashWorkers, 1, 256, "workers"},
    {"--speech-workers", &ServerOptions::speechWorkers, 1, 256, "workers"},
    {"--queue-wait", &ServerOptions::queueWaitSeconds, 0, 600, "seconds"},
    {"--login-delay-ms", &ServerOptions::loginDelayMs, 1, 600'000, "milliseconds"},
    {"--streams-per-account", &ServerOptions::streamsPerAccount, 1, 1000, "streams"},
    {"--llm-calls-per-minute", &ServerOptions::llmCallsPerMinute, 1, 100'000, "calls"},
    {"--clip-cache-mb", &ServerOptions::clipCacheMb, 1, 1'000'000, "MB"},
    {"--purge-interval", &ServerOptions::purgeIntervalSeconds, 1, 604'800, "seconds"},
    {"--max-connections", &ServerOptions::maxConnections, 1, 1'000'000, "connections"},
    {"--idle-timeout", &ServerOptions::idleTimeoutSeconds, 1, 3600, "seconds"},
    {"--read-timeout", &ServerOptions::readTimeoutSeconds, 1, 600, "seconds"},
    {"--request-threads", &ServerOptions::requestThreads, 1, 1024, "threads"},
    {"--stream-threads", &ServerOptions::streamThreads, 1, 4096, "threads"},
};

} // namespace

int ServerOptions::defaultWorkers()
{
    return std::max(1, int(std::thread::hardware_concurrency()));
}

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
        "  --local              one-person machine: sign-up confirms the address at once, and\n"
        "                       mailed links are written to the log as well as the outbox\n"
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
        "  --no-signup          take no new accounts: sign-up is refused\n"
        "  --hash-workers N     password hashes at once, 64 MiB each (default: one a core)\n"
        "  --speech-workers N   espeak-ng and lame processes at once (default: one a core)\n"
        "  --queue-wait SECONDS how long a sign-in or a clip waits for a free worker before\n"
        "                       the answer is 503 \"busy\" (default 10)\n"
        "  --login-delay-ms MS  the first wait after repeated failed sign-ins; each further\n"
        "                       failure doubles it (default 1000)\n"
        "  --trusted-proxy ADDRESS  a reverse proxy whose X-Forwarded-For names the client\n"
        "                       (repeatable; loopback is always trusted)\n"
        "  --streams-per-account N  writing streams one account runs at once (default 4)\n"
        "  --llm-calls-per-minute N  language-model calls one account makes a minute\n"
        "                       (default 60)\n"
        "  --clip-cache-mb MB   disk kept for spoken clips; the least recently used go first\n"
        "                       (default 512)\n"
        "  --purge-interval SECONDS  how often expired sessions, links and sign-in counters\n"
        "                       are dropped (default 3600; also at start)\n"
        "  --max-connections N  connections open at once (default 10000; more are answered 503\n"
        "                       \"busy\" and closed); capped by the open-file limit\n"
        "  --idle-timeout SECONDS  a kept-alive connection with no request is closed after this\n"
        "                       (default 30)\n"
        "  --read-timeout SECONDS  time for a client to send a request's headers, and for a new\n"
        "                       connection to begin its first request (default 10; the body\n"
        "                       gets six times as long)\n"
        "  --request-threads N  threads answering requests (default four per core, at least 8)\n"
        "  --stream-threads N   threads running card-writing streams (default 64; more streams\n"
        "                       wait for one)\n"
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
        QStringList withValue = {
            "--listen",        "--data",       "--writer",       "--llm-url",
            "--llm-model",     "--database",   "--dictionaries", "--test-public-host",
            "--trusted-proxy", "--test-schema"};
        for (const Bound &b : Bounds)
            withValue.append(QLatin1String(b.flag));
        const Bound *bound = nullptr;
        for (const Bound &b : Bounds)
            if (arg == QLatin1String(b.flag))
                bound = &b;
        if (withValue.contains(arg) && !inlineValue) {
            if (i + 1 >= arguments.size())
                return fail(arg + QStringLiteral(" needs a value"));
            value = arguments.at(++i);
        } else if (!withValue.contains(arg) && inlineValue) {
            return fail(arg + QStringLiteral(" takes no value"));
        }
        if (bound) {
            const std::optional<int> n = number(value, bound->low, bound->high);
            if (!n)
                return fail(QStringLiteral("%1 wants %2 to %3 %4, got \"%5\"")
                                .arg(arg)
                                .arg(bound->low)
                                .arg(bound->high)
                                .arg(QLatin1String(bound->unit), value));
            o.*(bound->field) = *n;
        } else if (arg == QLatin1String("--help") || arg == QLatin1String("-h")) {
            o.help = true;
        } else if (arg == QLatin1String("--local")) {
            o.local = true;
        } else if (arg == QLatin1String("--no-signup")) {
            o.noSignup = true;
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
        } else if (arg == QLatin1String("--trusted-proxy")) {
            if (ClientAddress::normalised(value).isEmpty())
                return fail(QStringLiteral("--trusted-proxy wants a numeric IP address, got \"%1\"")
                                .arg(value));
            o.trustedProxies.append(value);
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
