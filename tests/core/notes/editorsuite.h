#pragma once

// What the note editor's suites share: a scripted server, the services an editor finds, and the
// editor itself, made afresh for each case with shortened durations and an empty draft journal;
// and ways to count what the editor sent.
#include "app/timings.h"
#include "notereplies.h"
#include "notes/draftjournal.h"
#include "notes/noteeditor.h"
#include "records/json.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "testservices.h"

#include <memory>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QObject>
#include <QTemporaryDir>

namespace notetests {

using namespace orvel;

// The note every suite opens is note 7 of deck 3.
inline const QString NotePath = QStringLiteral("/api/notes/7");

inline QList<ScriptedServer::Request> requestsTo(const ScriptedServer &server,
                                                 const QByteArray &method, const QString &path)
{
    QList<ScriptedServer::Request> found;
    for (const auto &request : server.requests())
        if (request.method == method && request.path == path)
            found.append(request);
    return found;
}

inline int countOf(const ScriptedServer &server, const QByteArray &method, const QString &path)
{
    return int(requestsTo(server, method, path).size());
}

// The saves of note 7 the server received.
inline QList<ScriptedServer::Request> saves(const ScriptedServer &server)
{
    return requestsTo(server, "PATCH", NotePath);
}

// The texts a save sent, in order.
inline QStringList sentTexts(const ScriptedServer::Request &request)
{
    QStringList texts;
    for (const QJsonValue &line : QJsonDocument::fromJson(request.body)["lines"].toArray())
        texts.append(line["text"].toString());
    return texts;
}

inline int saveCount(const ScriptedServer &server)
{
    return countOf(server, "PATCH", NotePath);
}

class EditorSuite : public QObject {
protected:
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;
    std::unique_ptr<NoteEditor> m_editor;

    // For init(): the journal lives in this suite's folder and starts empty for each case.
    void setUpEditor()
    {
        qputenv("XDG_DATA_HOME", m_dir.filePath("data").toUtf8());
        QDir(DraftJournal::defaultFolder()).removeRecursively();
        Timings::shared() = Timings{}.scaled(0.02);
        m_server = std::make_unique<ScriptedServer>();
        m_api = std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("jar"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
        m_editor = std::make_unique<NoteEditor>();
    }

    // For cleanup().
    void tearDownEditor()
    {
        m_editor.reset();
        m_services.reset();
        m_api.reset();
        m_server.reset();
        Timings::shared() = Timings{};
    }

    void open(const QList<notereplies::Line> &lines, const QString &title = {})
    {
        m_editor->open(json::decode<Note>(notereplies::noteJson(7, title, lines)), 3,
                       QStringLiteral("de"));
    }
};

} // namespace notetests
