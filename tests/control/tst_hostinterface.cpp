// The control as a host sees it: its properties, methods and signals by
// name, its screen controls by objectName, the document going in and out,
// the temporary export, and the edit mode.

#include "WidgetHarness.h"

#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QSignalSpy>

using namespace fbtest;

namespace {

// A small single-target document: one migrate source, no dump reference.
QString smallDocument(const QString& root)
{
    return mappingObject(root,
                         u"<SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"\">migrate pqrst002</PREC>"
                         "<QUERY ST=\"pqrst002\" TEXT=\"\">select pqrst002.*</QUERY>"_s,
                         u"<CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGB=\"8\"/>"_s,
                         {{u"pqrst002"_s, u"<CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGB=\"6\"/>"_s}});
}

const QStringList kLockedEditors{u"txtPreCondition"_s, u"txtMainQuery"_s, u"txtFunctions"_s, u"txtVariables"_s,
                                 u"txtgrdline"_s};
const QStringList kLockedButtons{u"CmdEditRule"_s, u"CmdPreEditor"_s,    u"CmdMqEditor"_s, u"CmdGuess"_s,
                                 u"CmdMap"_s,      u"CmdOk"_s,           u"CmdSelectSource"_s, u"cmdBuildMQ"_s,
                                 u"CmdBuildPre"_s, u"CmdFuncBuild"_s,    u"CmdCopyDump"_s, u"CmdChange"_s};

QStringList parameterNames(const QMetaMethod& m)
{
    QStringList names;
    for (const QByteArray& n : m.parameterNames())
        names.append(QString::fromLatin1(n));
    return names;
}

enum Kind { Button, Label, Frame, Tabs, Combo, ItemView, TextBox, AnyWidget };

} // namespace

class HostInterfaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        installMessageFilter();
        QVERIFY2(!tempDir().isEmpty(), "FIELDBRIDGE_TEMP is not set");
        QVERIFY(!readSample(u"klmno001.xml"_s).isEmpty());
    }

    void propertyContract_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("type");
        for (const char* name : {"MappingObjectXML", "Editor", "TargetTable", "SourceTables", "PreCondition",
                                 "MainQuery", "FieldMapping"})
            QTest::newRow(name) << QString::fromLatin1(name) << int(QMetaType::QString);
        QTest::newRow("Edit") << u"Edit"_s << int(QMetaType::Bool);
    }
    void propertyContract()
    {
        QFETCH(QString, name);
        QFETCH(int, type);
        const QMetaObject* mo = &ctlFieldbridge::staticMetaObject;
        const int index = mo->indexOfProperty(name.toLatin1().constData());
        QVERIFY2(index >= 0, qPrintable(name + u" is not a property"_s));
        const QMetaProperty p = mo->property(index);
        QVERIFY(p.isReadable());
        QVERIFY(p.isWritable());
        QCOMPARE(p.metaType().id(), type);
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
        QTest::newRow("Edit, False then True") << u"Edit"_s << QVariant(false) << QVariant(true);
        QTest::newRow("PreCondition, not decoded")
            << u"PreCondition"_s << QVariant(u"migrate pqrst002"_s) << QVariant(u"a &amp;lt; b\nmigrate pqrst002"_s);
    }
    void writeOnlyPropertiesReadLastValue()
    {
        QFETCH(QString, name);
        QFETCH(QVariant, first);
        QFETCH(QVariant, second);
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        const QByteArray n = name.toLatin1();
        QVERIFY(host.ctl->setProperty(n.constData(), first));
        QCOMPARE(host.ctl->property(n.constData()), first);
        QVERIFY(host.ctl->setProperty(n.constData(), second));
        QCOMPARE(host.ctl->property(n.constData()), second);
    }

    void sourceTablesReadAndAssign()
    {
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        QCOMPARE(host.ctl->property("SourceTables").toString(), u"pqrst002,uvwxy003,abcde004"_s);
        const QString more = u"pqrst002,uvwxy003,abcde004,zzzzz009"_s;
        host.ctl->setProperty("SourceTables", more);
        QCOMPARE(host.ctl->property("SourceTables").toString(), more);
        QCOMPARE(host.rows(u"lstSourceTables"_s), more.split(u','));
        QCOMPARE(host.document().child(u"SRCTBL"_s).text, more);
    }

    void mainQueryReadsTheBox()
    {
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        // The box shows the first migrate source's query; the property gives
        // the box's text with the control's CR LF line breaks.
        const QString shown = host.ctl->property("MainQuery").toString();
        QVERIFY2(shown.startsWith(u"select pqrst002.*\r\nfrom pqrst002\r\n"_s), qPrintable(shown));
        QCOMPARE(shown, crlf(host.text(u"txtMainQuery"_s)));
        // Assigned as it is, stored under the box's migrate source.
        const QString query = u"select pqrst002.custno\r\nfrom pqrst002"_s;
        host.ctl->setProperty("MainQuery", query);
        QCOMPARE(host.ctl->property("MainQuery").toString(), query);
        QCOMPARE(host.text(u"txtMainQuery"_s), lf(query));
        QCOMPARE(host.document().child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s).text, lf(query));
    }

    void fieldMappingReadsARowNumber()
    {
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        host.ctl->setProperty("FieldMapping", u"pqrst002.name"_s);
        const QString read = host.ctl->property("FieldMapping").toString();
        bool numeric = false;
        read.toInt(&numeric);
        QVERIFY2(numeric, qPrintable(read));
    }

    void methodContract_data()
    {
        QTest::addColumn<QString>("signature");
        QTest::addColumn<int>("returnType");
        QTest::addColumn<QStringList>("parameters");
        QTest::newRow("Setfocus") << u"Setfocus()"_s << int(QMetaType::Void) << QStringList{};
        QTest::newRow("ShowControl") << u"ShowControl()"_s << int(QMetaType::Void) << QStringList{};
        QTest::newRow("GetListItemNumber")
            << u"GetListItemNumber(QString)"_s << int(QMetaType::Int) << QStringList{u"strFieldName"_s};
        QTest::newRow("SetTextNumber") << u"SetTextNumber(QString,int,QString,QString)"_s << int(QMetaType::Void)
                                       << QStringList{u"StrType"_s, u"LngTextNumber"_s, u"StrKey1"_s, u"StrKey2"_s};
        QTest::newRow("GetRowNumber") << u"GetRowNumber(QString)"_s << int(QMetaType::Int)
                                      << QStringList{u"i_StrFieldName"_s};
        QTest::newRow("GridEdit") << u"GridEdit(short)"_s << int(QMetaType::Void) << QStringList{u"KeyAscii"_s};
    }
    void methodContract()
    {
        QFETCH(QString, signature);
        QFETCH(int, returnType);
        QFETCH(QStringList, parameters);
        const QMetaObject* mo = &ctlFieldbridge::staticMetaObject;
        const QByteArray normalized = QMetaObject::normalizedSignature(signature.toLatin1().constData());
        const int index = mo->indexOfMethod(normalized.constData());
        QVERIFY2(index >= 0, normalized.constData());
        const QMetaMethod m = mo->method(index);
        QCOMPARE(m.methodType(), QMetaMethod::Method);
        QCOMPARE(m.access(), QMetaMethod::Public);
        QCOMPARE(m.returnType(), returnType);
        QCOMPARE(parameterNames(m), parameters);
    }

    void getListItemNumber_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("expected");
        QTest::newRow("first row is number 1") << u"klmno001.custno"_s << 1;
        QTest::newRow("last row") << u"klmno001.origin"_s << 25;
        QTest::newRow("array element in shown form") << u"klmno001.qty(2)"_s << 15;
        QTest::newRow("case differs") << u"KLMNO001.CUSTNO"_s << -1;
        QTest::newRow("field part alone") << u"custno"_s << -1;
        QTest::newRow("stored form of an array element") << u"klmno001.qty__2"_s << -1;
    }
    void getListItemNumber()
    {
        QFETCH(QString, field);
        QFETCH(int, expected);
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        int result = -2;
        QVERIFY(QMetaObject::invokeMethod(host.ctl, "GetListItemNumber", Q_RETURN_ARG(int, result),
                                          Q_ARG(QString, field)));
        QCOMPARE(result, expected);
    }

    void setTextNumber_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("key1");
        QTest::addColumn<QString>("key2");
        QTest::addColumn<QString>("precText");  // expected TEXT of PREC
        QTest::addColumn<QString>("queryText"); // expected TEXT of QUERY pqrst002
        QTest::addColumn<QString>("ruleText");  // expected TEXT of DUMP 1 / CUSTNO
        QTest::newRow("P sets the precondition's number") << u"P"_s << 77 << QString() << QString() << u"77"_s
                                                          << QString() << QString();
        QTest::newRow("M with a table name changes nothing")
            << u"M"_s << 9 << u"pqrst002"_s << QString() << u"12"_s << QString() << QString();
        QTest::newRow("D sets the rule's number")
            << u"D"_s << 55 << u"1"_s << u"custno"_s << u"12"_s << QString() << u"55"_s;
    }
    void setTextNumber()
    {
        QFETCH(QString, type);
        QFETCH(int, number);
        QFETCH(QString, key1);
        QFETCH(QString, key2);
        QFETCH(QString, precText);
        QFETCH(QString, queryText);
        QFETCH(QString, ruleText);
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        QVERIFY(QMetaObject::invokeMethod(host.ctl, "SetTextNumber", Q_ARG(QString, type), Q_ARG(int, number),
                                          Q_ARG(QString, key1), Q_ARG(QString, key2)));
        const XmlElement root = host.document();
        QCOMPARE(root.child(u"PREC"_s).attribute(u"TEXT"_s), precText);
        const XmlElement query = root.child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s);
        QVERIFY(query.hasAttribute(u"TEXT"_s));
        QCOMPARE(query.attribute(u"TEXT"_s), queryText);
        const XmlElement rule = root.dump(1).child(u"CUSTNO"_s);
        QVERIFY(!rule.isNull());
        QCOMPARE(rule.attribute(u"TEXT"_s), ruleText);
    }

    void setfocusGoesToThePrecondition()
    {
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        host.clickInto(u"lstSourceTables"_s);
        QVERIFY2(host.focusIn(u"lstSourceTables"_s), qPrintable(focusName()));
        QVERIFY(QMetaObject::invokeMethod(host.ctl, "Setfocus"));
        QTRY_VERIFY2(host.focusIn(u"txtPreCondition"_s), qPrintable(focusName()));
    }

    void signalContract_data()
    {
        QTest::addColumn<QString>("signature");
        QTest::addColumn<QStringList>("parameters");
        QTest::newRow("ShowSourceTablesPopUp") << u"ShowSourceTablesPopUp(QString)"_s
                                               << QStringList{u"i_SourceTables"_s};
        QTest::newRow("ShowConditionBuilderPopUp") << u"ShowConditionBuilderPopUp(QString,QString)"_s
                                                   << QStringList{u"i_ConditionString"_s, u"i_SourceTables"_s};
        QTest::newRow("ShowQueryBuilderPopUp") << u"ShowQueryBuilderPopUp(QString,QString)"_s
                                               << QStringList{u"i_QueryString"_s, u"i_SourceTables"_s};
        QTest::newRow("ShowFunctionalTextPopUp")
            << u"ShowFunctionalTextPopUp(QString,int,QString,QString)"_s
            << QStringList{u"DocType"_s, u"LngTextNumber"_s, u"StrKey1"_s, u"StrKey2"_s};
        QTest::newRow("ShowFunctionBuilderPopUp") << u"ShowFunctionBuilderPopUp(QString,QString)"_s
                                                  << QStringList{u"StrCondition"_s, u"StrSourceTables"_s};
        QTest::newRow("SaveDoneDisabled") << u"SaveDoneDisabled()"_s << QStringList{};
        QTest::newRow("SaveDoneEnabled") << u"SaveDoneEnabled()"_s << QStringList{};
    }
    void signalContract()
    {
        QFETCH(QString, signature);
        QFETCH(QStringList, parameters);
        const QMetaObject* mo = &ctlFieldbridge::staticMetaObject;
        const QByteArray normalized = QMetaObject::normalizedSignature(signature.toLatin1().constData());
        const int index = mo->indexOfSignal(normalized.constData());
        QVERIFY2(index >= 0, normalized.constData());
        QCOMPARE(mo->method(index).methodType(), QMetaMethod::Signal);
        QCOMPARE(parameterNames(mo->method(index)), parameters);
        // A host connects to it by name.
        Host host;
        QSignalSpy spy(host.ctl, QByteArray(QByteArray::number(QSIGNAL_CODE) + normalized).constData());
        QVERIFY(spy.isValid());
    }

    void screenControls_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("caption"); // checked when not null
        const auto row = [](const char* name, Kind kind, const QString& caption = QString()) {
            QTest::newRow(name) << QString::fromLatin1(name) << int(kind) << caption;
        };
        row("MainTab", Tabs);
        row("FrmCondition", Frame);
        row("FrmRules", Frame);
        row("lstSourceTables", ItemView);
        row("CmdSelectSource", Button);
        row("lstMigrateSource", ItemView);
        row("txtPreCondition", TextBox);
        row("lblPreCondition", Label, u"PreCondition"_s);
        row("CmdBuildPre", Button);
        row("CmdPreDoc", Button);
        row("CmdPreEditor", Button);
        row("PicPreResize", AnyWidget);
        row("txtMainQuery", TextBox);
        row("cmdBuildMQ", Button);
        row("CmdMQDoc", Button);
        row("CmdMqEditor", Button);
        row("PicMQResize", AnyWidget);
        row("CmdFunction", Button, u"F&unctions"_s);
        row("CmdVariables", Button, u"Variable&s / Includes"_s);
        row("txtFunctions", TextBox);
        row("txtVariables", TextBox);
        row("CmdOk", Button);
        row("CmdCancel", Button);
        row("CmdFuncEditor", Button);
        row("CmbDump", Combo);
        row("Command1", Button, u"Sho&w"_s);
        row("CmbTargetTable", Combo);
        row("lblTargetTable", Label, u"For Target Table:"_s);
        row("LBLTargetTableName", Label);
        row("lstSourceFields", ItemView);
        row("lstTargetFields", ItemView);
        row("Details", Frame, u"F&ields of Dump: "_s);
        row("RulesGrid", ItemView);
        row("txtgrdline", TextBox);
        row("CmdMap", Button, u"Ma&p"_s);
        row("CmdGuess", Button, u"&Guess"_s);
        row("CmdCopyDump", Button, u"Cop&y from dump.."_s);
        row("CmdChange", Button, u"Cha&nge..."_s);
        row("CmdEditRule", Button, u"Edit &Rule"_s);
        row("CmdDumpText", Button, u"Te&xt"_s);
        row("CmdFuncBuild", Button, u"&Build"_s);
    }
    void screenControls()
    {
        QFETCH(QString, name);
        QFETCH(int, kind);
        QFETCH(QString, caption);
        Host host;
        const QList<QWidget*> found = host.ctl->findChildren<QWidget*>(name);
        QCOMPARE(found.size(), 1);
        QWidget* w = found.first();
        const char* className = w->metaObject()->className();
        switch (Kind(kind)) {
        case Button:
            QVERIFY2(qobject_cast<QAbstractButton*>(w), className);
            if (!caption.isNull())
                QCOMPARE(qobject_cast<QAbstractButton*>(w)->text(), caption);
            break;
        case Label:
            QVERIFY2(qobject_cast<QLabel*>(w), className);
            if (!caption.isNull())
                QCOMPARE(qobject_cast<QLabel*>(w)->text(), caption);
            break;
        case Frame:
            QVERIFY2(qobject_cast<QGroupBox*>(w), className);
            if (!caption.isNull())
                QCOMPARE(qobject_cast<QGroupBox*>(w)->title(), caption);
            break;
        case Tabs:
            QVERIFY2(qobject_cast<QTabWidget*>(w), className);
            break;
        case Combo:
            QVERIFY2(qobject_cast<QComboBox*>(w), className);
            break;
        case ItemView:
            QVERIFY2(qobject_cast<QAbstractItemView*>(w), className);
            break;
        case TextBox:
            // Text and lock as properties; the text goes in and comes out
            // with "\n" line breaks.
            QVERIFY(w->setProperty("readOnly", false));
            QVERIFY(w->setProperty("plainText", u"one\ntwo"_s));
            QCOMPARE(plainText(w), u"one\ntwo"_s);
            break;
        case AnyWidget:
            break;
        }
    }

    void tabTexts()
    {
        Host host;
        QTabWidget* tabs = host.tabs();
        QCOMPARE(tabs->count(), 2);
        QCOMPARE(tabs->tabText(0), u"Mapping Object"_s);
        QCOMPARE(tabs->tabText(1), u"Define Dumps"_s);
        QCOMPARE(tabs->currentIndex(), 0);
        // Each frame sits on its own tab's page.
        QVERIFY(tabs->widget(0)->isAncestorOf(host.find(u"FrmCondition"_s)));
        QVERIFY(tabs->widget(1)->isAncestorOf(host.find(u"FrmRules"_s)));
    }

    void listHeaders_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("headers");
        QTest::newRow("lstSourceTables") << u"lstSourceTables"_s << QStringList{u"Source Tables"_s};
        QTest::newRow("lstSourceFields")
            << u"lstSourceFields"_s
            << QStringList{{}, u"No"_s, u"Field Name"_s, u"Type"_s, u"Length"_s, u"Description"_s, u"Alignment"_s,
                           u"Case"_s, u"Domain"_s};
        QTest::newRow("lstTargetFields")
            << u"lstTargetFields"_s
            << QStringList{{}, {}, u"No"_s, u"Field Name"_s, u"Type"_s, u"Length"_s, u"Description"_s,
                           u"Alignment"_s, u"Case"_s, u"Domain"_s};
    }
    void listHeaders()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, headers);
        Host host;
        QCOMPARE(headerTexts(host.view(name)), headers);
        if (auto* tree = qobject_cast<QTreeView*>(host.view(name)))
            QVERIFY(!tree->isHeaderHidden());
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
        QTest::newRow("short name keeps its blanks") << u"abc"_s << smallDocument(u"abc"_s) << u"abc     .xml"_s
                                                     << false;
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

        Host host;
        host.load(targetTable, document);
        QCOMPARE(host.text(u"txtPreCondition"_s).isEmpty(), !sectionsFound);
        QCOMPARE(host.view(u"lstMigrateSource"_s)->model()->rowCount() > 0, sectionsFound);
        if (!sectionsFound)
            QCOMPARE(host.ctl->property("SourceTables").toString(), QString());

        const QString first = host.xml();
        const QString second = host.xml();
        QVERIFY(!first.isEmpty());
        QCOMPARE(second, first);
        QFile file(folder + fileName);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
        QCOMPARE(file.readAll(), second.toLocal8Bit());
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{fileName});
    }

    void malformedDocumentShowsNothing_data()
    {
        QTest::addColumn<bool>("afterValidDocument");
        QTest::addColumn<QString>("text");
        for (bool after : {false, true}) {
            const char* prefix = after ? "after a shown document, " : "fresh control, ";
            QTest::addRow("%sunclosed element", prefix)
                << after << u"<klmno001><SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</klmno001>"_s;
            QTest::addRow("%stwo root elements", prefix)
                << after << u"<klmno001><PREC>migrate pqrst002</PREC></klmno001><klmno001/>"_s;
            QTest::addRow("%splain text", prefix) << after << u"migrate pqrst002"_s;
            QTest::addRow("%sempty text", prefix) << after << QString();
        }
    }
    void malformedDocumentShowsNothing()
    {
        QFETCH(bool, afterValidDocument);
        QFETCH(QString, text);
        Host host;
        QVERIFY(host.activate());
        if (afterValidDocument) {
            QVERIFY(host.openSample(u"fghij100.xml"_s));
            QVERIFY(!host.text(u"txtPreCondition"_s).isEmpty());
        }
        host.load(u"klmno001"_s, text);
        QTest::qWait(50);
        for (const QString& name : {u"txtPreCondition"_s, u"txtMainQuery"_s})
            QVERIFY2(host.text(name).isEmpty(), qPrintable(name));
        for (const QString& name :
             {u"lstSourceTables"_s, u"lstMigrateSource"_s, u"lstSourceFields"_s, u"lstTargetFields"_s, u"RulesGrid"_s})
            QVERIFY2(host.rows(name).isEmpty(), qPrintable(name + u" rows: "_s + host.rows(name).join(u'|')));
        QCOMPARE(host.find<QComboBox>(u"CmbDump"_s)->count(), 0);
        // Without MSCRIPT the target-table controls are hidden.
        for (const QString& name : {u"CmbTargetTable"_s, u"lblTargetTable"_s, u"CmdChange"_s})
            QVERIFY2(!host.find(name)->isVisibleTo(host.find(u"FrmRules"_s)), qPrintable(name));
        QCOMPARE(host.ctl->property("SourceTables").toString(), QString());
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
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
        QTest::newRow("False") << QList<bool>{false} << QList<bool>{} << true << true;
        QTest::newRow("True") << QList<bool>{true} << QList<bool>{} << false << false;
        QTest::newRow("True then False") << QList<bool>{true} << QList<bool>{false} << true << true;
        QTest::newRow("False then True") << QList<bool>{false} << QList<bool>{true} << true << true;
        QTest::newRow("False then True before showing") << QList<bool>{false, true} << QList<bool>{} << true << false;
        QTest::newRow("True, False, True") << QList<bool>{true} << QList<bool>{false, true} << true << true;
    }
    void editMode()
    {
        QFETCH(QList<bool>, before);
        QFETCH(QList<bool>, after);
        QFETCH(bool, locked);
        QFETCH(bool, mainQueryLocked);
        Host host;
        for (bool e : before)
            host.ctl->setProperty("Edit", e);
        host.ctl->setProperty("TargetTable", u"klmno001"_s);
        host.ctl->setProperty("MappingObjectXML", readSample(u"klmno001.xml"_s));
        QVERIFY(QMetaObject::invokeMethod(host.ctl, "ShowControl"));
        for (bool e : after)
            host.ctl->setProperty("Edit", e);
        for (const QString& name : kLockedEditors)
            QVERIFY2(host.readOnly(name) == (name == u"txtMainQuery"_s ? mainQueryLocked : locked), qPrintable(name));
        for (const QString& name : kLockedButtons)
            QVERIFY2(ownEnabled(host.find(name)) == !locked, qPrintable(name));
    }

    void assignmentsEnableTheirBuildButton_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("button");
        QTest::newRow("PreCondition enables CmdBuildPre")
            << u"PreCondition"_s << u"migrate pqrst002\ndump 1 Customers"_s << u"CmdBuildPre"_s;
        QTest::newRow("MainQuery enables cmdBuildMQ") << u"MainQuery"_s << u"select pqrst002.*"_s << u"cmdBuildMQ"_s;
        QTest::newRow("FieldMapping enables CmdFuncBuild")
            << u"FieldMapping"_s << u"pqrst002.name"_s << u"CmdFuncBuild"_s;
    }
    void assignmentsEnableTheirBuildButton()
    {
        QFETCH(QString, property);
        QFETCH(QString, value);
        QFETCH(QString, button);
        const QStringList buildButtons{u"CmdBuildPre"_s, u"cmdBuildMQ"_s, u"CmdFuncBuild"_s};
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s, false));
        for (const QString& b : buildButtons)
            QVERIFY2(!ownEnabled(host.find(b)), qPrintable(b));
        host.ctl->setProperty(property.toLatin1().constData(), value);
        for (const QString& b : buildButtons)
            QVERIFY2(ownEnabled(host.find(b)) == (b == button), qPrintable(b));
        // Only the build button: the editors stay locked.
        QVERIFY(host.readOnly(u"txtPreCondition"_s));
        QVERIFY(host.readOnly(u"txtMainQuery"_s));
    }
};

QTEST_MAIN(HostInterfaceTest)
#include "tst_hostinterface.moc"
