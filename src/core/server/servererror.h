#pragma once

#include <exception>
#include <QString>
#include <string>

namespace orvel {

// Everything a server call can throw. Screens catch this and show message() as it stands.
class ServerError : public std::exception {
public:
    explicit ServerError(QString message);
    virtual QString message() const { return m_message; }
    const char *what() const noexcept override { return m_what.c_str(); }

private:
    QString m_message;
    std::string m_what;
};

// The server answered with a status outside 200-299, or a success reply could not be read
// (status 0).
class APIError : public ServerError {
public:
    APIError(int status, QString message);
    int status() const { return m_status; }

    // The learner-facing text for a failed reply: the server's own "error" text when it sent
    // one, else a fixed wording for the status.
    static QString messageFrom(const QByteArray &body, int status);
    static QString couldNotRead();

private:
    int m_status;
};

// The request never produced an HTTP answer (no network, refused connection, time-out).
// The message is Qt's own description of the failure.
class TransportError : public ServerError {
public:
    TransportError(int code, QString message);
    int code() const { return m_code; }

private:
    int m_code;
};

} // namespace orvel
