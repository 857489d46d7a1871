#pragma once

#include "app/servercalls.h"
#include "records/decksummary.h"
#include "records/language.h"

#include <qcoro/qcorotask.h>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

class APIClient;
class HomeView;

// The new-deck sheet: a name ("Portuguese, Tuesday class…"), an optional description, the
// language being learned and the one the learner already speaks, both picked from the server's
// languages and starting at "Pick one". "Start deck" (while working "Starting…") makes the deck,
// which then joins the shelf and opens.
class NewDeckSheet : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(orvel::HomeView *home READ home WRITE setHome NOTIFY homeChanged)
    Q_PROPERTY(QVariantList languageChoices READ languageChoices NOTIFY languagesChanged)
    Q_PROPERTY(bool languagesLoading READ languagesLoading NOTIFY languagesChanged)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY formChanged)
    Q_PROPERTY(QString description READ description WRITE setDescription NOTIFY formChanged)
    Q_PROPERTY(QString language READ language WRITE setLanguage NOTIFY formChanged)
    Q_PROPERTY(
        QString nativeLanguage READ nativeLanguage WRITE setNativeLanguage NOTIFY formChanged)
    Q_PROPERTY(int folderId READ folderId WRITE setFolderId NOTIFY formChanged)
    Q_PROPERTY(bool canStart READ canStart NOTIFY formChanged)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)
    Q_PROPERTY(QString startText READ startText NOTIFY workingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
public:
    explicit NewDeckSheet(QObject *parent = nullptr);

    HomeView *home() const { return m_home; }
    void setHome(HomeView *home);

    // "Pick one" (code "") first, then each language as {code, label}; the label is the
    // English name with the language's own name beside it when that differs ("German · Deutsch").
    QVariantList languageChoices() const;
    const QList<Language> &languages() const { return m_languages; }
    bool languagesLoading() const { return m_languagesLoading; }

    QString name() const { return m_name; }
    void setName(const QString &name);
    QString description() const { return m_description; }
    void setDescription(const QString &description);
    // A language code, or "" while the picker says "Pick one".
    QString language() const { return m_language; }
    void setLanguage(const QString &code);
    QString nativeLanguage() const { return m_nativeLanguage; }
    void setNativeLanguage(const QString &code);
    // The folder the new deck goes into (0: none).
    int folderId() const { return m_folderId; }
    void setFolderId(int folderId);

    // A name (after trimming spaces and tabs) and both languages picked, and not already working.
    bool canStart() const;
    bool working() const { return m_calls.working(); }
    // "Start deck", or "Starting…" while working.
    QString startText() const;
    QString trouble() const { return m_calls.trouble(); }

    // Empties the form and loads the languages (once).
    Q_INVOKABLE void prepare();
    QCoro::Task<> loadLanguages();
    // Makes the deck; gives it, or none after a failure (its message in trouble) or when the
    // form is not complete.
    QCoro::Task<std::optional<DeckSummary>> start();
    Q_INVOKABLE void requestStart();

signals:
    void homeChanged();
    void languagesChanged();
    void formChanged();
    void workingChanged();
    void troubleChanged();
    // The deck was made (the sheet closes).
    void started(const orvel::DeckSummary &deck);

private:
    bool knownLanguage(const QString &code) const;

    APIClient &m_api;
    QPointer<HomeView> m_home;
    QList<Language> m_languages;
    bool m_languagesLoading = false;
    bool m_languagesLoaded = false;
    QString m_name;
    QString m_description;
    QString m_language;
    QString m_nativeLanguage;
    int m_folderId = 0;
    ServerCalls m_calls{this, &NewDeckSheet::workingChanged, &NewDeckSheet::troubleChanged};
};

} // namespace orvel
