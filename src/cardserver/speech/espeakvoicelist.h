#pragma once
#include <QJsonArray>
#include <QString>
#include <QStringList>

namespace cardserver {

// Reads the table `espeak-ng --voices[=lang]` prints:
//   Pty Language       Age/Gender VoiceName          File                 Other Languages
//    5  de              --/M      German             gmw/de
// Each row becomes {id: the voice file ("gmw/de"), name ("German", underscores as spaces),
// gender ("male"/"female", null when not given), preview_url: null}.
class EspeakVoiceList {
public:
    // mbrolaFolder: where MBROLA voice data would be; MBROLA voices ("mb/mb-de1") whose data is
    // not installed there are left out, since espeak-ng cannot speak with them.
    static QJsonArray parse(const QString &table,
                            const QString &mbrolaFolder = QStringLiteral("/usr/share/mbrola"));
    // The distinct language codes of the table, in table order, with the codes a voice also
    // answers to ("fr" of "fr-fr … (fr 5)"); "variant" rows are left out.
    static QStringList languages(const QString &table);
};

} // namespace cardserver
