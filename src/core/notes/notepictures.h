#pragma once

#include "app/servercalls.h"
#include "notes/imagepicker.h"
#include "records/foundimage.h"
#include "records/media.h"

#include <QByteArray>
#include <qcoro/qcorotask.h>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqml.h>
#include <QUuid>

namespace orvel {

class APIClient;

class NoteEditor;

// The pictures of the note editor's lines: the picker a picture command opens (placing the
// chosen picture stores it on the server and puts it on the line), pictures pasted or dropped
// onto a line (uploaded with their own type), and taking a picture off its line.
class NotePictures : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The pictures belong to NoteEditor")
    Q_PROPERTY(orvel::ImagePicker *picker READ picker NOTIFY pickerChanged)
    Q_PROPERTY(int pickingRow READ pickingRow NOTIFY pickerChanged)
    Q_PROPERTY(bool placing READ placing NOTIFY placingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(QString failedText READ failedText CONSTANT)
    Q_PROPERTY(QString removeText READ removeText CONSTANT)
    Q_PROPERTY(QString yoursText READ yoursText CONSTANT)
public:
    explicit NotePictures(NoteEditor &editor, QObject *parent = nullptr);

    ImagePicker *picker() const { return m_picker; }
    // The line the picker places its picture on, or -1.
    int pickingRow() const;
    bool placing() const { return m_calls.working(); }
    QString trouble() const { return m_calls.trouble(); }
    QString failedText() const;
    QString removeText() const;
    QString yoursText() const;

    // Opens the picker for the line with this key, searching for `word`; "img" finds still
    // pictures, "gif" moving ones.
    void open(const QUuid &line, const QString &word, const QString &kind);
    Q_INVOKABLE void closePicker();
    // Places a found picture on the picker's line.
    QCoro::Task<> bringIn(FoundImage image);
    // A picture pasted or dropped on a line: its bytes and their type ("image/png").
    Q_INVOKABLE void place(int row, const QByteArray &bytes, const QString &type);
    QCoro::Task<> placeTask(int row, QByteArray bytes, QString type);
    // Takes the picture off a line.
    Q_INVOKABLE void remove(int row);

signals:
    void pickerChanged();
    void placingChanged();
    void troubleChanged();

private:
    void attach(const QUuid &line, const Media &media);

    NoteEditor &m_editor;
    APIClient &m_api;
    ServerCalls m_calls{this, &NotePictures::placingChanged, &NotePictures::troubleChanged};
    QPointer<ImagePicker> m_picker;
    QUuid m_line;
};

} // namespace orvel
