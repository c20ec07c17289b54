// Precompiled: the heavy headers that nearly every source file of the library reads.
#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>
#include <QtXml/QDomDocument>

#include <algorithm>
#include <memory>
#include <vector>
