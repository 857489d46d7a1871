#include "net/outgoingfetch.h"

#include <curl/curl.h>
#include <memory>
#include <QUrl>
#include <sys/socket.h>

namespace cardserver {

namespace {

// What the callbacks of one transfer share with get().
struct Transfer {
    const AddressPolicy &policy;
    qint64 maxBytes;
    const OutgoingFetch::Request &request;
    CURL *curl = nullptr;
    qint64 received = 0;
    QByteArray body;
    bool tooLarge = false;
    bool stopped = false; // the request's onData said stop
    QString refused;      // why a connection was refused, when one was
};

void initialiseOnce()
{
    static const bool done = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    (void)done;
}

// Called for every connection curl opens, with the address it resolved: the check happens here,
// on the address itself, so a name that resolves differently a second time gains nothing.
curl_socket_t openSocket(void *data, curlsocktype purpose, curl_sockaddr *address)
{
    auto *t = static_cast<Transfer *>(data);
    QString why;
    if (purpose != CURLSOCKTYPE_IPCXN || !t->policy.allows(&address->addr, &why)) {
        if (t->refused.isEmpty())
            t->refused = why.isEmpty() ? QStringLiteral("not an internet connection") : why;
        return CURL_SOCKET_BAD;
    }
    return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

size_t keep(char *data, size_t size, size_t count, void *user)
{
    auto *t = static_cast<Transfer *>(user);
    const size_t length = size * count;
    t->received += qint64(length);
    if (t->received > t->maxBytes) {
        t->tooLarge = true;
        return 0; // stops the transfer
    }
    if (!t->request.onData) {
        t->body.append(data, qsizetype(length));
        return length;
    }
    long status = 0;
    curl_easy_getinfo(t->curl, CURLINFO_RESPONSE_CODE, &status);
    if (!t->request.onData(int(status), QByteArray::fromRawData(data, qsizetype(length)))) {
        t->stopped = true;
        return 0;
    }
    return length;
}

struct CurlFree {
    void operator()(CURL *c) const { curl_easy_cleanup(c); }
};

} // namespace

OutgoingFetch::OutgoingFetch(AddressPolicy policy, qint64 maxBytes, int timeoutMs)
    : m_policy(std::move(policy)), m_maxBytes(maxBytes), m_timeoutMs(timeoutMs)
{}

OutgoingFetch::Result OutgoingFetch::send(const QString &url, const Request &request) const
{
    Result result;
    const QUrl parsed(url);
    const QString scheme = parsed.scheme().toLower();
    if (!parsed.isValid() || (scheme != "http" && scheme != "https") || parsed.host().isEmpty()) {
        result.outcome = Outcome::NotAllowed;
        result.detail = QStringLiteral("not an http or https address: %1").arg(url.left(200));
        return result;
    }
    initialiseOnce();
    std::unique_ptr<CURL, CurlFree> curl(curl_easy_init());
    if (!curl) {
        result.detail = QStringLiteral("libcurl could not start a transfer");
        return result;
    }
    CURL *c = curl.get();
    Transfer transfer{m_policy, m_maxBytes, request, c, 0, {}, false, false, {}};
    char error[CURL_ERROR_SIZE] = {};
    const QByteArray address = parsed.toEncoded();
    curl_easy_setopt(c, CURLOPT_URL, address.constData());
    curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(c, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(c, CURLOPT_FOLLOWLOCATION, request.followRedirects ? 1L : 0L);
    curl_easy_setopt(c, CURLOPT_MAXREDIRS, long(MaxRedirects));
    curl_easy_setopt(c, CURLOPT_PROXY, "");
    curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(c, CURLOPT_TIMEOUT_MS, long(m_timeoutMs));
    curl_easy_setopt(c, CURLOPT_MAXFILESIZE_LARGE, curl_off_t(m_maxBytes));
    curl_easy_setopt(c, CURLOPT_OPENSOCKETFUNCTION, openSocket);
    curl_easy_setopt(c, CURLOPT_OPENSOCKETDATA, &transfer);
    curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, keep);
    curl_easy_setopt(c, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(c, CURLOPT_ERRORBUFFER, error);
    curl_easy_setopt(c, CURLOPT_USERAGENT, "orvel-server");
    if (m_idleSeconds > 0) {
        curl_easy_setopt(c, CURLOPT_LOW_SPEED_LIMIT, 1L);
        curl_easy_setopt(c, CURLOPT_LOW_SPEED_TIME, long(m_idleSeconds));
    }
    if (request.method != "GET") {
        curl_easy_setopt(c, CURLOPT_CUSTOMREQUEST, request.method.constData());
        curl_easy_setopt(c, CURLOPT_POSTFIELDS, request.body.constData());
        curl_easy_setopt(c, CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(request.body.size()));
    }
    curl_slist *headers = nullptr;
    for (const QByteArray &header : request.headers)
        headers = curl_slist_append(headers, header.constData());
    curl_easy_setopt(c, CURLOPT_HTTPHEADER, headers);
    const CURLcode code = curl_easy_perform(c);
    curl_slist_free_all(headers);

    long status = 0;
    curl_easy_getinfo(c, CURLINFO_RESPONSE_CODE, &status);
    result.status = int(status);
    if (const char *type = nullptr;
        curl_easy_getinfo(c, CURLINFO_CONTENT_TYPE, &type) == CURLE_OK && type)
        result.contentType = QString::fromLatin1(type);
    result.detail = QStringLiteral("%1: %2").arg(
        url.left(200), QString::fromUtf8(*error ? error : curl_easy_strerror(code)));
    if (!transfer.refused.isEmpty()) {
        result.outcome = Outcome::NotAllowed;
        result.detail = QStringLiteral("%1: refused, %2").arg(url.left(200), transfer.refused);
    } else if (transfer.tooLarge || code == CURLE_FILESIZE_EXCEEDED) {
        result.outcome = Outcome::TooLarge;
    } else if (transfer.stopped) {
        result.outcome = Outcome::Failed;
    } else if (code == CURLE_OPERATION_TIMEDOUT) {
        result.outcome = Outcome::TimedOut;
    } else if (code == CURLE_UNSUPPORTED_PROTOCOL) {
        result.outcome = Outcome::NotAllowed;
    } else if (code == CURLE_OK) {
        result.outcome = Outcome::Fetched;
        result.body = std::move(transfer.body);
    }
    return result;
}

} // namespace cardserver
