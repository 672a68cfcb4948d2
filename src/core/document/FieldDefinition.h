#pragma once

#include "Node.h"

#include <QString>

namespace fb {

// The attributes of a field element of a TARTAB or SRCTAB table, read once.
// Every attribute is text as the document holds it; "" when missing.
struct FieldDefinition {
    QString elementName;  // the stored field name (array element as NAME__2)
    QString no;           // No: the field's position, from 1
    QString fieldNumber;  // FNo
    QString type;         // TYPE: the one-letter type code
    QString length;       // LENG
    QString digitsBefore; // DIGB
    QString digitsAfter;  // DIGA
    QString description;  // DSCA
    QString alignment;    // ADJU
    QString letterCase;   // CASE
    QString domain;       // DOMAIN
    QString mandatory;    // MAN
    QString dependency;   // DEP

    static FieldDefinition Read(const Node& field);
};

// The description (DSCA) of a table element itself, "" when it has none.
QString TableDescription(const Node& table);

} // namespace fb
