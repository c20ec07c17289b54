#pragma once

#include <QtCore/QString>

class KuuCoordSystem;
struct KuuCoordSystemArea;
class ToolJson;

/// What the tool says of one coordinate system.
namespace ToolCsFacts
{
/// A page for people.
QString toText(const KuuCoordSystem& system);
/// The same as one JSON object, with the definition in WKT2.
void write(ToolJson& json, const KuuCoordSystem& system);

/// The object of an area of use; null for one that nobody stated.
void write(ToolJson& json, const KuuCoordSystemArea& area);
} // namespace ToolCsFacts
