#pragma once

#include <QString>

// The two forms of a field name. An element of an array field is stored as
// its base name, "__" and the index (qty__2) and shown, listed and written in
// rules with the index in parentheses (qty(2)).
namespace fb {

// Every "__" becomes "(" and one ")" is appended at the end, whatever the
// number of replacements: a__b__c is shown as a(b(c.
QString ToDisplayFieldName(const QString& storedName);

// Every "(" becomes "__" and then every ")" is dropped, but only when the name
// holds a "(" at all: qty) keeps its ")".
QString ToStoredFieldName(const QString& shownName);

} // namespace fb
