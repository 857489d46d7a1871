#include "notes/notepictures.h"

#include "app/services.h"
#include "notes/imagepicker.h"
#include "notes/noteeditor.h"
#include "notes/notetexts.h"
#include "notes/slash.h"
#include "server/apiclient.h"

namespace orvel {

NotePictures::NotePictures(NoteEditor &editor, QObject *parent)
    : QObject(parent), m_editor(editor), m_api(Services::current().api())
{}

int NotePictures::pickingRow() const
{
    return m_picker ? m_editor.lines()->rowOf(m_line) : -1;
}

QString NotePictures::failedText() const
{
    return notetexts::pictureFailed();
}

QString NotePictures::removeText() const
{
    return notetexts::removePicture();
}

QString NotePictures::yoursText() const
{
    return notetexts::yours();
}

void NotePictures::open(const QUuid &line, const QString &word, const QString &kind)
{
    closePicker();
    m_calls.setTrouble({});
    m_line = line;
    m_picker = new ImagePicker(word, m_editor.deckId(), kind, this);
    connect(m_picker, &ImagePicker::chosen, this,
            [this](const FoundImage &image) { bringIn(image); });
    connect(m_picker, &ImagePicker::closed, this, &NotePictures::closePicker);
    emit pickerChanged();
}

void NotePictures::closePicker()
{
    if (!m_picker)
        return;
    ImagePicker *picker = m_picker;
    m_picker = nullptr;
    picker->disconnect(this);
    picker->deleteLater();
    emit pickerChanged();
}

QCoro::Task<> NotePictures::bringIn(FoundImage image)
{
    const QUuid line = m_line;
    const auto media = co_await m_calls.run(m_api.importImage(std::move(image)));
    if (!media)
        co_return; // the picker stays open with the message, nothing placed
    closePicker();
    attach(line, *media);
}

void NotePictures::place(int row, const QByteArray &bytes, const QString &type)
{
    placeTask(row, bytes, type);
}

QCoro::Task<> NotePictures::placeTask(int row, QByteArray bytes, QString type)
{
    if (row < 0 || row >= m_editor.lines()->count() || bytes.isEmpty())
        co_return;
    const QUuid line = m_editor.lines()->at(row).key;
    const auto media = co_await m_calls.run(m_api.uploadImage(std::move(bytes), std::move(type)));
    if (!media)
        co_return;
    attach(line, *media);
}

void NotePictures::remove(int row)
{
    if (row < 0 || row >= m_editor.lines()->count() || !m_editor.lines()->at(row).media)
        return;
    m_editor.setPicture(m_editor.lines()->at(row).key, std::nullopt);
}

void NotePictures::attach(const QUuid &line, const Media &media)
{
    // A line gone meanwhile takes nothing; the picture stays stored, unused.
    const int row = m_editor.lines()->rowOf(line);
    if (row < 0)
        return;
    // A command line that found the picture keeps only the word it was for.
    const std::optional<Slash::Reading> command = Slash::read(m_editor.lines()->at(row).text);
    m_editor.setPicture(line, media, command ? std::optional<QString>(command->arg) : std::nullopt);
}

} // namespace orvel
