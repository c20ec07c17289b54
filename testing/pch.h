// Precompiled for every test program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <memory>
#include <random>
#include <vector>

#include "QtPrinters.h"
