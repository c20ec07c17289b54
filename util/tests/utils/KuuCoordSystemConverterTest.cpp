#include <util/utils/KuuCoordSystemConverter.h>

#include <basic/error/HbeUserError.h>

#include <QtPrinters.h>

namespace
{
KuuCoordSystem read(const char* text)
{
    return KuuCoordSystem::unserialize(QString::fromUtf8(text));
}
} // namespace

// Coordinates that the authorities publish, or that their own programs give.
TEST(KuuCoordSystemConverter, agreesWithPublishedCoordinates)
{
    const struct {
        const char* from;
        HbgVector2D point;
        const char* to;
        HbgVector2D image;
        double tolerance;
    } rows[] = {
        {"EPSG:4258", {12., 55.}, "EPSG:25832", {691875.6321, 6098907.8250}, 1e-4},
        {"IGNF:LAMBE", {600000., 2600545.4523}, "IGNF:LAMB93", {652760.737, 7033791.243}, 1e-3},
        {"EPSG:4326", {3., 46.5}, "EPSG:2154", {700000., 6600000.}, 1e-6},
        {"EPSG:4807", {0., 46.8}, "EPSG:27572", {600000., 2200000.}, 1e-6}, // its axes are in gons
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(QString("%1 to %2").arg(row.from, row.to).toStdString());
        const KuuCoordSystemConverter converter(read(row.from), read(row.to));
        HbgVector2D image = row.point;
        EXPECT_TRUE(converter.convert(image));
        EXPECT_NEAR(image.x, row.image.x, row.tolerance);
        EXPECT_NEAR(image.y, row.image.y, row.tolerance);
    }
}
