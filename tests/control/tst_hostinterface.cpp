// The control as a host sees it: its properties, methods and signals by
// name, its screen controls by objectName, the document going in and out,
// the temporary export, and the edit mode.

#include "WidgetHarness.h"

#include <QDir>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QSignalSpy>

using namespace fbtest;

class HostInterfaceTest : public HostTest {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        installMessageFilter();
        QVERIFY2(!tempDir().isEmpty(), "FIELDBRIDGE_TEMP is not set");
        QVERIFY(!readSample(u"klmno001.xml"_s).isEmpty());
    }

    // Properties (name, type), methods and signals (signature, parameter
    // names), as a host reaches them by name.
    void interfaceByName_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("signature");
        QTest::addColumn<QStringList>("parameters"); // a property: its type name
        for (const char* name : {"MappingObjectXML", "Editor", "TargetTable", "SourceTables", "PreCondition",
                                 "MainQuery", "FieldMapping"})
            QTest::newRow(name) << u"property"_s << QString::fromLatin1(name) << QStringList{u"QString"_s};
        QTest::newRow("Edit") << u"property"_s << u"Edit"_s << QStringList{u"bool"_s};
        const auto method = [](const char* kind, const QString& signature, const QStringList& parameters) {
            QTest::newRow(qPrintable(signature)) << QString::fromLatin1(kind) << signature << parameters;
        };
        method("method", u"Setfocus()"_s, {});
        method("method", u"ShowControl()"_s, {});
        method("method", u"GetListItemNumber(QString)"_s, {u"strFieldName"_s});
        method("method", u"SetTextNumber(QString,int,QString,QString)"_s,
               {u"StrType"_s, u"LngTextNumber"_s, u"StrKey1"_s, u"StrKey2"_s});
        method("method", u"GetRowNumber(QString)"_s, {u"i_StrFieldName"_s});
        method("method", u"GridEdit(short)"_s, {u"KeyAscii"_s});
        method("signal", u"ShowSourceTablesPopUp(QString)"_s, {u"i_SourceTables"_s});
        method("signal", u"ShowConditionBuilderPopUp(QString,QString)"_s, {u"i_ConditionString"_s, u"i_SourceTables"_s});
        method("signal", u"ShowQueryBuilderPopUp(QString,QString)"_s, {u"i_QueryString"_s, u"i_SourceTables"_s});
        method("signal", u"ShowFunctionalTextPopUp(QString,int,QString,QString)"_s,
               {u"DocType"_s, u"LngTextNumber"_s, u"StrKey1"_s, u"StrKey2"_s});
        method("signal", u"ShowFunctionBuilderPopUp(QString,QString)"_s, {u"StrCondition"_s, u"StrSourceTables"_s});
        method("signal", u"SaveDoneDisabled()"_s, {});
        method("signal", u"SaveDoneEnabled()"_s, {});
    }
    void interfaceByName()
    {
        QFETCH(QString, kind);
        QFETCH(QString, signature);
        QFETCH(QStringList, parameters);
        const QMetaObject* mo = &ctlFieldbridge::staticMetaObject;
        const QByteArray name = QMetaObject::normalizedSignature(signature.toLatin1().constData());
        if (kind == u"property"_s) {
            const QMetaProperty p = mo->property(mo->indexOfProperty(name.constData()));
            QVERIFY2(p.isReadable() && p.isWritable(), name.constData());
            QCOMPARE(QString::fromLatin1(p.typeName()), parameters.first());
            return;
        }
        const int index = kind == u"signal"_s ? mo->indexOfSignal(name.constData()) : mo->indexOfMethod(name.constData());
        QVERIFY2(index >= 0, name.constData());
        const QMetaMethod m = mo->method(index);
        QCOMPARE(m.methodType(), kind == u"signal"_s ? QMetaMethod::Signal : QMetaMethod::Method);
        QCOMPARE(m.access(), QMetaMethod::Public);
        QStringList names;
        for (const QByteArray& n : m.parameterNames())
            names.append(QString::fromLatin1(n));
        QCOMPARE(names, parameters);
    }

    void writeOnlyPropertiesReadLastValue_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("first");
        QTest::addColumn<QVariant>("second");
        QTest::newRow("Editor") << u"Editor"_s << QVariant(u"/usr/bin/vi"_s) << QVariant(u"/opt/editors/my editor"_s);
        QTest::newRow("TargetTable, short then long")
            << u"TargetTable"_s << QVariant(u"abc"_s) << QVariant(u"klmno001extra"_s);
        QTest::newRow("Edit, True then False") << u"Edit"_s << QVariant(true) << QVariant(false);
        QTest::newRow("PreCondition, not decoded")
            << u"PreCondition"_s << QVariant(u"migrate pqrst002"_s) << QVariant(u"a &amp;lt; b\nmigrate pqrst002"_s);
    }
    void writeOnlyPropertiesReadLastValue()
    {
        QFETCH(QString, name);
        QFETCH(QVariant, first);
        QFETCH(QVariant, second);
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        const QByteArray n = name.toLatin1();
        for (const QVariant& value : {first, second}) {
            QVERIFY(host->ctl->setProperty(n.constData(), value));
            QCOMPARE(host->ctl->property(n.constData()), value);
        }
    }

    void setTextNumber_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("key1");
        QTest::addColumn<QString>("key2");
        QTest::addColumn<QStringList>("texts"); // TEXT of PREC, of QUERY pqrst002 and of dump 1's CUSTNO
        QTest::newRow("P sets the precondition's number") << u"P"_s << QString() << QString()
                                                          << QStringList{u"77"_s, {}, {}};
        QTest::newRow("M with a table name changes nothing") << u"M"_s << u"pqrst002"_s << QString()
                                                             << QStringList{u"12"_s, {}, {}};
        QTest::newRow("D sets the rule's number") << u"D"_s << u"1"_s << u"custno"_s << QStringList{u"12"_s, {}, u"77"_s};
    }
    void setTextNumber()
    {
        QFETCH(QString, type);
        QFETCH(QString, key1);
        QFETCH(QString, key2);
        QFETCH(QStringList, texts);
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        QVERIFY(QMetaObject::invokeMethod(host->ctl, "SetTextNumber", Q_ARG(QString, type), Q_ARG(int, 77),
                                          Q_ARG(QString, key1), Q_ARG(QString, key2)));
        const XmlElement root = host->document();
        const XmlElement query = root.child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s);
        QVERIFY(query.hasAttribute(u"TEXT"_s));
        QCOMPARE((QStringList{root.child(u"PREC"_s).attribute(u"TEXT"_s), query.attribute(u"TEXT"_s),
                              root.dump(1).child(u"CUSTNO"_s).attribute(u"TEXT"_s)}),
                 texts);
    }

    void setfocusGoesToThePrecondition()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        host->clickInto(u"lstSourceTables"_s);
        QVERIFY2(host->focusIn(u"lstSourceTables"_s), qPrintable(focusName()));
        QVERIFY(QMetaObject::invokeMethod(host->ctl, "Setfocus"));
        QTRY_VERIFY2(host->focusIn(u"txtPreCondition"_s), qPrintable(focusName()));
    }

    // Every screen control by its objectName, of the kind a host reads
    // generically, with its caption and access key.
    void screenControls_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("kind");    // a class it inherits; "box": plainText and readOnly
        QTest::addColumn<QString>("caption"); // text or title, checked when not null
        const auto row = [](const char* name, const char* kind, const QString& caption = QString()) {
            QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(kind) << caption;
        };
        for (const char* name : {"CmdSelectSource", "CmdBuildPre", "CmdPreDoc", "CmdPreEditor", "cmdBuildMQ",
                                 "CmdMQDoc", "CmdMqEditor", "CmdOk", "CmdCancel", "CmdFuncEditor"})
            row(name, "QAbstractButton");
        for (const char* name : {"txtPreCondition", "txtMainQuery", "txtFunctions", "txtVariables", "txtgrdline"})
            row(name, "box");
        for (const char* name : {"lstSourceTables", "lstMigrateSource", "lstSourceFields", "lstTargetFields", "RulesGrid"})
            row(name, "QAbstractItemView");
        row("MainTab", "QTabWidget");
        row("FrmCondition", "QGroupBox");
        row("FrmRules", "QGroupBox");
        row("CmbDump", "QComboBox");
        row("CmbTargetTable", "QComboBox");
        row("PicPreResize", "QWidget");
        row("PicMQResize", "QWidget");
        row("LBLTargetTableName", "QLabel");
        row("lblPreCondition", "QLabel", u"PreCondition"_s);
        row("lblTargetTable", "QLabel", u"For Target Table:"_s);
        row("Details", "QGroupBox", u"F&ields of Dump: "_s);
        row("CmdFunction", "QAbstractButton", u"F&unctions"_s);
        row("CmdVariables", "QAbstractButton", u"Variable&s / Includes"_s);
        row("Command1", "QAbstractButton", u"Sho&w"_s);
        row("CmdMap", "QAbstractButton", u"Ma&p"_s);
        row("CmdGuess", "QAbstractButton", u"&Guess"_s);
        row("CmdCopyDump", "QAbstractButton", u"Cop&y from dump.."_s);
        row("CmdChange", "QAbstractButton", u"Cha&nge..."_s);
        row("CmdEditRule", "QAbstractButton", u"Edit &Rule"_s);
        row("CmdDumpText", "QAbstractButton", u"Te&xt"_s);
        row("CmdFuncBuild", "QAbstractButton", u"&Build"_s);
    }
    void screenControls()
    {
        QFETCH(QString, name);
        QFETCH(QString, kind);
        QFETCH(QString, caption);
        const QList<QWidget*> found = host->ctl->findChildren<QWidget*>(name);
        QCOMPARE(found.size(), 1);
        QWidget* w = found.first();
        if (kind == u"box"_s) {
            // Text and lock as properties; the text goes in and comes out
            // with "\n" line breaks.
            QVERIFY(w->setProperty("readOnly", false));
            QVERIFY(w->setProperty("plainText", u"one\ntwo"_s));
            QCOMPARE(plainText(w), u"one\ntwo"_s);
        } else {
            QVERIFY2(w->inherits(kind.toLatin1().constData()), w->metaObject()->className());
        }
        if (!caption.isNull())
            QCOMPARE(w->property(kind == u"QGroupBox"_s ? "title" : "text").toString(), caption);
    }

    void tabTexts()
    {
        QTabWidget* tabs = host->tabs();
        QCOMPARE(tabs->count(), 2);
        QCOMPARE(tabs->tabText(0), u"Mapping Object"_s);
        QCOMPARE(tabs->tabText(1), u"Define Dumps"_s);
        QCOMPARE(tabs->currentIndex(), 0);
        // Each frame sits on its own tab's page.
        QVERIFY(tabs->widget(0)->isAncestorOf(host->find(u"FrmCondition"_s)));
        QVERIFY(tabs->widget(1)->isAncestorOf(host->find(u"FrmRules"_s)));
    }

    void exportFile_data()
    {
        QTest::addColumn<QString>("targetTable");
        QTest::addColumn<QString>("document");
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<bool>("sectionsFound");
        const QString sample = readSample(u"klmno001.xml"_s);
        QTest::newRow("eight characters") << u"klmno001"_s << sample << u"klmno001.xml"_s << true;
        QTest::newRow("longer name is cut to eight") << u"klmno001extra"_s << sample << u"klmno001.xml"_s << true;
        QTest::newRow("short name keeps its blanks")
            << u"abc"_s
            << mappingObject(u"abc"_s, u"<SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"\">migrate pqrst002</PREC>"_s,
                             u"<CUSTNO No=\"1\" TYPE=\"L\"/>"_s, {{u"pqrst002"_s, u"<CUSTNO No=\"1\" TYPE=\"L\"/>"_s}})
            << u"abc     .xml"_s << false;
    }
    void exportFile()
    {
        QFETCH(QString, targetTable);
        QFETCH(QString, document);
        QFETCH(QString, fileName);
        QFETCH(bool, sectionsFound);
        // The folder is made when it is missing.
        const QString folder = tempDir();
        QVERIFY2(folder.contains(QLatin1String("scratch")), qPrintable(folder));
        QDir(folder).removeRecursively();
        QVERIFY(!QDir(folder).exists());

        host->load(targetTable, document);
        // The sections are found under the root that the table names.
        QCOMPARE(host->text(u"txtPreCondition"_s).isEmpty(), !sectionsFound);
        QCOMPARE(host->rows(u"lstMigrateSource"_s).isEmpty(), !sectionsFound);
        const QString first = host->xml();
        QVERIFY(!first.isEmpty());
        QCOMPARE(host->xml(), first);
        QFile file(folder + fileName);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
        QCOMPARE(file.readAll(), first.toLocal8Bit());
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{fileName});
    }

    void malformedDocumentShowsNothing_data()
    {
        QTest::addColumn<bool>("afterValidDocument");
        QTest::addColumn<QString>("text");
        QTest::newRow("unclosed element")
            << true << u"<klmno001><SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</klmno001>"_s;
        QTest::newRow("two root elements") << true << u"<klmno001><PREC>migrate pqrst002</PREC></klmno001><klmno001/>"_s;
        QTest::newRow("plain text") << true << u"migrate pqrst002"_s;
        QTest::newRow("empty text on a fresh control") << false << QString();
    }
    void malformedDocumentShowsNothing()
    {
        QFETCH(bool, afterValidDocument);
        QFETCH(QString, text);
        QVERIFY(host->activate());
        if (afterValidDocument)
            QVERIFY(host->openSample(u"fghij100.xml"_s));
        host->load(u"klmno001"_s, text);
        QTest::qWait(50);
        for (const QString& name : {u"txtPreCondition"_s, u"txtMainQuery"_s})
            QVERIFY2(host->text(name).isEmpty(), qPrintable(name));
        for (const QString& name :
             {u"lstSourceTables"_s, u"lstMigrateSource"_s, u"lstSourceFields"_s, u"lstTargetFields"_s, u"RulesGrid"_s})
            QVERIFY2(host->rows(name).isEmpty(), qPrintable(name + u" rows: "_s + host->rows(name).join(u'|')));
        QCOMPARE(host->combo(u"CmbDump"_s)->count(), 0);
        // Without MSCRIPT the target-table controls are hidden.
        for (const QString& name : {u"CmbTargetTable"_s, u"lblTargetTable"_s, u"CmdChange"_s})
            QVERIFY2(!host->find(name)->isVisibleTo(host->find(u"FrmRules"_s)), qPrintable(name));
        QCOMPARE(host->ctl->property("SourceTables").toString(), QString());
    }

    void editMode_data()
    {
        QTest::addColumn<QList<bool>>("before"); // Edit assignments before ShowControl
        QTest::addColumn<QList<bool>>("after");  // and after it
        QTest::addColumn<bool>("locked");
        // The main query box follows its own rule on every change of its
        // text: writable while there are migrate sources and the edit flag is
        // set. ShowControl puts the query into it, so the flag at that moment
        // counts, and only a later Edit False locks it again.
        QTest::addColumn<bool>("mainQueryLocked");
        QTest::newRow("never assigned") << QList<bool>{} << QList<bool>{} << true << true;
        QTest::newRow("True") << QList<bool>{true} << QList<bool>{} << false << false;
        QTest::newRow("True then False") << QList<bool>{true} << QList<bool>{false} << true << true;
        QTest::newRow("False then True: one way") << QList<bool>{false} << QList<bool>{true} << true << true;
        QTest::newRow("False then True before showing") << QList<bool>{false, true} << QList<bool>{} << true << false;
    }
    void editMode()
    {
        QFETCH(QList<bool>, before);
        QFETCH(QList<bool>, after);
        QFETCH(bool, locked);
        QFETCH(bool, mainQueryLocked);
        for (bool e : before)
            host->ctl->setProperty("Edit", e);
        host->ctl->setProperty("TargetTable", u"klmno001"_s);
        host->ctl->setProperty("MappingObjectXML", readSample(u"klmno001.xml"_s));
        QVERIFY(QMetaObject::invokeMethod(host->ctl, "ShowControl"));
        for (bool e : after)
            host->ctl->setProperty("Edit", e);
        for (const QString& name : {u"txtPreCondition"_s, u"txtFunctions"_s, u"txtVariables"_s, u"txtgrdline"_s})
            QVERIFY2(host->readOnly(name) == locked, qPrintable(name));
        QCOMPARE(host->readOnly(u"txtMainQuery"_s), mainQueryLocked);
        for (const QString& name : {u"CmdEditRule"_s, u"CmdPreEditor"_s, u"CmdMqEditor"_s, u"CmdGuess"_s, u"CmdMap"_s,
                                    u"CmdOk"_s, u"CmdSelectSource"_s, u"cmdBuildMQ"_s, u"CmdBuildPre"_s,
                                    u"CmdFuncBuild"_s, u"CmdCopyDump"_s, u"CmdChange"_s})
            QVERIFY2(ownEnabled(host->find(name)) == !locked, qPrintable(name));
    }

    void assignmentsEnableTheirBuildButton_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("button");
        QTest::newRow("PreCondition enables CmdBuildPre")
            << u"PreCondition"_s << u"migrate pqrst002\ndump 1 Customers"_s << u"CmdBuildPre"_s;
        QTest::newRow("MainQuery enables cmdBuildMQ") << u"MainQuery"_s << u"select pqrst002.*"_s << u"cmdBuildMQ"_s;
        QTest::newRow("FieldMapping enables CmdFuncBuild") << u"FieldMapping"_s << u"pqrst002.name"_s << u"CmdFuncBuild"_s;
    }
    void assignmentsEnableTheirBuildButton()
    {
        QFETCH(QString, property);
        QFETCH(QString, value);
        QFETCH(QString, button);
        const QStringList buildButtons{u"CmdBuildPre"_s, u"cmdBuildMQ"_s, u"CmdFuncBuild"_s};
        QVERIFY(host->openSample(u"klmno001.xml"_s, false));
        for (const QString& b : buildButtons)
            QVERIFY2(!ownEnabled(host->find(b)), qPrintable(b));
        host->ctl->setProperty(property.toLatin1().constData(), value);
        for (const QString& b : buildButtons)
            QVERIFY2(ownEnabled(host->find(b)) == (b == button), qPrintable(b));
        // Only the build button: the editors stay locked.
        QVERIFY(host->readOnly(u"txtPreCondition"_s));
        QVERIFY(host->readOnly(u"txtMainQuery"_s));
    }
};

QTEST_MAIN(HostInterfaceTest)
#include "tst_hostinterface.moc"
