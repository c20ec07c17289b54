#pragma once

#include <basic/data/HbdAVariable.h>

#include <QtCore/QStringView>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// The bytes of a block on the clipboard under KudTableUtils::KELVANE_MIME_DATA: lines of cells, a
/// tab between cells, a line feed after each line. docs/formats/clipboard.md describes them.
namespace KudTableBlockForm
{
constexpr std::string_view NO_CELL = "\\-";
constexpr std::string_view EMPTY_TEXT = "\\e";

/// A block that needs more bytes than this in one form, or more cells, is no matter for a
/// clipboard.
constexpr std::size_t MAX_BYTES = std::size_t(1) << 29;
constexpr qint64 MAX_CELLS = qint64(1) << 26;

/// UTF-8 as other programs read it: U+0000 and halves of surrogate pairs become U+FFFD.
void appendUtf8(std::string& out, QStringView text);

/// UTF-8 with the escapes of our own form, from which any text is read back as it was.
void appendEscaped(std::string& out, QStringView text);

/// The way back; nothing for bytes that are no escaped text.
std::optional<QString> readEscaped(std::string_view bytes);

/// What precedes the first cell of a column: its full name, its type, its units and, for
/// categories, what their codes stand for.
void appendDeclaration(std::string& out, const HbdAVariable& column);
void appendDeclaration(std::string& out, const QString& name, const HbdVariableDetails& details);

/// A column without values, its full name as that of its details, from the declaration that begins
/// `cell`, which is moved on behind it. Null when there is none, or when it says what is not known
/// here.
std::unique_ptr<HbdAVariable> readDeclaration(std::string_view& cell);
} // namespace KudTableBlockForm
