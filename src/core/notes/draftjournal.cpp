#include "notes/draftjournal.h"

#include "records/json.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvel {

namespace {

const QString formatName = QStringLiteral("orvel.drafts");
constexpr int formatVersion = 1;

QString systemMessage(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// Flushes a file or folder to disk; errno is kept when it fails.
bool syncPath(const QByteArray &path, int flags)
{
    const int fd = ::open(path.constData(), flags | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool synced = ::fsync(fd) == 0;
    const int saved = errno;
    ::close(fd);
    errno = saved;
    return synced;
}

bool writeAll(int fd, const QByteArray &bytes)
{
    const char *data = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, data, std::size_t(left));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += written;
        left -= written;
    }
    return true;
}

QJsonObject draftObject(const Draft &draft)
{
    QJsonObject object{{"key", draft.key.toString(QUuid::WithoutBraces)},
                       {"id", draft.id ? QJsonValue(*draft.id) : QJsonValue()},
                       {"text", draft.text},
                       {"media", draft.media ? json::toValue(*draft.media) : QJsonValue()},
                       {"source", draft.source},
                       {"kind", draft.kind},
                       {"annotations", json::toValue(draft.annotations)}};
    return object;
}

bool readInt(const QJsonValue &value, int &out)
{
    if (!value.isDouble())
        return false;
    const double number = value.toDouble();
    if (number < INT_MIN || number > INT_MAX || number != double(int(number)))
        return false;
    out = int(number);
    return true;
}

// Throws DecodeError (from the record codec) or returns nullopt for a malformed draft.
std::optional<Draft> readDraft(const QJsonValue &value)
{
    if (!value.isObject())
        return std::nullopt;
    const QJsonObject object = value.toObject();
    Draft draft;
    draft.key = QUuid::fromString(object.value(u"key").toString());
    if (draft.key.isNull())
        return std::nullopt;
    const QJsonValue id = object.value(u"id");
    if (!id.isNull()) {
        int number = 0;
        if (!readInt(id, number))
            return std::nullopt;
        draft.id = number;
    }
    for (auto [key, field] : {std::pair{u"text", &draft.text}, std::pair{u"source", &draft.source},
                              std::pair{u"kind", &draft.kind}}) {
        const QJsonValue text = object.value(key);
        if (!text.isString())
            return std::nullopt;
        *field = text.toString();
    }
    const QJsonValue media = object.value(u"media");
    if (!media.isNull())
        draft.media = json::fromValue<Media>(media);
    draft.annotations = json::fromValue<QList<Annotation>>(object.value(u"annotations"));
    return draft;
}

} // namespace

QByteArray JournalEntry::encode() const
{
    QJsonArray lines;
    for (const Draft &draft : drafts)
        lines.append(draftObject(draft));
    const QJsonObject object{{"format", formatName}, {"version", formatVersion}, {"noteId", noteId},
                             {"deckId", deckId},     {"title", title},           {"drafts", lines}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<JournalEntry> JournalEntry::decode(const QByteArray &bytes)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();
    int version = 0;
    if (object.value(u"format").toString() != formatName ||
        !readInt(object.value(u"version"), version) || version != formatVersion)
        return std::nullopt;
    JournalEntry entry;
    const QJsonValue title = object.value(u"title");
    const QJsonValue lines = object.value(u"drafts");
    if (!readInt(object.value(u"noteId"), entry.noteId) ||
        !readInt(object.value(u"deckId"), entry.deckId) || !title.isString() || !lines.isArray())
        return std::nullopt;
    entry.title = title.toString();
    try {
        for (const QJsonValue line : lines.toArray()) {
            std::optional<Draft> draft = readDraft(line);
            if (!draft)
                return std::nullopt;
            entry.drafts.append(std::move(*draft));
        }
    } catch (const std::exception &) {
        return std::nullopt;
    }
    return entry;
}

QString DraftJournal::defaultFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/orvel/drafts");
}

DraftJournal::DraftJournal(QString folder) : m_folder(std::move(folder)) {}

bool DraftJournal::keep(const JournalEntry &entry)
{
    m_error.clear();
    const auto fail = [this](const QString &what, int error) {
        m_error = QStringLiteral("The unsaved lines could not be kept on disk (%1 in %2): %3.")
                      .arg(what, m_folder, systemMessage(error));
        return false;
    };
    if (entry.noteId <= 0) {
        m_error = QStringLiteral("The unsaved lines could not be kept on disk: the note has no "
                                 "number yet.");
        return false;
    }
    const QByteArray folder = QFile::encodeName(m_folder);
    struct stat status {};
    const bool existed = ::stat(folder.constData(), &status) == 0;
    errno = 0;
    if (!existed && !QDir().mkpath(m_folder))
        return fail(QStringLiteral("making the folder"), errno != 0 ? errno : EACCES);
    // A new folder is the owner's alone; an existing one loses what others may do with it, but
    // keeps the owner's own bits (a folder the learner made read-only stays read-only).
    const mode_t mode = existed ? (status.st_mode & 0700) : 0700;
    if ((!existed || (status.st_mode & 077) != 0) && ::chmod(folder.constData(), mode) != 0)
        return fail(QStringLiteral("making the folder private"), errno);

    const QByteArray target = QFile::encodeName(pathFor(entry.noteId));
    const QByteArray temporary =
        QFile::encodeName(QStringLiteral("%1/.note-%2.%3.tmp")
                              .arg(m_folder)
                              .arg(entry.noteId)
                              .arg(QRandomGenerator::global()->generate(), 8, 16, QChar(u'0')));
    const int fd = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0)
        return fail(QStringLiteral("creating a file"), errno);
    // The creation mode is narrowed by the umask only; an explicit chmod makes 0600 certain.
    bool written = ::fchmod(fd, 0600) == 0 && writeAll(fd, entry.encode()) && ::fsync(fd) == 0;
    int error = written ? 0 : errno;
    if (::close(fd) != 0 && written) {
        written = false;
        error = errno;
    }
    if (!written) {
        ::unlink(temporary.constData());
        return fail(QStringLiteral("writing"), error);
    }
    if (::rename(temporary.constData(), target.constData()) != 0) {
        error = errno;
        ::unlink(temporary.constData());
        return fail(QStringLiteral("replacing the old entry"), error);
    }
    // The rename is durable only once the folder itself is on disk.
    if (!syncPath(folder, O_RDONLY | O_DIRECTORY))
        return fail(QStringLiteral("flushing the folder"), errno);
    return true;
}

std::optional<JournalEntry> DraftJournal::read(int noteId) const
{
    QFile file(pathFor(noteId));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    std::optional<JournalEntry> entry = JournalEntry::decode(file.readAll());
    if (!entry || entry->noteId != noteId)
        return std::nullopt;
    return entry;
}

void DraftJournal::forget(int noteId, const JournalEntry &acknowledged)
{
    m_error.clear();
    const std::optional<JournalEntry> stored = read(noteId);
    if (!stored || *stored != acknowledged)
        return;
    const QByteArray path = QFile::encodeName(pathFor(noteId));
    if (::unlink(path.constData()) != 0 ||
        !syncPath(QFile::encodeName(m_folder), O_RDONLY | O_DIRECTORY))
        m_error = QStringLiteral("A saved note's entry could not be removed from %1: %2.")
                      .arg(m_folder, systemMessage(errno));
}

QList<int> DraftJournal::notes() const
{
    static const QRegularExpression name(QStringLiteral("^note-([1-9][0-9]{0,9})\\.json$"));
    QList<int> ids;
    const QStringList files =
        QDir(m_folder).entryList({QStringLiteral("note-*.json")}, QDir::Files | QDir::Hidden);
    for (const QString &file : files) {
        const QRegularExpressionMatch match = name.match(file);
        bool ok = false;
        const int id = match.hasMatch() ? match.captured(1).toInt(&ok) : 0;
        if (ok && id > 0)
            ids.append(id);
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

QString DraftJournal::pathFor(int noteId) const
{
    return QStringLiteral("%1/note-%2.json").arg(m_folder).arg(noteId);
}

} // namespace orvel
