#include "library/newdecksheet.h"

#include "app/services.h"
#include "library/homeview.h"
#include "library/learnerinput.h"
#include "server/apiclient.h"

#include <QVariantMap>

namespace orvel {

NewDeckSheet::NewDeckSheet(QObject *parent) : QObject(parent), m_api(Services::current().api())
{
    // Whether the sheet can start depends on whether it is already starting.
    connect(this, &NewDeckSheet::workingChanged, this, &NewDeckSheet::formChanged);
}

void NewDeckSheet::setHome(HomeView *home)
{
    if (m_home == home)
        return;
    m_home = home;
    emit homeChanged();
}

QVariantList NewDeckSheet::languageChoices() const
{
    QVariantList choices{QVariantMap{{QStringLiteral("code"), QString()},
                                     {QStringLiteral("label"), QStringLiteral("Pick one")}}};
    for (const Language &language : m_languages) {
        QString label = language.name;
        if (!language.endonym.isEmpty() && language.endonym != language.name)
            label += QStringLiteral(" · ") + language.endonym;
        if (language.variety && !language.variety->isEmpty())
            label += QStringLiteral(" (") + *language.variety + u')';
        choices.append(
            QVariantMap{{QStringLiteral("code"), language.code}, {QStringLiteral("label"), label}});
    }
    return choices;
}

void NewDeckSheet::setName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    emit formChanged();
}

void NewDeckSheet::setDescription(const QString &description)
{
    if (m_description == description)
        return;
    m_description = description;
    emit formChanged();
}

void NewDeckSheet::setLanguage(const QString &code)
{
    if (m_language == code)
        return;
    m_language = code;
    emit formChanged();
}

void NewDeckSheet::setNativeLanguage(const QString &code)
{
    if (m_nativeLanguage == code)
        return;
    m_nativeLanguage = code;
    emit formChanged();
}

void NewDeckSheet::setFolderId(int folderId)
{
    if (m_folderId == folderId)
        return;
    m_folderId = folderId;
    emit formChanged();
}

bool NewDeckSheet::knownLanguage(const QString &code) const
{
    return !code.isEmpty() && std::any_of(m_languages.begin(), m_languages.end(),
                                          [&code](const Language &l) { return l.code == code; });
}

bool NewDeckSheet::canStart() const
{
    return !working() && !trimSpacesAndTabs(m_name).isEmpty() && knownLanguage(m_language) &&
           knownLanguage(m_nativeLanguage);
}

QString NewDeckSheet::startText() const
{
    return working() ? QStringLiteral("Starting…") : QStringLiteral("Start deck");
}

void NewDeckSheet::prepare()
{
    m_name.clear();
    m_description.clear();
    m_language.clear();
    m_nativeLanguage.clear();
    m_folderId = 0;
    emit formChanged();
    m_calls.setTrouble({});
    if (!m_languagesLoaded && !m_languagesLoading)
        loadLanguages();
}

QCoro::Task<> NewDeckSheet::loadLanguages()
{
    m_languagesLoading = true;
    emit languagesChanged();
    auto languages = co_await m_calls.run(m_api.languages(), CallOptions().quiet());
    if (languages.gone())
        co_return;
    m_languagesLoading = false;
    if (languages) {
        m_languages = std::move(*languages);
        m_languagesLoaded = true;
    }
    emit languagesChanged();
    emit formChanged();
}

QCoro::Task<std::optional<DeckSummary>> NewDeckSheet::start()
{
    if (!canStart())
        co_return std::nullopt;
    auto made = co_await m_calls.run(m_api.createDeck(
        trimSpacesAndTabs(m_name), trimSpacesAndTabs(m_description), m_language, m_nativeLanguage,
        m_folderId ? std::optional<int>(m_folderId) : std::nullopt));
    if (!made)
        co_return std::nullopt;
    if (m_home)
        m_home->adopt(*made);
    emit started(*made);
    co_return *made;
}

void NewDeckSheet::requestStart()
{
    start();
}

} // namespace orvel
