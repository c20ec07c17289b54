#include "ToolJson.h"

#include <basic/base/HbbGlobal.h>
#include <basic/base/HbbStringFormat.h>

#include <QtCore/QStringList>

#include <cmath>

void ToolJson::beginLine()
{
    m_text += '\n';
    m_text += QByteArray(2 * m_depth, ' ');
}

void ToolJson::beginItem()
{
    if (m_hasKey) {
        m_hasKey = false;
        return;
    }
    if (!m_isFirst)
        m_text += ',';
    if (m_depth > 0)
        beginLine();
    m_isFirst = false;
}

void ToolJson::begin(char bracket)
{
    beginItem();
    m_text += bracket;
    ++m_depth;
    m_isFirst = true;
}

void ToolJson::end(char bracket)
{
    --m_depth;
    if (!m_isFirst)
        beginLine();
    m_text += bracket;
    m_isFirst = false;
}

ToolJson& ToolJson::key(const char* name)
{
    beginItem();
    appendQuoted(QString::fromUtf8(name));
    m_text += ": ";
    m_hasKey = true;
    return *this;
}

void ToolJson::appendQuoted(const QString& text)
{
    m_text += '"';
    for (const char byte : text.toUtf8()) {
        if (byte == '"' || byte == '\\')
            m_text += '\\';
        if (static_cast<unsigned char>(byte) < 0x20)
            m_text += "\\u00" + QByteArray(1, byte).toHex();
        else
            m_text += byte;
    }
    m_text += '"';
}

void ToolJson::value(const QString& text)
{
    beginItem();
    appendQuoted(text);
}

void ToolJson::value(double number)
{
    if (HbbGlobal::isUndefined(number) || !std::isfinite(number)) {
        null();
        return;
    }
    beginItem();
    m_text += HbbStringFormat::simpleValueToByteArray(number, HbbEFormat::SHORTEST, 0);
}

void ToolJson::value(qint64 number)
{
    beginItem();
    m_text += HbbStringFormat::simpleValueToByteArray(number);
}

void ToolJson::value(bool truth)
{
    beginItem();
    m_text += truth ? "true" : "false";
}

void ToolJson::value(const QStringList& texts)
{
    beginArray();
    for (const QString& text : texts)
        value(text);
    endArray();
}

void ToolJson::number(const QVariant& number)
{
    if (number.userType() == QMetaType::Double)
        value(number.toDouble());
    else if (number.userType() == QMetaType::LongLong)
        value(number.toLongLong());
    else
        null();
}

void ToolJson::null()
{
    beginItem();
    m_text += "null";
}

void ToolJson::textOrNull(const QString& text)
{
    if (text.isEmpty())
        null();
    else
        value(text);
}
