#include "ToolArchiveListing.h"

#include "ToolArchive.h"
#include "ToolCommand.h"
#include "ToolJson.h"
#include "ToolOutput.h"
#include "ToolText.h"

#include <util/system/KusTarReader.h>

#include <QtCore/QTextCodec>

#include <algorithm>
#include <ctime>

namespace
{
constexpr int PIECE = 1 << 16;   // bytes of text that go out together
constexpr qint64 PATIENCE = 200; // milliseconds of a reader who waits for them

/// In UTC, as ISO 8601 has it; empty beyond the years that a calendar has.
QByteArray timeText(qint64 seconds)
{
    const std::time_t time = seconds;
    std::tm date{};
    if (gmtime_r(&time, &date) == nullptr)
        return QByteArray();
    char text[64];
    const std::size_t size = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &date);
    return QByteArray(text, static_cast<int>(size));
}

/// The permissions as "rwxr-x---".
QByteArray permissionText(int bits)
{
    QByteArray text("rwxrwxrwx");
    for (int i = 0; i < text.size(); ++i) {
        if (bits < 0 || (bits & (0400 >> i)) == 0)
            text[i] = bits < 0 ? '?' : '-';
    }
    return text;
}

bool isUtf8(const QByteArray& name)
{
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(name.constData(), name.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

/// The name in one line; bytes that are no UTF-8 as "\xe9".
QByteArray visibleName(const QByteArray& name)
{
    if (std::all_of(name.begin(), name.end(), [](char c) { return c >= ' ' && c < 0x7f; }))
        return name;
    if (isUtf8(name))
        return ToolText::makeVisible(QString::fromUtf8(name)).toUtf8();
    QString text;
    for (const char byte : name)
        text += byte < 0 ? QStringLiteral("\\x") + QString::fromLatin1(QByteArray(1, byte).toHex())
                         : QString(QLatin1Char(byte));
    return ToolText::makeVisible(text).toUtf8();
}

/// Of columns that are wide enough for most, because nobody knows yet what follows.
QByteArray row(const QByteArray& mode, const QByteArray& size, const QByteArray& time,
               const QByteArray& name)
{
    return mode.leftJustified(10) + size.rightJustified(14) + "  " + time.leftJustified(20) + "  " +
           name + '\n';
}

class Lines : public ToolArchiveListing
{
    QByteArray _begin() override
    {
        return row(Tool::tr("mode").toUtf8(), Tool::tr("size").toUtf8(),
                   Tool::tr("modified").toUtf8(), Tool::tr("name").toUtf8());
    }

    QByteArray _member(const KusTarReader& tar) override
    {
        const bool isDirectory = tar.isDirectory();
        return row((isDirectory ? 'd' : '-') + permissionText(tar.getRecord().permissionBits()),
                   QByteArray::number(tar.getSize()), timeText(tar.getRecord().modifSeconds()),
                   visibleName(tar.getName()) + (isDirectory ? "/" : ""));
    }

    QByteArray _end(const QString& error) override
    {
        if (!error.isEmpty())
            return QByteArray();
        return (ToolArchive::getCountText(memberCount(), fileSize()) + QLatin1Char('\n')).toUtf8();
    }
};

class Document : public ToolArchiveListing
{
public:
    explicit Document(const QString& archivePath)
    {
        m_json.beginObject();
        m_json.key("file").value(archivePath);
        m_json.key("members").beginArray();
    }

private:
    QByteArray _begin() override { return m_json.take(); }

    QByteArray _member(const KusTarReader& tar) override
    {
        const KusTarRecord& record = tar.getRecord();
        const int bits = record.permissionBits();
        m_json.beginObject();
        m_json.key("name").value(tar.getNameText());
        if (!isUtf8(tar.getName()))
            m_json.key("nameBase64").value(QString::fromLatin1(tar.getName().toBase64()));
        m_json.key("type").value(tar.isDirectory() ? QStringLiteral("directory")
                                                   : QStringLiteral("file"));
        m_json.key("mode").textOrNull(
            bits < 0 ? QString() : QStringLiteral("%1").arg(bits, 4, 8, QLatin1Char('0')));
        m_json.key("size").value(tar.getSize());
        m_json.key("modified").textOrNull(QString::fromLatin1(timeText(record.modifSeconds())));
        m_json.key("modifiedSeconds").value(record.modifSeconds());
        m_json.key("headerChecksum").value(tar.hasRightChecksum());
        m_json.endObject();
        return m_json.take();
    }

    QByteArray _end(const QString& error) override
    {
        m_json.endArray();
        m_json.key("memberCount").value(memberCount());
        m_json.key("size").value(fileSize());
        m_json.key("error").textOrNull(error);
        m_json.endObject();
        return m_json.toByteArray();
    }

    ToolJson m_json;
};
} // namespace

std::unique_ptr<ToolArchiveListing> ToolArchiveListing::create(const QString& archivePath,
                                                               bool isJson)
{
    if (isJson)
        return std::make_unique<Document>(archivePath);
    return std::make_unique<Lines>();
}

void ToolArchiveListing::write()
{
    ToolOutput::print(m_text);
    m_text.clear();
    m_sinceWrite.restart();
}

void ToolArchiveListing::add(const KusTarReader& tar)
{
    if (m_memberCount == 0)
        m_text = _begin();
    ++m_memberCount;
    m_fileSize += tar.getSize();
    m_text += _member(tar);
    if (m_text.size() >= PIECE || m_sinceWrite.elapsed() >= PATIENCE)
        write();
}

void ToolArchiveListing::end(const QString& error)
{
    m_text += _end(error);
    write();
}
