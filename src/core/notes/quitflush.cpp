#include "notes/quitflush.h"

#include "notes/noteeditor.h"

#include <memory>
#include <qcoro/qcorotask.h>
#include <QEventLoop>
#include <QPointer>
#include <QTimer>

namespace orvel {

namespace {
struct Waiting {
    int saves = 0;
    bool allSaved = true;
    QPointer<QEventLoop> loop;
};

QCoro::Task<> saveThenCount(QPointer<NoteEditor> editor, std::shared_ptr<Waiting> waiting)
{
    const bool saved = co_await editor->flush();
    waiting->allSaved = waiting->allSaved && saved;
    if (--waiting->saves == 0 && waiting->loop)
        waiting->loop->quit();
}
} // namespace

bool flushNotesBeforeQuitting(std::chrono::milliseconds bound)
{
    auto waiting = std::make_shared<Waiting>();
    for (NoteEditor *editor : NoteEditor::editors()) {
        if (!editor->loaded() || !editor->unsaved())
            continue;
        ++waiting->saves;
        saveThenCount(editor, waiting);
    }
    if (waiting->saves == 0)
        return waiting->allSaved;
    QEventLoop loop;
    waiting->loop = &loop;
    QTimer::singleShot(bound, &loop, &QEventLoop::quit);
    loop.exec();
    return waiting->saves == 0 && waiting->allSaved;
}

} // namespace orvel
