#pragma once

#include "MapColors.h"

#include <QtCore/QRectF>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QImage>

#include <vector>

class QPainter;

/// A map of samples: a circle each in the colour of its value, axes with numbers, a legend and a
/// title. Samples without a value are hollow and grey. High values lie above low ones, so that none
/// is hidden. Needs fonts, but no display.
class MapPicture
{
public:
    struct Sample {
        double x;
        double y;
        double value; ///< of a category its place in `categories`; HbbGlobal::D_FFFF: undefined
    };
    struct Category {
        QString label;
        QColor color;
    };

    QString title;
    QString subtitle;
    QString xTitle;
    QString yTitle;
    QString legendTitle;
    QVector<Category> categories; ///< empty: the values are numbers on a ramp
    std::vector<Sample> samples;  ///< with defined, finite coordinates
    double yScale = 1.0;          ///< how much longer a unit along Y is than one along X

    QImage draw();

private:
    void chooseRamp();
    void chooseView();
    double toPixelX(double x) const;
    double toPixelY(double y) const;
    QColor colorOf(double value) const;
    void drawAxes(QPainter& painter) const;
    void drawSamples(QPainter& painter) const;
    void drawTitle(QPainter& painter) const;
    void drawRamp(QPainter& painter) const;
    void drawCategories(QPainter& painter) const;
    void drawUndefinedKey(QPainter& painter, double y) const;

    QRectF m_frame; // of the plot, in pixels
    QRectF m_view;  // what it shows, in coordinates; y grows upwards
    double m_legendX = 0;
    double m_low = 0; // the values at both ends of the ramp
    double m_high = 1;
    bool m_isClippedBelow = false; // there are values beyond the ends
    bool m_isClippedAbove = false;
    int m_undefined = 0;
};
