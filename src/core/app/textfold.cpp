#include "app/textfold.h"

namespace orvel {

namespace {

// The full case folding of a character that folds to more than one, or empty.
QString fullFolding(QChar c)
{
    switch (c.unicode()) {
    case 0x00DF: // ß
    case 0x1E9E: // ẞ
        return QStringLiteral("ss");
    case 0xFB00:
        return QStringLiteral("ff");
    case 0xFB01:
        return QStringLiteral("fi");
    case 0xFB02:
        return QStringLiteral("fl");
    case 0xFB03:
        return QStringLiteral("ffi");
    case 0xFB04:
        return QStringLiteral("ffl");
    case 0xFB05:
    case 0xFB06:
        return QStringLiteral("st");
    default:
        return {};
    }
}

} // namespace

QString foldText(const QString &text)
{
    // Decompose, drop the combining marks, fold the case; then compose again, so that what is
    // left compares by whole characters.
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    QString bare;
    bare.reserve(decomposed.size());
    for (qsizetype at = 0; at < decomposed.size(); ++at) {
        const char32_t c = decomposed.at(at).isHighSurrogate() && at + 1 < decomposed.size()
                               ? QChar::surrogateToUcs4(decomposed.at(at), decomposed.at(at + 1))
                               : decomposed.at(at).unicode();
        const bool pair = c > 0xFFFF;
        if (QChar::category(c) != QChar::Mark_NonSpacing) {
            bare += decomposed.at(at);
            if (pair)
                bare += decomposed.at(at + 1);
        }
        if (pair)
            ++at;
    }
    // QString folds case one character for one; the letters whose full folding is longer are
    // spelled out here ('ß' and 'ẞ' as "ss", the Latin ligatures as their letters).
    QString folded = bare.toCaseFolded();
    for (qsizetype at = 0; at < folded.size(); ++at) {
        const QString expanded = fullFolding(folded.at(at));
        if (!expanded.isEmpty()) {
            folded.replace(at, 1, expanded);
            at += expanded.size() - 1;
        }
    }
    return folded.normalized(QString::NormalizationForm_C);
}

} // namespace orvel
