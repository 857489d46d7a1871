// The headers of the tests' precompiled header (tests/CMakeLists.txt): Qt and QCoro only, never a
// header of the project, and nothing that tests a macro that differs between tests (QtTest's
// headers test QT_TESTCASE_BUILDDIR and QT_GUI_LIB, so they stay out).
#include <QByteArray>
#include <QCoreApplication>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// With the client core in the build (QCoro found), its network and QML headers too.
#if __has_include(<qcoro/qcorotask.h>)
#include <qcoro/qcoronetworkreply.h>
#include <qcoro/qcorotask.h>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QtQml/qqml.h>
#endif
