#pragma once

#include <QString>
#include <QTest>

// For a test that needs a tool or package the machine lacks (espeak-ng, a dictionary, a display
// server…): it skips on a developer's machine, but fails in CI (CI=true), where
// scripts/install-deps installs everything and a skip would hide a broken set-up.
#define ORVEL_SKIP_UNLESS_CI(message)                                                              \
    do {                                                                                           \
        if (qEnvironmentVariable("CI") == QLatin1String("true"))                                   \
            QFAIL(qPrintable(QString(message)));                                                   \
        QSKIP(qPrintable(QString(message)));                                                       \
    } while (false)
