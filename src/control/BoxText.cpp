#include "BoxText.h"

#include <QPlainTextEdit>
#include <QTextDocument>
#include <QVariant>
#include <QWidget>

namespace fb {

QString ToEditorText(const QString& text)
{
    if (!text.contains(u'\r'))
        return text;
    QString s = text;
    s.replace(QStringLiteral("\r\r\n"), QStringLiteral("\n"));
    s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    s.replace(u'\r', u'\n');
    return s;
}

QString FromEditorText(const QString& text)
{
    if (!text.contains(u'\n'))
        return text;
    QString s = text;
    s.replace(u'\n', QStringLiteral("\r\n"));
    return s;
}

QString BoxText(const QWidget* box)
{
    if (const auto* edit = qobject_cast<const QPlainTextEdit*>(box)) {
        // toPlainText() turns no-break spaces into blanks; the raw text keeps
        // every character and separates paragraphs with U+2029.
        QString text = edit->document()->toRawText();
        text.replace(QChar::ParagraphSeparator, u'\n');
        return FromEditorText(text);
    }
    return box ? FromEditorText(box->property("plainText").toString()) : QString();
}

void SetBoxText(QWidget* box, const QString& text)
{
    if (box)
        box->setProperty("plainText", ToEditorText(text));
}

} // namespace fb
