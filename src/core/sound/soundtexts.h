#pragma once

#include <QString>

namespace orvel::soundtexts {

// The wording of the sound pane, each text in one place.
inline QString title()
{
    return QStringLiteral("Sound");
}
inline QString hearOnFlip()
{
    return QStringLiteral("Say the word when a card turns over");
}
inline QString speed()
{
    return QStringLiteral("Speed");
}
inline QString normal()
{
    return QStringLiteral("Normal");
}
inline QString slow()
{
    return QStringLiteral("Slow");
}
inline QString noSpeech()
{
    return QStringLiteral(
        "The server has no speech provider configured, so nothing will be spoken.");
}
inline QString spokenBy(const QString &language)
{
    return QStringLiteral("Spoken by ") + language;
}
inline QString hearThisVoice()
{
    return QStringLiteral("Hear this voice");
}
inline QString stop()
{
    return QStringLiteral("Stop");
}
inline QString marginAsYouGo()
{
    return QStringLiteral("Write the margin as I go");
}
inline QString marginAsYouGoNote()
{
    return QStringLiteral("Read a line and write about it once it has been sitting still, instead "
                          "of waiting to be asked. One line at a time, and each one costs a "
                          "request.");
}

} // namespace orvel::soundtexts
