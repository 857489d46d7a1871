#include "app/textfold.h"

namespace orvel {

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
    // Qt folds case one character to one; the full folding also turns 'ß' into "ss".
    return bare.toCaseFolded()
        .replace(QChar(0x00DF), QStringLiteral("ss"))
        .normalized(QString::NormalizationForm_C);
}

} // namespace orvel
