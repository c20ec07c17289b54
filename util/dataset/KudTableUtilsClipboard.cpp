#include <util/dataset/KudTableBlock.h>
#include <util/dataset/KudTableUtils.h>

#include "KudTableBlockEncoder.h"

#include <QtCore/QItemSelectionModel>
#include <QtCore/QMimeData>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

QMimeData* KudTableUtils::encodeForClipboard(const QAbstractItemModel* model,
                                             const HbiIntervalIntSmallDisjoint& rows,
                                             const HbiIntervalIntSmallDisjoint& columns,
                                             QChar decimal)
{
    if (model == nullptr)
        return std::make_unique<QMimeData>().release();
    return KudTableBlockEncoder(*model, rows, columns, decimal).encode().release();
}

QMimeData* KudTableUtils::encodeForClipboard(const QItemSelectionModel* selectionModel,
                                             const HbiIntervalIntSmallDisjoint& rows,
                                             const HbiIntervalIntSmallDisjoint& columns,
                                             QChar decimal)
{
    if (selectionModel == nullptr || selectionModel->model() == nullptr)
        return std::make_unique<QMimeData>().release();
    KudTableBlockEncoder encoder(*selectionModel->model(), rows, columns, decimal);
    encoder.restrictTo(*selectionModel);
    return encoder.encode().release();
}

QList<QVector<QVariant>> KudTableUtils::decodeClipBoard(int cellCount,
                                                        const HbiIntervalIntSmallDisjoint& rows,
                                                        const HbiIntervalIntSmallDisjoint& columns,
                                                        const QMap<QString, int>& positions)
{
    const QMimeData* data = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr
                                ? QGuiApplication::clipboard()->mimeData()
                                : nullptr;
    if (data == nullptr)
        return {};
    return KudTableBlock::fromMimeData(*data).toRows(cellCount, rows, columns, positions);
}
