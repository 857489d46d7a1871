#include "brand.h"

#include <cstdio>
#include <QFile>
#include <QFontDatabase>
#include <QStringList>

namespace orvel {

namespace {

QString registerFace()
{
    const QString path = Brand::resourcePath();
    if (!QFile::exists(path)) {
        std::fputs("brand: Newsreader-Medium.ttf is not in the bundle\n", stderr);
        return QStringLiteral("serif");
    }
    const int id = QFontDatabase::addApplicationFont(path);
    const QStringList families =
        id < 0 ? QStringList() : QFontDatabase::applicationFontFamilies(id);
    if (families.isEmpty()) {
        // Qt reports no cause; -1 is the code it returns for a face it could not load.
        std::fprintf(stderr,
                     "brand: could not register Newsreader-Medium (CTFontManagerError %d)\n",
                     id < 0 ? id : -1);
        return QStringLiteral("serif");
    }
    return families.first();
}

} // namespace

Brand::Brand(QObject *parent) : QObject(parent) {}

QString Brand::family()
{
    static const QString name = registerFace();
    return name;
}

QString Brand::resourcePath()
{
    return QStringLiteral(":/Orvel/resources/fonts/Newsreader-Medium.ttf");
}

} // namespace orvel
