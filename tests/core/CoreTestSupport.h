#pragma once

// What the tests of the pure core share: a scripted Interaction that writes
// down every box and notification, and builders and readers of small
// mapping objects.

#include "core/document/Interaction.h"
#include "core/document/MappingDocument.h"

#include <QLoggingCategory>
#include <QRegularExpression>
#include <QStringList>
#include <QTest>
#include <deque>

namespace fbtest {

using namespace Qt::StringLiterals;

// For initTestCase: any warning fails the test, and the document's debug
// lines about the errors it records stay quiet.
inline void failOnAnyWarning()
{
    QLoggingCategory::setFilterRules(u"fieldbridge.*.debug=false"_s);
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}

// Records what the core raises, in order, one readable line each:
//   "critical: Table Name not Valid"       a message box (OK, no title)
//   "question [yes/no] (Title): Sure?"     other buttons and a title are shown
//   "input: prompt", "focus precondition", "migrate tables changed"
// Message boxes are answered from `answers`, then with their first button;
// input boxes as cancelled ("").
class RecordingInteraction : public fb::Interaction {
public:
    QStringList log;
    std::deque<fb::MsgAnswer> answers;

    fb::MsgAnswer MsgBox(const QString& prompt, fb::MsgButtons buttons, fb::MsgIcon icon,
                         const QString& title) override
    {
        static const char* const icons[] = {"none", "critical", "exclamation", "information", "question"};
        static const char* const buttonSets[] = {"", " [ok/cancel]", " [yes/no]", " [yes/no/cancel]"};
        QString line = QString::fromLatin1(icons[int(icon)]) + QString::fromLatin1(buttonSets[int(buttons)]);
        if (!title.isEmpty())
            line += u" ("_s + title + u')';
        log.append(line + u": "_s + prompt);
        if (answers.empty())
            return fb::FirstButton(buttons);
        const fb::MsgAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    QString InputBox(const QString& prompt, const QString&, const QString&) override
    {
        log.append(u"input: "_s + prompt);
        return QString();
    }
    void FocusPreconditionEditor() override { log.append(u"focus precondition"_s); }
    void MigrateTablesChanged() override { log.append(u"migrate tables changed"_s); }
};

// The content inside the root element <klmno001>.
inline QString wrapped(const QString& content)
{
    return u"<klmno001>"_s + content + u"</klmno001>"_s;
}

// The dumps of the document in order, each as its No and, when it has one,
// "=" and its TXT.
inline QStringList dumpList(fb::MappingDocument& doc)
{
    QStringList out;
    for (const fb::Node& d : doc.DumpNodes())
        out.append(d.attribute(u"No"_s) +
                   (d.hasAttribute(u"TXT"_s) ? u'=' + d.attribute(u"TXT"_s) : QString()));
    return out;
}

// Loads the text and sets the table name; false when the text is refused.
inline bool load(fb::MappingDocument& doc, const QString& xml, const QString& table = u"klmno001"_s)
{
    doc.SetTableName(table);
    return doc.LoadXml(xml);
}

} // namespace fbtest
