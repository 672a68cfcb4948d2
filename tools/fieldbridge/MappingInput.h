#pragma once

#include <QString>

namespace fb {
class MappingDocument;
}

namespace fbtool {

// Loads the mapping object in the file: the whole text (UTF-8) into the
// document, whose table name is then the root element's name. False, with
// one line saying why in error, when the file cannot be read, is not
// well-formed XML with one root element, or its root element's name is not
// an 8-character table name (below any other name no section is found).
bool LoadMappingObject(const QString& path, fb::MappingDocument& doc, QString* error);

} // namespace fbtool
