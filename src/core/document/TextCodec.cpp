#include "TextCodec.h"

#include <QRegularExpression>
#include <QStringDecoder>

namespace fb {

namespace {

bool startsWithBom(const char* data, qsizetype size)
{
    return size >= 3 && uchar(data[0]) == 0xEF && uchar(data[1]) == 0xBB && uchar(data[2]) == 0xBF;
}

QString decodeKeepingBom(QStringDecoder::Encoding encoding, QByteArrayView bytes)
{
    QStringDecoder decoder(encoding,
                           QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    return decoder.decode(bytes);
}

bool startsWithDeclaration(QStringView text)
{
    return text.startsWith(u"<?xml") && text.size() > 5 && text.at(5).isSpace();
}

// The encoding named in a leading declaration, or "" when there is none.
QByteArray declaredEncoding(const QByteArray& bytes)
{
    if (!startsWithDeclaration(QString::fromLatin1(bytes.left(6))))
        return {};
    const qsizetype end = bytes.indexOf("?>");
    if (end < 0)
        return {};
    static const QRegularExpression encodingAttr(
        QStringLiteral("encoding\\s*=\\s*[\"']([A-Za-z0-9._-]+)[\"']"));
    const QRegularExpressionMatch m = encodingAttr.match(QString::fromLatin1(bytes.left(end)));
    return m.hasMatch() ? m.captured(1).toLatin1() : QByteArray();
}

QString decodeText(const QByteArray& bytes)
{
    if (const auto bom = QStringConverter::encodingForData(bytes)) {
        QStringDecoder decoder(*bom);
        return decoder(bytes);
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QByteArray declared = declaredEncoding(bytes);
    if (!declared.isEmpty()) {
        QStringDecoder named(declared.constData());
        if (named.isValid())
            decoder = std::move(named);
    }
    return decoder(bytes);
}

} // namespace

QString Utf8Text(const char* data, qsizetype size)
{
    // The decoder is only needed for the rare text that starts with U+FEFF.
    if (!startsWithBom(data, size))
        return QString::fromUtf8(data, size);
    return decodeKeepingBom(QStringDecoder::Utf8, QByteArrayView(data, size));
}

QString LocalText(const QByteArray& bytes)
{
    return decodeKeepingBom(QStringDecoder::System, bytes);
}

DecodedFile DecodeMappingFile(const QByteArray& bytes)
{
    DecodedFile result;
    result.text = decodeText(bytes);
    if (result.text.startsWith(QChar(0xFEFF)))
        result.text.remove(0, 1);
    if (startsWithDeclaration(result.text)) {
        const qsizetype end = result.text.indexOf(QStringLiteral("?>"));
        if (end >= 0) {
            qsizetype next = end + 2;
            while (next < result.text.size() && result.text.at(next).isSpace())
                ++next;
            result.text.remove(0, next);
            result.declarationRemoved = true;
        }
    }
    return result;
}

} // namespace fb
