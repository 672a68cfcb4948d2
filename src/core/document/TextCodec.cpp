#include "TextCodec.h"

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

} // namespace fb
