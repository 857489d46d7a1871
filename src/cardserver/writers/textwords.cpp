#include "textwords.h"

#include <QHash>
#include <QSet>
#include <QTextBoundaryFinder>

namespace cardserver {

namespace {

QSet<QString> wordSet(const char *words)
{
    QSet<QString> out;
    for (const QString &w : QString::fromUtf8(words).split(u' ', Qt::SkipEmptyParts))
        out.insert(w);
    return out;
}

const QHash<QString, QSet<QString>> &stopWords()
{
    static const QHash<QString, QSet<QString>> table = {
        {QStringLiteral("de"),
         wordSet("der die das den dem des ein eine einer einem einen eines und oder aber doch "
                 "denn sondern ich du er sie es wir ihr mich dich sich uns euch mir dir ihm ihn "
                 "ihnen mein dein sein unser euer ist sind war waren bin bist seid wird werden "
                 "hat haben habe hast hatte nicht kein keine zu im in an am auf aus bei mit nach "
                 "von vom vor zum zur für über unter um als wie so auch noch schon nur ja nein "
                 "da dass wenn ob was wer wo dann man")},
        {QStringLiteral("fr"),
         wordSet("le la les l un une des du de d et ou mais donc car ni je tu il elle on nous "
                 "vous ils elles me te se lui leur y en ce cet cette ces mon ma mes ton ta tes "
                 "son sa ses est sont suis es être a ai as ont avoir ne pas plus que qui quoi "
                 "à au aux dans par pour sur avec sans sous c j n s qu m t")},
        {QStringLiteral("es"),
         wordSet("el la los las lo un una unos unas y o u e pero ni que de del a al en con por "
                 "para sin sobre yo tú él ella nosotros vosotros ellos ellas me te se nos os le "
                 "les mi mis tu tus su sus es son soy está están ser estar ha han he no sí muy "
                 "más como")},
        {QStringLiteral("it"),
         wordSet("il lo la i gli le l un uno una un' e ed o ma che di del della dei degli delle "
                 "a al alla ai agli alle da dal dalla in nel nella con su per tra fra io tu lui "
                 "lei noi voi loro mi ti si ci vi è sono sei era non più come")},
        {QStringLiteral("pt"),
         wordSet("o a os as um uma uns umas e ou mas que de do da dos das em no na nos nas por "
                 "pelo pela para com sem eu tu ele ela nós vós eles elas me te se lhe nos vos "
                 "meu minha seu sua é são sou está estão ser estar não sim muito mais como")},
        {QStringLiteral("nl"),
         wordSet("de het een en of maar dat die dit deze ik jij je hij zij ze wij we jullie u "
                 "mij me ons hem haar hun is zijn ben bent was waren heeft hebben heb niet geen "
                 "te in op aan van voor met bij naar om uit als dan er zo ook nog al")},
        {QStringLiteral("en"),
         wordSet("the a an and or but of to in on at by for with from is are was were be been "
                 "i you he she it we they me him her us them my your his its our their not no "
                 "this that these those as so if then")},
    };
    return table;
}

} // namespace

QList<TextWord> TextWords::split(const QString &text)
{
    QList<TextWord> out;
    QTextBoundaryFinder sentences(QTextBoundaryFinder::Sentence, text);
    qsizetype sentenceStart = 0;
    while (sentenceStart < text.size()) {
        sentences.setPosition(int(sentenceStart));
        qsizetype sentenceEnd = sentences.toNextBoundary();
        if (sentenceEnd <= sentenceStart)
            sentenceEnd = text.size();
        const QString sentence = text.mid(sentenceStart, sentenceEnd - sentenceStart);
        const QString shown = sentence.simplified();

        QTextBoundaryFinder words(QTextBoundaryFinder::Word, sentence);
        qsizetype start = 0;
        while (start < sentence.size()) {
            words.setPosition(int(start));
            qsizetype end = words.toNextBoundary();
            if (end <= start)
                end = sentence.size();
            const QString piece = sentence.mid(start, end - start);
            bool letters = false, digits = false;
            for (QChar c : piece) {
                letters = letters || c.isLetter();
                digits = digits || c.isDigit();
            }
            if (letters && !digits)
                out.append({piece, shown});
            start = end;
        }
        sentenceStart = sentenceEnd;
    }
    return out;
}

bool TextWords::isStopWord(const QString &language, const QString &word)
{
    const auto it = stopWords().constFind(language.left(2).toLower());
    return it != stopWords().constEnd() && it->contains(word.toLower());
}

} // namespace cardserver
