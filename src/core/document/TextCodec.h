#pragma once

#include <QByteArray>
#include <QString>

// Decoding of bytes into text that keeps every character. Qt's own
// conversions drop a leading U+FEFF as a byte-order mark; here it is a
// character of the text like any other, so that a rule or a script that
// starts with one comes back exactly as it went in.
namespace fb {

QString Utf8Text(const char* data, qsizetype size);
inline QString Utf8Text(const QByteArray& bytes)
{
    return Utf8Text(bytes.constData(), bytes.size());
}

// The same for text in the locale's 8-bit encoding (the temporary files).
QString LocalText(const QByteArray& bytes);

// The bytes of a mapping-object file as text: by the byte-order mark, else
// by the encoding the declaration names, else as UTF-8. A leading XML
// declaration is removed: the document needs the root element to be its
// first node. The host and the headless tool read files through here.
struct DecodedFile {
    QString text;
    bool declarationRemoved = false;
};
DecodedFile DecodeMappingFile(const QByteArray& bytes);

} // namespace fb
