#include "MapPicture.h"

#include "MapAxis.h"
#include "ToolCommand.h"
#include "ToolInterrupt.h"
#include "ToolOutput.h"

#include <basic/base/HbbGlobal.h>
#include <basic/base/HbbStringFormat.h>

#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace
{
constexpr QRectF PLOT(125, 115, 1020, 840); // the room for the frame
constexpr int LEGEND_WIDTH = 250;
constexpr int AXIS_HEIGHT = 80;
constexpr int LEAST_HEIGHT = 760; // so that the legend has room
constexpr double BAR_WIDTH = 26;
constexpr double BAR_HEIGHT = 420;
constexpr double ROW_HEIGHT = 28;
constexpr int MAX_LEGEND_ROWS = 24;
constexpr int MANY_SAMPLES = 100000;
constexpr std::size_t INTERRUPT_STEP = 10000;

const QColor INK(0x26, 0x2B, 0x33);
const QColor FAINT_INK(0x66, 0x6E, 0x7A);
const QColor GRID(0xE4, 0xE7, 0xEB);
const QColor UNDEFINED(0x9A, 0xA1, 0xAB);

QFont fontOf(double pixels, bool bold = false)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(static_cast<int>(pixels));
    font.setBold(bold);
    return font;
}

void drawText(QPainter& painter, const QRectF& place, int flags, const QString& text)
{
    painter.drawText(place, flags | Qt::TextDontClip | Qt::TextSingleLine, text);
}

QString shortText(double value)
{
    return QString::fromLatin1(
        HbbStringFormat::simpleValueToByteArray(value, HbbEFormat::GENERAL, 3));
}

double radiusOf(std::size_t count)
{
    return std::clamp(40.0 / std::sqrt(std::sqrt(static_cast<double>(count) + 1)) - 1.5, 2.2, 7.0);
}
} // namespace

void MapPicture::chooseRamp()
{
    std::vector<double> values;
    for (const Sample& sample : samples) {
        if (!HbbGlobal::isUndefined(sample.value) && std::isfinite(sample.value))
            values.push_back(sample.value);
    }
    m_undefined =
        static_cast<int>(std::count_if(samples.begin(), samples.end(), [](const Sample& sample) {
            return HbbGlobal::isUndefined(sample.value);
        }));
    if (values.empty())
        return;
    // Two values in a hundred beyond each end: a few nuggets would leave one colour to the rest.
    std::sort(values.begin(), values.end());
    const std::size_t cut = values.size() / 50;
    m_low = values[cut];
    m_high = values[values.size() - 1 - cut];
    if (!(m_low < m_high)) {
        m_low = values.front();
        m_high = values.back();
    }
    m_isClippedBelow = values.front() < m_low;
    m_isClippedAbove = values.back() > m_high;
}

/// The frame keeps the proportions of the ground, and is no wider than the samples need.
void MapPicture::chooseView()
{
    double left = 0, right = 1, bottom = 0, top = 1;
    if (!samples.empty()) {
        left = right = samples.front().x;
        bottom = top = samples.front().y;
    }
    for (const Sample& sample : samples) {
        left = std::min(left, sample.x);
        right = std::max(right, sample.x);
        bottom = std::min(bottom, sample.y);
        top = std::max(top, sample.y);
    }
    const double extent = std::max({right - left, (top - bottom) * yScale,
                                    1e-9 * std::max(std::fabs(right), std::fabs(top)), 1e-12});
    const double margin = 0.04 * extent;
    m_view = QRectF(QPointF(left - margin, bottom - margin / yScale),
                    QPointF(right + margin, top + margin / yScale));
    const double least = extent / 4; // a line of samples still gets an area
    if (m_view.width() < least)
        m_view.adjust(-(least - m_view.width()) / 2, 0, (least - m_view.width()) / 2, 0);
    if (m_view.height() * yScale < least) {
        const double missing = least / yScale - m_view.height();
        m_view.adjust(0, -missing / 2, 0, missing / 2);
    }
    const double scale =
        std::min(PLOT.width() / m_view.width(), PLOT.height() / (m_view.height() * yScale));
    const QSizeF size(m_view.width() * scale, m_view.height() * yScale * scale);
    m_frame = QRectF(PLOT.topLeft(), size);
    m_legendX = m_frame.right() + 45;
}

double MapPicture::toPixelX(double x) const
{
    return m_frame.left() + (x - m_view.left()) / m_view.width() * m_frame.width();
}

double MapPicture::toPixelY(double y) const
{
    return m_frame.bottom() - (y - m_view.top()) / m_view.height() * m_frame.height();
}

QColor MapPicture::colorOf(double value) const
{
    if (!categories.isEmpty())
        return categories.at(static_cast<int>(value)).color;
    return MapColors::getRamp(m_high > m_low ? (value - m_low) / (m_high - m_low) : 0.5);
}

void MapPicture::drawAxes(QPainter& painter) const
{
    const MapAxis xAxis(m_view.left(), m_view.right(), static_cast<int>(m_frame.width() / 150));
    const MapAxis yAxis(m_view.top(), m_view.bottom(), static_cast<int>(m_frame.height() / 100));
    painter.setFont(fontOf(15));
    for (const double tick : xAxis.getTicks()) {
        const double x = toPixelX(tick);
        painter.setPen(GRID);
        painter.drawLine(QPointF(x, m_frame.top()), QPointF(x, m_frame.bottom()));
        painter.setPen(FAINT_INK);
        drawText(painter, QRectF(x - 60, m_frame.bottom() + 8, 120, 20), Qt::AlignHCenter,
                 xAxis.getLabel(tick));
    }
    for (const double tick : yAxis.getTicks()) {
        const double y = toPixelY(tick);
        painter.setPen(GRID);
        painter.drawLine(QPointF(m_frame.left(), y), QPointF(m_frame.right(), y));
        painter.setPen(FAINT_INK);
        drawText(painter, QRectF(m_frame.left() - 108, y - 10, 100, 20),
                 Qt::AlignRight | Qt::AlignVCenter, yAxis.getLabel(tick));
    }
    painter.setPen(QPen(FAINT_INK, 1.2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(m_frame);

    painter.setPen(INK);
    painter.setFont(fontOf(16));
    drawText(painter, QRectF(m_frame.left(), m_frame.bottom() + 36, m_frame.width(), 24),
             Qt::AlignHCenter, xTitle);
    painter.save();
    painter.translate(m_frame.left() - 98, m_frame.center().y());
    painter.rotate(-90);
    drawText(painter, QRectF(-m_frame.height() / 2, -12, m_frame.height(), 24), Qt::AlignCenter,
             yTitle);
    painter.restore();
}

void MapPicture::drawSamples(QPainter& painter) const
{
    std::vector<const Sample*> order;
    for (const Sample& sample : samples)
        order.push_back(&sample);
    // Hollow circles hide nothing, so they lie on top; then the high values.
    const auto height = [this](const Sample* sample) {
        if (HbbGlobal::isUndefined(sample->value))
            return HUGE_VAL;
        return categories.isEmpty() ? sample->value : 0.0;
    };
    std::stable_sort(order.begin(), order.end(),
                     [&](const Sample* a, const Sample* b) { return height(a) < height(b); });

    const double radius = radiusOf(samples.size());
    const bool many = samples.size() > MANY_SAMPLES;
    painter.save();
    painter.setClipRect(m_frame);
    painter.setRenderHint(QPainter::Antialiasing, !many);
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i % INTERRUPT_STEP == 0)
            ToolInterrupt::check();
        const Sample& sample = *order[i];
        const QPointF center(toPixelX(sample.x), toPixelY(sample.y));
        const bool undefined = HbbGlobal::isUndefined(sample.value);
        const QColor color = undefined ? UNDEFINED : colorOf(sample.value);
        if (many) {
            painter.fillRect(QRectF(center.x() - 1, center.y() - 1, 2, 2), color);
            continue;
        }
        painter.setPen(undefined ? QPen(UNDEFINED, 1.2) : QPen(color.darker(135), 0.7));
        painter.setBrush(undefined ? QBrush(Qt::NoBrush) : QBrush(color));
        painter.drawEllipse(center, radius, radius);
    }
    painter.restore();
}

void MapPicture::drawTitle(QPainter& painter) const
{
    painter.setPen(INK);
    painter.setFont(fontOf(30, true));
    drawText(painter, QRectF(PLOT.left(), 30, PLOT.width(), 38), Qt::AlignLeft, title);
    painter.setPen(FAINT_INK);
    painter.setFont(fontOf(17));
    drawText(painter, QRectF(PLOT.left(), 72, PLOT.width(), 24), Qt::AlignLeft, subtitle);
}

void MapPicture::drawRamp(QPainter& painter) const
{
    const QRectF bar(m_legendX, PLOT.top() + 44, BAR_WIDTH, BAR_HEIGHT);
    for (int row = 0; row < static_cast<int>(BAR_HEIGHT); ++row) {
        const double share = 1.0 - row / (BAR_HEIGHT - 1);
        painter.fillRect(QRectF(bar.left(), bar.top() + row, BAR_WIDTH, 1.5),
                         MapColors::getRamp(share));
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(FAINT_INK, 1));
    painter.drawRect(bar);

    const auto yOf = [&](double value) {
        return bar.bottom() - (value - m_low) / (m_high - m_low) * bar.height();
    };
    const auto label = [&](double y, const QString& text) {
        painter.drawLine(QPointF(bar.right(), y), QPointF(bar.right() + 5, y));
        drawText(painter, QRectF(bar.right() + 10, y - 10, 140, 20),
                 Qt::AlignLeft | Qt::AlignVCenter, text);
    };
    painter.setPen(INK);
    painter.setFont(fontOf(15));
    if (!(m_low < m_high)) {
        label(bar.center().y(), ToolOutput::toText(m_low));
        return;
    }
    const MapAxis axis(m_low, m_high, 6);
    for (const double tick : axis.getTicks())
        label(yOf(tick), axis.getLabel(tick));
    painter.setPen(FAINT_INK);
    painter.setFont(fontOf(13));
    if (m_isClippedAbove)
        drawText(painter, QRectF(bar.left(), bar.top() - 20, 180, 18), Qt::AlignLeft,
                 Tool::tr("%1 and above").arg(shortText(m_high)));
    if (m_isClippedBelow)
        drawText(painter, QRectF(bar.left(), bar.bottom() + 4, 180, 18), Qt::AlignLeft,
                 Tool::tr("%1 and below").arg(shortText(m_low)));
}

void MapPicture::drawCategories(QPainter& painter) const
{
    painter.setFont(fontOf(15));
    const int shown = std::min(categories.size(), MAX_LEGEND_ROWS);
    for (int i = 0; i < shown; ++i) {
        const double y = PLOT.top() + 48 + i * ROW_HEIGHT;
        painter.setPen(QPen(categories.at(i).color.darker(135), 0.7));
        painter.setBrush(categories.at(i).color);
        painter.drawEllipse(QPointF(m_legendX + 8, y), 7, 7);
        painter.setPen(INK);
        drawText(
            painter, QRectF(m_legendX + 26, y - 10, 170, 20), Qt::AlignLeft | Qt::AlignVCenter,
            QFontMetricsF(painter.font()).elidedText(categories.at(i).label, Qt::ElideRight, 170));
    }
    if (shown < categories.size())
        drawText(painter, QRectF(m_legendX, PLOT.top() + 40 + shown * ROW_HEIGHT, 190, 20),
                 Qt::AlignLeft, Tool::tr("and %1 more").arg(categories.size() - shown));
}

void MapPicture::drawUndefinedKey(QPainter& painter, double y) const
{
    painter.setPen(QPen(UNDEFINED, 1.2));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QPointF(m_legendX + 8, y), 7, 7);
    painter.setPen(INK);
    painter.setFont(fontOf(15));
    drawText(painter, QRectF(m_legendX + 26, y - 10, 170, 20), Qt::AlignLeft | Qt::AlignVCenter,
             Tool::tr("undefined (%1)").arg(m_undefined));
}

QImage MapPicture::draw()
{
    chooseRamp();
    chooseView();

    QImage image(static_cast<int>(m_legendX) + LEGEND_WIDTH,
                 std::max(static_cast<int>(m_frame.bottom()) + AXIS_HEIGHT, LEAST_HEIGHT),
                 QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    drawAxes(painter);
    drawSamples(painter);
    drawTitle(painter);

    painter.setPen(INK);
    painter.setFont(fontOf(17, true));
    drawText(painter, QRectF(m_legendX, PLOT.top() - 8, 200, 24), Qt::AlignLeft, legendTitle);
    const int rows = std::min(categories.size(), MAX_LEGEND_ROWS + 1);
    if (categories.isEmpty())
        drawRamp(painter);
    else
        drawCategories(painter);
    if (m_undefined > 0)
        drawUndefinedKey(painter, PLOT.top() + 56 +
                                      (categories.isEmpty() ? BAR_HEIGHT + 32 : rows * ROW_HEIGHT));
    return image;
}
