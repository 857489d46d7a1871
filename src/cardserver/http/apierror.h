#pragma once
#include <QString>
#include <stdexcept>

namespace cardserver {

// A failure a route answers with: the HTTP status and a message a learner can read.
// Route handlers throw it; the router turns it into {"error": message}.
class ApiError : public std::runtime_error {
public:
    ApiError(int status, const QString &message)
        : std::runtime_error(message.toStdString()), m_status(status)
    {}
    int status() const { return m_status; }
    QString message() const { return QString::fromStdString(what()); }

    static ApiError badRequest(const QString &m) { return {400, m}; }
    static ApiError notFound(const QString &m) { return {404, m}; }
    static ApiError invalid(const QString &m) { return {422, m}; }

private:
    int m_status;
};

} // namespace cardserver
