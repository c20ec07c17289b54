#include "KudTableBlockForm.h"

#include <basic/data/HbdVariableEnum.h>
#include <basic/unit/HbuUnitService.h>

#include <QtCore/QTextCodec>

#include <charconv>

namespace
{
constexpr std::string_view DECLARATION = "\\[";
constexpr std::string_view FIELD = "\\,";
constexpr std::string_view END_OF_DECLARATION = "\\]";

/// Calls `append(code)` for every character; halves of surrogate pairs come as such.
template <class Append>
void forEachCode(QStringView text, Append append)
{
    const QChar* const end = text.data() + text.size();
    for (const QChar* at = text.data(); at != end; ++at) {
        if (at->isHighSurrogate() && at + 1 != end && at[1].isLowSurrogate()) {
            append(QChar::surrogateToUcs4(at[0], at[1]));
            ++at;
        } else {
            append(char32_t(at->unicode()));
        }
    }
}

void appendCode(std::string& out, char32_t code)
{
    if (code < 0x80) {
        out += static_cast<char>(code);
        return;
    }
    if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
    } else {
        if (code < 0x10000) {
            out += static_cast<char>(0xE0 | (code >> 12));
        } else {
            out += static_cast<char>(0xF0 | (code >> 18));
            out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        }
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    }
    out += static_cast<char>(0x80 | (code & 0x3F));
}

/// The letter behind the backslash of a short escape, or 0.
char letterOf(char32_t code)
{
    switch (code) {
    case '\\':
        return '\\';
    case '\t':
        return 't';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    default:
        return 0;
    }
}

/// What UTF-8 cannot hold, and what readers of UTF-8 and of texts with a zero at their end drop.
bool needsNumber(char32_t code)
{
    return code == 0 || code == QChar::ByteOrderMark || QChar::isSurrogate(code);
}

/// Strictly, and nothing that would have been escaped.
std::optional<QString> fromUtf8(std::string_view bytes)
{
    for (const char separator : {'\t', '\n'}) {
        if (bytes.find(separator) != std::string_view::npos)
            return std::nullopt;
    }
    static QTextCodec* const codec = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text = codec->toUnicode(bytes.data(), static_cast<int>(bytes.size()), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0)
        return std::nullopt;
    return text;
}

/// The character of the escape that follows a backslash, and how many bytes it takes; 0 for none.
std::pair<QChar, std::size_t> readEscape(std::string_view bytes)
{
    for (const char code : {'\\', '\t', '\n', '\r'}) {
        if (!bytes.empty() && bytes.front() == letterOf(char32_t(code)))
            return {QLatin1Char(code), 1};
    }
    constexpr std::size_t LENGTH = 5; // the letter and four digits
    if (bytes.size() < LENGTH || bytes.front() != 'u')
        return {QChar(), 0};
    ushort unit = 0;
    const char* const end = bytes.data() + LENGTH;
    const bool isNumber = std::from_chars(bytes.data() + 1, end, unit, 16).ptr == end;
    return {QChar(unit), isNumber && needsNumber(unit) ? LENGTH : 0};
}

std::optional<QString> readField(std::string_view& cell)
{
    // Backslashes come in pairs within a text, so the first that no other precedes begins the mark.
    std::size_t end = 0;
    while (end + 1 < cell.size() &&
           (cell[end] != '\\' ||
            (cell[end + 1] != FIELD.back() && cell[end + 1] != END_OF_DECLARATION.back())))
        end += cell[end] == '\\' ? 2 : 1;
    const auto text = KudTableBlockForm::readEscaped(cell.substr(0, std::min(end, cell.size())));
    cell.remove_prefix(std::min(end, cell.size()));
    return text;
}

/// The fields of the declaration that begins the cell, which is moved on behind it; none when it is
/// damaged.
QStringList readFields(std::string_view& cell)
{
    QStringList fields;
    if (cell.substr(0, DECLARATION.size()) != DECLARATION)
        return fields;
    std::string_view mark = DECLARATION;
    while (mark != END_OF_DECLARATION) {
        cell.remove_prefix(mark.size());
        const std::optional<QString> field = readField(cell);
        mark = cell.substr(0, FIELD.size());
        if (!field || mark.size() != FIELD.size())
            return QStringList();
        fields.append(*field);
    }
    cell.remove_prefix(mark.size());
    return fields;
}

/// False for a unit that is not known here.
bool readUnit(const QString& unitClass, const QString& key, HbuUnit& unit)
{
    if (unitClass.isEmpty() && key.isEmpty())
        return true;
    if (!HbuEUnitClass::existsKey(unitClass))
        return false;
    const auto known = HbuEUnitClass::fromKey(unitClass);
    unit = known == HbuEUnitClass::NONE ? HbuUnit::none()
                                        : HbuUnitService::getInstance().getUnit(known, key);
    return unit.isValid() && unit.getKey() == key;
}

bool readCategories(const QStringList& fields, int first, HbdVariableEnum& column)
{
    HbdEnumCatalog catalog;
    for (int i = first; i + 1 < fields.size(); i += 2) {
        bool ok = false;
        const ushort code = fields.at(i).toUShort(&ok);
        if (!ok || !catalog.addCategory(code, fields.at(i + 1)))
            return false;
    }
    column.setCatalog(catalog);
    return (fields.size() - first) % 2 == 0;
}

void appendFields(std::string& out, const QString& name, const HbdVariableDetails& details)
{
    const auto unitClass = [](const HbuUnit& unit) {
        return unit.isValid() ? unit.getUnitClass().getKey() : QString();
    };
    out += DECLARATION;
    KudTableBlockForm::appendEscaped(out, name);
    for (const QString& field :
         {QString(details.type.getKey()), unitClass(details.unit), details.unit.getKey(),
          unitClass(details.getShownUnit()), details.getShownUnit().getKey()}) {
        out += FIELD;
        KudTableBlockForm::appendEscaped(out, field);
    }
}
} // namespace

void KudTableBlockForm::appendUtf8(std::string& out, QStringView text)
{
    forEachCode(text, [&out](char32_t code) {
        const bool isLost = code == 0 || QChar::isSurrogate(code);
        appendCode(out, isLost ? char32_t(QChar::ReplacementCharacter) : code);
    });
}

void KudTableBlockForm::appendEscaped(std::string& out, QStringView text)
{
    forEachCode(text, [&out](char32_t code) {
        if (const char letter = letterOf(code)) {
            out += '\\';
            out += letter;
        } else if (needsNumber(code)) {
            out += "\\u";
            for (int shift = 12; shift >= 0; shift -= 4)
                out += "0123456789abcdef"[(code >> shift) & 0xF];
        } else {
            appendCode(out, code);
        }
    });
}

std::optional<QString> KudTableBlockForm::readEscaped(std::string_view bytes)
{
    QString text(QLatin1String("")); // not null: an empty text is a value
    while (true) {
        const std::size_t size = std::min(bytes.find('\\'), bytes.size());
        const std::optional<QString> plain = fromUtf8(bytes.substr(0, size));
        if (!plain)
            return std::nullopt;
        text += *plain;
        if (size == bytes.size())
            return text;
        const auto [character, length] = readEscape(bytes.substr(size + 1));
        if (length == 0)
            return std::nullopt;
        text += character;
        bytes.remove_prefix(size + 1 + length);
    }
}

void KudTableBlockForm::appendDeclaration(std::string& out, const QString& name,
                                          const HbdVariableDetails& details)
{
    appendFields(out, name, details);
    out += END_OF_DECLARATION;
}

void KudTableBlockForm::appendDeclaration(std::string& out, const HbdAVariable& column)
{
    appendFields(out, column.getFullName(), column.getDetails());
    if (column.getType() == HbdEVarType::CATEGORY) {
        const auto& categories = static_cast<const HbdVariableEnum&>(column);
        for (const HbdEnumCatalog::Category& category : categories.getCatalog().getCategories()) {
            out += FIELD;
            out += std::to_string(category.code);
            out += FIELD;
            appendEscaped(out, category.label);
        }
    }
    out += END_OF_DECLARATION;
}

std::unique_ptr<HbdAVariable> KudTableBlockForm::readDeclaration(std::string_view& cell)
{
    constexpr int FIELD_COUNT = 6;
    const QStringList fields = readFields(cell);
    if (fields.size() < FIELD_COUNT || !HbdEVarType::existsKey(fields.at(1)))
        return nullptr;
    HbdVariableDetails details(fields.at(0), HbdEVarType::fromKey(fields.at(1)));
    if (!readUnit(fields.at(2), fields.at(3), details.unit) ||
        !readUnit(fields.at(4), fields.at(5), details.displayUnit))
        return nullptr;
    std::unique_ptr<HbdAVariable> column = HbdAVariable::create(details);
    if (details.type != HbdEVarType::CATEGORY)
        return fields.size() == FIELD_COUNT ? std::move(column) : nullptr;
    const bool isRead = readCategories(fields, FIELD_COUNT, static_cast<HbdVariableEnum&>(*column));
    return isRead ? std::move(column) : nullptr;
}
