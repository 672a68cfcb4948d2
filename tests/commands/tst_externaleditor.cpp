// The round trip of a script through an external editor: the text goes into
// a file of the temporary folder, the editor runs on it and the control waits;
// exit code 0 brings the file's content back, any other code discards it.
// The editor here is a small script: it keeps a copy of what it was given and
// writes the text and exit code that the test sets in its environment.

#include "WidgetHarness.h"

#include <QDir>
#include <QFile>

using namespace fbtest;

namespace {
QString readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QStringLiteral("<missing>");
}
} // namespace

class ExternalEditorTest : public HostTest {
    Q_OBJECT

    QString editor;

    // The editor writes this text and ends with this code.
    static void editorWill(const QString& text, int exitCode)
    {
        qputenv("FB_NEW_TEXT", text.toUtf8());
        qputenv("FB_EXIT", QByteArray::number(exitCode));
    }
    void open(const QString& sample, const QString& editorPath)
    {
        host->ctl->setProperty("Editor", editorPath);
        QVERIFY(host->openSample(sample));
    }

private Q_SLOTS:
    void initTestCase()
    {
        HostTest::initTestCase();
        QVERIFY(QDir().mkpath(tempDir()));
        editor = tempDir() + u"fake-editor.sh"_s;
        QFile script(editor);
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\ncp \"$1\" \"$1.seen\"\nprintf '%s' \"$FB_NEW_TEXT\" > \"$1\"\nexit ${FB_EXIT:-0}\n");
        script.close();
        QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    void ruleRoundTrip_data()
    {
        QTest::addColumn<int>("exitCode");
        QTest::newRow("exit 0 brings the text back") << 0;
        QTest::newRow("exit 3 discards the edit") << 3;
    }
    void ruleRoundTrip()
    {
        QFETCH(int, exitCode);
        open(u"klmno001.xml"_s, editor);
        host->clickTab(1);
        QVERIFY(host->activate());
        clickCell(host->grid(), 1, 1);
        const QString before = host->rule(1);
        const QStringList others = host->rules();
        editorWill(u"edited\nrule"_s, exitCode);
        host->click(u"CmdEditRule"_s);

        const QString file = tempDir() + u"klmno001Rule.qbx"_s;
        QCOMPARE(readFile(file + u".seen"_s), before); // the editor got the rule as it stood
        QVERIFY(host->button(u"CmdEditRule"_s)->isEnabled());
        QVERIFY(host->focusIn(u"RulesGrid"_s));
        QStringList expected = others;
        if (exitCode == 0)
            expected[1] = u"edited\r\nrule"_s;
        QCOMPARE(host->rules(), expected);
        const XmlElement rule = host->document().dump(1).child(u"NAME"_s);
        QCOMPARE(rule.attribute(u"TYPE"_s), exitCode == 0 ? u"1"_s : u"0"_s);
    }

    // The precondition is stored at once: its migrate tables are worked out.
    void preconditionRoundTripStores()
    {
        open(u"klmno001.xml"_s, editor);
        const QString before = host->text(u"txtPreCondition"_s);
        editorWill(u"migrate pqrst002\ndump 2 Addresses"_s, 0);
        host->click(u"CmdPreEditor"_s);
        QCOMPARE(readFile(tempDir() + u"klmno001Pre.qbx.seen"_s), crlf(before));
        QCOMPARE(host->text(u"txtPreCondition"_s), u"migrate pqrst002\ndump 2 Addresses"_s);
        QCOMPARE(host->rows(u"lstMigrateSource"_s), (QStringList{u"migrate pqrst002"_s, QString()}));
        QVERIFY(host->focusIn(u"txtPreCondition"_s));
        QCOMPARE(host->document().child(u"PREC"_s).text, u"migrate pqrst002\ndump 2 Addresses"_s);
    }

    // The label decides: functions go through func.qbx, variables var.qbx.
    void functionsAndVariablesUseTheirOwnFiles_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("file");
        QTest::newRow("functions") << u"CmdFunction"_s << u"txtFunctions"_s << u"klmno001func.qbx"_s;
        QTest::newRow("variables") << u"CmdVariables"_s << u"txtVariables"_s << u"klmno001var.qbx"_s;
    }
    void functionsAndVariablesUseTheirOwnFiles()
    {
        QFETCH(QString, button);
        QFETCH(QString, box);
        QFETCH(QString, file);
        open(u"klmno001.xml"_s, editor);
        host->click(button);
        const QString shown = host->text(box);
        QFile::remove(tempDir() + file + u".seen"_s);
        editorWill(u"changed outside"_s, 0);
        host->click(u"CmdFuncEditor"_s);
        QCOMPARE(readFile(tempDir() + file + u".seen"_s), crlf(shown));
        QCOMPARE(host->text(box), u"changed outside"_s);
        QVERIFY(host->focusIn(box));
    }

    void anEditorThatCannotStartChangesNothing()
    {
        open(u"klmno001.xml"_s, tempDir() + u"no-such-editor"_s);
        const QString before = host->text(u"txtMainQuery"_s);
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->click(u"CmdMqEditor"_s);
        QCOMPARE(host->modals.count(), 1);
        QCOMPARE(host->modals.records().first().text, u"Unable to open editor"_s);
        QCOMPARE(host->modals.records().first().title, QString());
        QCOMPARE(host->text(u"txtMainQuery"_s), before);
        QVERIFY(host->button(u"CmdMqEditor"_s)->isEnabled());
    }

    // A five-character table name leaves three blanks in the file name; the
    // path still reaches the editor whole.
    void aShortTableNameKeepsItsBlanks()
    {
        host->ctl->setProperty("Editor", editor);
        QVERIFY(host->open(u"abcde"_s, u"<abcde><PREC>migrate pqrst002</PREC></abcde>"_s));
        editorWill(u"q"_s, 0);
        host->click(u"CmdMqEditor"_s);
        QVERIFY(QFile::exists(tempDir() + u"abcde   MQ.qbx.seen"_s));
        QCOMPARE(host->text(u"txtMainQuery"_s), u"q"_s);
    }
};

QTEST_MAIN(ExternalEditorTest)
#include "tst_externaleditor.moc"
