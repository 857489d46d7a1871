#include "notes/notecommands.h"

#include "app/services.h"
#include "notes/noteeditor.h"
#include "notes/notepictures.h"
#include "notes/notetexts.h"
#include "server/apiclient.h"
#include "sound/speech.h"

#include <QVariantMap>

namespace orvel {

NoteCommands::NoteCommands(NoteEditor &editor, QObject *parent)
    : QObject(parent), m_editor(editor), m_api(Services::current().api()),
      m_speech(Services::current().speech())
{
    connect(this, &NoteCommands::troubleChanged, this, &NoteCommands::messageChanged);
}

int NoteCommands::row() const
{
    return m_reading ? m_editor.lines()->rowOf(m_key) : -1;
}

QVariantList NoteCommands::offered() const
{
    QVariantList list;
    if (!m_reading)
        return list;
    for (const Slash::Command &command : m_reading->offered)
        list.append(QVariantMap{{QStringLiteral("name"), QStringLiteral("/") + command.name},
                                {QStringLiteral("hint"), command.hint}});
    return list;
}

bool NoteCommands::unknown() const
{
    return m_reading && !m_reading->command && m_reading->offered.isEmpty();
}

QString NoteCommands::message() const
{
    return m_notice.isEmpty() ? m_calls.trouble() : m_notice;
}

QString NoteCommands::footer() const
{
    return notetexts::slashFooter();
}

QString NoteCommands::noSuchCommand() const
{
    return notetexts::noSuchCommand();
}

void NoteCommands::lineEdited(int row, const QString &text)
{
    setNotice({});
    m_calls.setTrouble({});
    if (row < 0 || row >= m_editor.lines()->count()) {
        close();
        return;
    }
    std::optional<Slash::Reading> reading = Slash::read(text);
    if (!reading) {
        close();
        return;
    }
    const bool sameOffer = m_reading && m_reading->offered == reading->offered;
    m_key = m_editor.lines()->at(row).key;
    m_reading = std::move(reading);
    if (!sameOffer)
        m_at = 0;
    emit menuChanged();
}

void NoteCommands::caretMoved(int row)
{
    if (m_reading && row != this->row())
        close();
}

bool NoteCommands::move(int step)
{
    if (!m_reading)
        return false;
    // Held at either end, like the rest of the editor's lists.
    if (!m_reading->offered.isEmpty()) {
        const int at =
            std::clamp(m_at + (step > 0 ? 1 : -1), 0, int(m_reading->offered.size()) - 1);
        if (at != m_at) {
            m_at = at;
            emit menuChanged();
        }
    }
    return true;
}

bool NoteCommands::returnPressed(int row)
{
    if (!m_reading || row != this->row())
        return false;
    if (m_reading->command) {
        run(row);
        return true;
    }
    if (!m_reading->offered.isEmpty())
        pick(m_at);
    // A name that is no command runs nothing; the menu keeps saying so.
    return true;
}

bool NoteCommands::escape()
{
    if (!m_reading)
        return false;
    close();
    return true;
}

void NoteCommands::pick(int index)
{
    const int at = row();
    if (at < 0 || index < 0 || index >= m_reading->offered.size())
        return;
    const Slash::Command command = m_reading->offered[index];
    const QString arg = m_reading->arg;
    m_editor.rewriteLine(at, QStringLiteral("/") + command.name + u' ' + arg);
    // The line now names the command; the menu stays, on it.
    lineEdited(at, m_editor.lines()->at(at).text);
}

void NoteCommands::stop()
{
    close();
}

QCoro::Task<> NoteCommands::run(int row)
{
    if (row < 0 || row >= m_editor.lines()->count())
        co_return;
    const Draft line = m_editor.lines()->at(row);
    const std::optional<Slash::Reading> reading = Slash::read(line.text);
    if (!reading || !reading->command)
        co_return;
    QString word = reading->arg;
    if (word.isEmpty() && row > 0)
        word = m_editor.lines()->at(row - 1).text.trimmed();
    if (word.isEmpty()) {
        setNotice(notetexts::sayWhichWord());
        co_return;
    }
    const Slash::Command command = *reading->command;
    close();
    if (command.name == QLatin1String("say")) {
        m_speech.say(word, m_editor.language());
    } else if (!command.onReturn) {
        m_editor.pictures()->open(line.key, word, command.name);
    } else {
        co_await compose(line.key, command, word, line.text.trimmed());
    }
}

QCoro::Task<> NoteCommands::compose(QUuid key, Slash::Command command, QString word, QString line)
{
    const auto lines = co_await m_calls.run(m_api.compose(m_editor.noteId(), command.name, word));
    if (!lines)
        co_return; // the message is the server's; the line stays as it was
    if (!lines->has_value() || (*lines)->isEmpty()) {
        setNotice(notetexts::nothingCameBack(word));
        co_return;
    }
    // The line may have moved while the server wrote; it may be gone.
    const int at = m_editor.lines()->rowOf(key);
    if (at >= 0)
        m_editor.replaceLine(at, **lines, line);
}

void NoteCommands::close()
{
    if (!m_reading)
        return;
    m_reading.reset();
    m_key = {};
    m_at = 0;
    emit menuChanged();
}

void NoteCommands::setNotice(const QString &notice)
{
    if (m_notice == notice)
        return;
    m_notice = notice;
    emit messageChanged();
}

} // namespace orvel
