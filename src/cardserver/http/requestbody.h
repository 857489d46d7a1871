#pragma once
#include <optional>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <string>

namespace cardserver {

// A request's JSON object body with typed reads. Bad JSON, or a body that is not an
// object, or a key of the wrong type or missing when required, throws ApiError 400 with a
// message naming the key; values that are well-formed but unusable are for the caller to
// refuse with 422.
class RequestBody {
public:
    // An empty body reads as {}.
    static RequestBody parse(const std::string &bytes);

    bool has(const QString &key) const;
    bool isNull(const QString &key) const;
    const QJsonObject &object() const { return m_object; }

    QString string(const QString &key) const;
    std::optional<QString> optionalString(const QString &key) const;
    bool boolean(const QString &key) const;
    std::optional<bool> optionalBoolean(const QString &key) const;
    qint64 integer(const QString &key) const;
    // Absent or null gives nullopt.
    std::optional<qint64> optionalInteger(const QString &key) const;
    double number(const QString &key) const;
    QJsonArray array(const QString &key) const;
    QJsonObject objectAt(const QString &key) const;

    // Reads for a JSON value found inside the body (an array item), with `what` naming it.
    static QJsonObject asObject(const QJsonValue &value, const QString &what);
    static QString stringIn(const QJsonObject &o, const QString &key, const QString &what,
                            bool required = true);
    static std::optional<qint64> integerIn(const QJsonObject &o, const QString &key,
                                           const QString &what);

private:
    explicit RequestBody(QJsonObject object) : m_object(std::move(object)) {}
    QJsonObject m_object;
};

} // namespace cardserver
