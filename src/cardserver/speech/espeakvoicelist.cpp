#include "espeakvoicelist.h"

#include <QFileInfo>
#include <QJsonObject>

namespace cardserver {

namespace {

struct Row {
    QString language;
    QString gender;
    QString name;
    QString file;
    QStringList others; // "(fr 8)" of "Other Languages": the voice also speaks fr
};

QList<Row> rows(const QString &table)
{
    QList<Row> out;
    const QStringList lines = table.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QStringList cols = line.simplified().split(u' ');
        // Pty Language Age/Gender VoiceName File [Other languages…]; the header has "Pty".
        if (cols.size() < 5 || cols[0] == QLatin1String("Pty"))
            continue;
        bool priority = false;
        cols[0].toInt(&priority);
        if (!priority)
            continue;
        QStringList others;
        for (qsizetype i = 5; i < cols.size(); ++i) {
            if (cols[i].startsWith(u'('))
                others.append(cols[i].mid(1));
        }
        out.append({cols[1], cols[2].section(u'/', 1), cols[3], cols[4], others});
    }
    return out;
}

bool mbrolaInstalled(const QString &file, const QString &mbrolaFolder)
{
    // "mb/mb-de1" speaks with the MBROLA database "de1".
    const QString database = file.section(u'/', -1).mid(3);
    return QFileInfo::exists(mbrolaFolder + u'/' + database) ||
           QFileInfo::exists(mbrolaFolder + u'/' + database + u'/' + database) ||
           QFileInfo::exists(mbrolaFolder + QStringLiteral("/voices/") + database);
}

} // namespace

QJsonArray EspeakVoiceList::parse(const QString &table, const QString &mbrolaFolder)
{
    QJsonArray out;
    for (const Row &row : rows(table)) {
        if (row.language == QLatin1String("variant"))
            continue;
        if (row.file.startsWith(QLatin1String("mb/")) && !mbrolaInstalled(row.file, mbrolaFolder))
            continue;
        QJsonValue gender = QJsonValue::Null;
        if (row.gender == QLatin1String("M"))
            gender = QStringLiteral("male");
        else if (row.gender == QLatin1String("F"))
            gender = QStringLiteral("female");
        out.append(QJsonObject{{QStringLiteral("id"), row.file},
                               {QStringLiteral("name"), QString(row.name).replace(u'_', u' ')},
                               {QStringLiteral("gender"), gender},
                               {QStringLiteral("preview_url"), QJsonValue::Null}});
    }
    return out;
}

QStringList EspeakVoiceList::languages(const QString &table)
{
    QStringList out;
    for (const Row &row : rows(table)) {
        if (row.language == QLatin1String("variant"))
            continue;
        for (const QString &code : QStringList{row.language} + row.others) {
            if (!out.contains(code))
                out.append(code);
        }
    }
    return out;
}

} // namespace cardserver
