#pragma once

#include "app/servercalls.h"
#include "records/preferences.h"
#include "server/apiclient.h"

#include <optional>
#include <qcoro/qcorotask.h>
#include <QObject>
#include <QtQml/qqml.h>

namespace orvel {

class APIClient;
class AppState;

// The "Sound" pane of the settings window: the account's settings as the server keeps them,
// loaded each time the pane is shown, and the switches that change them. A change is sent at
// once; the server's reply becomes what the pane and the rest of the app go by.
class SoundPane : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool loaded READ loaded NOTIFY preferencesChanged)
    Q_PROPERTY(
        bool marginAsYouGo READ marginAsYouGo WRITE setMarginAsYouGo NOTIFY preferencesChanged)
    Q_PROPERTY(bool saving READ saving NOTIFY workingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
public:
    explicit SoundPane(QObject *parent = nullptr);

    QCoro::Task<> load();
    Q_INVOKABLE void reload();

    bool loaded() const { return m_preferences.has_value(); }
    bool marginAsYouGo() const;
    void setMarginAsYouGo(bool on);
    bool saving() const { return m_calls.working(); }
    QString trouble() const { return m_calls.trouble(); }

    QCoro::Task<> save(SettingsChange change);

signals:
    void preferencesChanged();
    void workingChanged();
    void troubleChanged();

private:
    void adopt(const Preferences &preferences);

    APIClient &m_api;
    AppState &m_state;
    ServerCalls m_calls{this, &SoundPane::workingChanged, &SoundPane::troubleChanged};
    std::optional<Preferences> m_preferences;
    std::optional<bool> m_sending; // the switch's value while its change is on its way
};

} // namespace orvel
