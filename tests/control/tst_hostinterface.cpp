// The control as a host sees it: its properties, methods and signals by
// name, its screen controls by objectName, the document going in and out,
// the temporary export, and the edit mode.

#include "ControlHarness.h"

#include <QDir>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTreeView>

using namespace fbtest;

namespace {

// A small single-target document: one migrate source, no dump reference.
QString smallDocument(const QString& root)
{
    return QStringLiteral("<%1><SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"\">migrate pqrst002</PREC>"
                          "<QUERY ST=\"pqrst002\" TEXT=\"\">select pqrst002.*</QUERY>"
                          "<TARTAB><%2><CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGB=\"8\"/></%2></TARTAB>"
                          "<SRCTAB><PQRST002><CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGB=\"6\"/></PQRST002></SRCTAB>"
                          "</%1>")
        .arg(root, root.toUpper());
}

const QStringList kLockedEditors{QStringLiteral("txtPreCondition"), QStringLiteral("txtMainQuery"),
                                 QStringLiteral("txtFunctions"), QStringLiteral("txtVariables"),
                                 QStringLiteral("txtgrdline")};

const QStringList kLockedButtons{QStringLiteral("CmdEditRule"),  QStringLiteral("CmdPreEditor"),
                                 QStringLiteral("CmdMqEditor"),  QStringLiteral("CmdGuess"),
                                 QStringLiteral("CmdMap"),       QStringLiteral("CmdOk"),
                                 QStringLiteral("CmdSelectSource"), QStringLiteral("cmdBuildMQ"),
                                 QStringLiteral("CmdBuildPre"),  QStringLiteral("CmdFuncBuild"),
                                 QStringLiteral("CmdCopyDump"),  QStringLiteral("CmdChange")};

} // namespace

class HostInterfaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void propertyContract_data();
    void propertyContract();
    void writeOnlyPropertiesReadLastValue_data();
    void writeOnlyPropertiesReadLastValue();
    void sourceTablesReadAndAssign();
    void mainQueryReadsTheBox();
    void fieldMappingReadsARowNumber();

    void methodContract_data();
    void methodContract();
    void getListItemNumber_data();
    void getListItemNumber();
    void setTextNumber_data();
    void setTextNumber();
    void setfocusGoesToThePrecondition();

    void signalContract_data();
    void signalContract();

    void screenControls_data();
    void screenControls();
    void tabTexts();
    void listHeaders_data();
    void listHeaders();

    void exportFile_data();
    void exportFile();
    void malformedDocumentShowsNothing_data();
    void malformedDocumentShowsNothing();

    void editMode_data();
    void editMode();
    void assignmentsEnableTheirBuildButton_data();
    void assignmentsEnableTheirBuildButton();
};

void HostInterfaceTest::initTestCase()
{
    installMessageFilter();
    QVERIFY2(!examplesDir().isEmpty(), "FIELDBRIDGE_EXAMPLES is not set");
    QVERIFY2(!tempDir().isEmpty(), "FIELDBRIDGE_TEMP is not set");
    QVERIFY(!readSample(QStringLiteral("klmno001.xml")).isEmpty());
}

// ---------------------------------------------------------------------------
// Properties

void HostInterfaceTest::propertyContract_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("type");

    QTest::newRow("MappingObjectXML") << QStringLiteral("MappingObjectXML") << int(QMetaType::QString);
    QTest::newRow("Editor") << QStringLiteral("Editor") << int(QMetaType::QString);
    QTest::newRow("TargetTable") << QStringLiteral("TargetTable") << int(QMetaType::QString);
    QTest::newRow("Edit") << QStringLiteral("Edit") << int(QMetaType::Bool);
    QTest::newRow("SourceTables") << QStringLiteral("SourceTables") << int(QMetaType::QString);
    QTest::newRow("PreCondition") << QStringLiteral("PreCondition") << int(QMetaType::QString);
    QTest::newRow("MainQuery") << QStringLiteral("MainQuery") << int(QMetaType::QString);
    QTest::newRow("FieldMapping") << QStringLiteral("FieldMapping") << int(QMetaType::QString);
}

void HostInterfaceTest::propertyContract()
{
    QFETCH(QString, name);
    QFETCH(int, type);

    const QMetaObject* mo = &ctlFieldbridge::staticMetaObject;
    const int index = mo->indexOfProperty(name.toLatin1().constData());
    QVERIFY2(index >= 0, qPrintable(name + QStringLiteral(" is not a property")));
    const QMetaProperty p = mo->property(index);
    QVERIFY(p.isReadable());
    QVERIFY(p.isWritable());
    QCOMPARE(p.metaType().id(), type);
}

void HostInterfaceTest::writeOnlyPropertiesReadLastValue_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("first");
    QTest::addColumn<QVariant>("second");

    QTest::newRow("Editor") << QStringLiteral("Editor") << QVariant(QStringLiteral("/usr/bin/vi"))
                            << QVariant(QStringLiteral("/opt/editors/my editor"));
    QTest::newRow("TargetTable, short then long") << QStringLiteral("TargetTable") << QVariant(QStringLiteral("abc"))
                                                  << QVariant(QStringLiteral("klmno001extra"));
    QTest::newRow("Edit, True then False") << QStringLiteral("Edit") << QVariant(true) << QVariant(false);
    QTest::newRow("Edit, False then True") << QStringLiteral("Edit") << QVariant(false) << QVariant(true);
    QTest::newRow("PreCondition, not decoded") << QStringLiteral("PreCondition")
                                               << QVariant(QStringLiteral("migrate pqrst002"))
                                               << QVariant(QStringLiteral("a &amp;lt; b\nmigrate pqrst002"));
}

void HostInterfaceTest::writeOnlyPropertiesReadLastValue()
{
    QFETCH(QString, name);
    QFETCH(QVariant, first);
    QFETCH(QVariant, second);

    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    const QByteArray n = name.toLatin1();
    QVERIFY(host.ctl->setProperty(n.constData(), first));
    QCOMPARE(host.ctl->property(n.constData()), first);
    QVERIFY(host.ctl->setProperty(n.constData(), second));
    QCOMPARE(host.ctl->property(n.constData()), second);
}

void HostInterfaceTest::sourceTablesReadAndAssign()
{
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QCOMPARE(host.ctl->property("SourceTables").toString(), QStringLiteral("pqrst002,uvwxy003,abcde004"));

    const QString more = QStringLiteral("pqrst002,uvwxy003,abcde004,zzzzz009");
    host.ctl->setProperty("SourceTables", more);
    QCOMPARE(host.ctl->property("SourceTables").toString(), more);
    auto* list = host.find<QAbstractItemView>(QStringLiteral("lstSourceTables"));
    QVERIFY(list);
    QCOMPARE(columnTexts(list), more.split(u','));

    const XmlElement root = parseXml(host.readXml());
    QCOMPARE(root.first(QStringLiteral("SRCTBL")).text, more);
}

void HostInterfaceTest::mainQueryReadsTheBox()
{
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    auto* box = host.find(QStringLiteral("txtMainQuery"));
    QVERIFY(box);

    // The box shows the first migrate source's query; the property gives
    // the box's text with the control's CR LF line breaks.
    const QString shown = host.ctl->property("MainQuery").toString();
    QVERIFY2(shown.startsWith(QStringLiteral("select pqrst002.*\r\nfrom pqrst002\r\n")), qPrintable(shown));
    QCOMPARE(shown, QString(plainText(box)).replace(u'\n', QStringLiteral("\r\n")));

    // Assigned as it is, stored under the box's migrate source.
    const QString query = QStringLiteral("select pqrst002.custno\r\nfrom pqrst002");
    host.ctl->setProperty("MainQuery", query);
    QCOMPARE(host.ctl->property("MainQuery").toString(), query);
    QCOMPARE(plainText(box), QStringLiteral("select pqrst002.custno\nfrom pqrst002"));
    const XmlElement root = parseXml(host.readXml());
    const XmlElement q = root.with(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("pqrst002"));
    QVERIFY(!q.isNull());
    QCOMPARE(lines(q.text), QStringLiteral("select pqrst002.custno\nfrom pqrst002"));
}

void HostInterfaceTest::fieldMappingReadsARowNumber()
{
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    host.ctl->setProperty("FieldMapping", QStringLiteral("pqrst002.name"));
    const QString read = host.ctl->property("FieldMapping").toString();
    QVERIFY(read != QStringLiteral("pqrst002.name"));
    bool numeric = false;
    read.toInt(&numeric);
    QVERIFY2(numeric, qPrintable(read));
}

// ---------------------------------------------------------------------------
// Methods

void HostInterfaceTest::methodContract_data()
{
    QTest::addColumn<QString>("signature");
    QTest::addColumn<int>("returnType");
    QTest::addColumn<QStringList>("parameterNames");

    QTest::newRow("Setfocus") << QStringLiteral("Setfocus()") << int(QMetaType::Void) << QStringList{};
    QTest::newRow("ShowControl") << QStringLiteral("ShowControl()") << int(QMetaType::Void) << QStringList{};
    QTest::newRow("GetListItemNumber") << QStringLiteral("GetListItemNumber(QString)") << int(QMetaType::Int)
                                       << QStringList{QStringLiteral("strFieldName")};
    QTest::newRow("SetTextNumber") << QStringLiteral("SetTextNumber(QString,int,QString,QString)")
                                   << int(QMetaType::Void)
                                   << QStringList{QStringLiteral("StrType"), QStringLiteral("LngTextNumber"),
                                                  QStringLiteral("StrKey1"), QStringLiteral("StrKey2")};
    QTest::newRow("GetRowNumber") << QStringLiteral("GetRowNumber(QString)") << int(QMetaType::Int)
                                  << QStringList{QStringLiteral("i_StrFieldName")};
    QTest::newRow("GridEdit") << QStringLiteral("GridEdit(short)") << int(QMetaType::Void)
                              << QStringList{QStringLiteral("KeyAscii")};
}

void HostInterfaceTest::methodContract()
{
    QFETCH(QString, signature);
    QFETCH(int, returnType);
    QFETCH(QStringList, parameterNames);

    const QMetaObject* mo = &ctlFieldbridge::staticMetaObject;
    const QByteArray normalized = QMetaObject::normalizedSignature(signature.toLatin1().constData());
    const int index = mo->indexOfMethod(normalized.constData());
    QVERIFY2(index >= 0, normalized.constData());
    const QMetaMethod m = mo->method(index);
    QCOMPARE(m.methodType(), QMetaMethod::Method);
    QCOMPARE(m.access(), QMetaMethod::Public);
    QCOMPARE(m.returnType(), returnType);
    QStringList names;
    for (const QByteArray& n : m.parameterNames())
        names.append(QString::fromLatin1(n));
    QCOMPARE(names, parameterNames);
}

void HostInterfaceTest::getListItemNumber_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<int>("expected");

    QTest::newRow("first row is number 1") << QStringLiteral("klmno001.custno") << 1;
    QTest::newRow("last row") << QStringLiteral("klmno001.origin") << 25;
    QTest::newRow("array element in shown form") << QStringLiteral("klmno001.qty(2)") << 15;
    QTest::newRow("case differs") << QStringLiteral("KLMNO001.CUSTNO") << -1;
    QTest::newRow("field part alone") << QStringLiteral("custno") << -1;
    QTest::newRow("stored form of an array element") << QStringLiteral("klmno001.qty__2") << -1;
}

void HostInterfaceTest::getListItemNumber()
{
    QFETCH(QString, field);
    QFETCH(int, expected);

    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    int result = -2;
    QVERIFY(QMetaObject::invokeMethod(host.ctl, "GetListItemNumber", Q_RETURN_ARG(int, result),
                                      Q_ARG(QString, field)));
    QCOMPARE(result, expected);
}

void HostInterfaceTest::setTextNumber_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("key1");
    QTest::addColumn<QString>("key2");
    QTest::addColumn<QString>("precText");       // expected TEXT of PREC
    QTest::addColumn<QString>("queryText");      // expected TEXT of QUERY pqrst002
    QTest::addColumn<QString>("ruleText");       // expected TEXT of DUMP 1 / CUSTNO

    QTest::newRow("P sets the precondition's number") << QStringLiteral("P") << 77 << QString() << QString()
                                                      << QStringLiteral("77") << QString() << QString();
    QTest::newRow("M with a table name changes nothing")
        << QStringLiteral("M") << 9 << QStringLiteral("pqrst002") << QString() << QStringLiteral("12") << QString()
        << QString();
    QTest::newRow("D sets the rule's number") << QStringLiteral("D") << 55 << QStringLiteral("1")
                                              << QStringLiteral("custno") << QStringLiteral("12") << QString()
                                              << QStringLiteral("55");
}

void HostInterfaceTest::setTextNumber()
{
    QFETCH(QString, type);
    QFETCH(int, number);
    QFETCH(QString, key1);
    QFETCH(QString, key2);
    QFETCH(QString, precText);
    QFETCH(QString, queryText);
    QFETCH(QString, ruleText);

    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(QMetaObject::invokeMethod(host.ctl, "SetTextNumber", Q_ARG(QString, type), Q_ARG(int, number),
                                      Q_ARG(QString, key1), Q_ARG(QString, key2)));
    const XmlElement root = parseXml(host.readXml());
    QVERIFY(!root.isNull());
    QCOMPARE(root.first(QStringLiteral("PREC")).attribute(QStringLiteral("TEXT")), precText);
    const XmlElement query = root.with(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("pqrst002"));
    QVERIFY(query.hasAttribute(QStringLiteral("TEXT")));
    QCOMPARE(query.attribute(QStringLiteral("TEXT")), queryText);
    const XmlElement rule = root.with(QStringLiteral("DUMP"), QStringLiteral("No"), QStringLiteral("1"))
                                .first(QStringLiteral("CUSTNO"));
    QVERIFY(!rule.isNull());
    QCOMPARE(rule.attribute(QStringLiteral("TEXT")), ruleText);
}

void HostInterfaceTest::setfocusGoesToThePrecondition()
{
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    auto* list = host.find(QStringLiteral("lstSourceTables"));
    auto* pre = host.find(QStringLiteral("txtPreCondition"));
    QVERIFY(list && pre);
    clickInto(list);
    QVERIFY2(isWithin(QApplication::focusWidget(), list), qPrintable(focusName()));
    QVERIFY(QMetaObject::invokeMethod(host.ctl, "Setfocus"));
    QTRY_VERIFY2(isWithin(QApplication::focusWidget(), pre), qPrintable(focusName()));
}

// ---------------------------------------------------------------------------
// Signals

void HostInterfaceTest::signalContract_data()
{
    QTest::addColumn<QString>("signature");
    QTest::addColumn<QStringList>("parameterNames");

    QTest::newRow("ShowSourceTablesPopUp") << QStringLiteral("ShowSourceTablesPopUp(QString)")
                                           << QStringList{QStringLiteral("i_SourceTables")};
    QTest::newRow("ShowConditionBuilderPopUp")
        << QStringLiteral("ShowConditionBuilderPopUp(QString,QString)")
        << QStringList{QStringLiteral("i_ConditionString"), QStringLiteral("i_SourceTables")};
    QTest::newRow("ShowQueryBuilderPopUp") << QStringLiteral("ShowQueryBuilderPopUp(QString,QString)")
                                           << QStringList{QStringLiteral("i_QueryString"),
                                                          QStringLiteral("i_SourceTables")};
    QTest::newRow("ShowFunctionalTextPopUp")
        << QStringLiteral("ShowFunctionalTextPopUp(QString,int,QString,QString)")
        << QStringList{QStringLiteral("DocType"), QStringLiteral("LngTextNumber"), QStringLiteral("StrKey1"),
                       QStringLiteral("StrKey2")};
    QTest::newRow("ShowFunctionBuilderPopUp")
        << QStringLiteral("ShowFunctionBuilderPopUp(QString,QString)")
        << QStringList{QStringLiteral("StrCondition"), QStringLiteral("StrSourceTables")};
    QTest::newRow("SaveDoneDisabled") << QStringLiteral("SaveDoneDisabled()") << QStringList{};
    QTest::newRow("SaveDoneEnabled") << QStringLiteral("SaveDoneEnabled()") << QStringList{};
}

void HostInterfaceTest::signalContract()
{
    QFETCH(QString, signature);
    QFETCH(QStringList, parameterNames);

    const QMetaObject* mo = &ctlFieldbridge::staticMetaObject;
    const QByteArray normalized = QMetaObject::normalizedSignature(signature.toLatin1().constData());
    const int index = mo->indexOfSignal(normalized.constData());
    QVERIFY2(index >= 0, normalized.constData());
    const QMetaMethod m = mo->method(index);
    QCOMPARE(m.methodType(), QMetaMethod::Signal);
    QStringList names;
    for (const QByteArray& n : m.parameterNames())
        names.append(QString::fromLatin1(n));
    QCOMPARE(names, parameterNames);

    // A host connects to it by name.
    Host host;
    QSignalSpy spy(host.ctl, QByteArray(QByteArray::number(QSIGNAL_CODE) + normalized).constData());
    QVERIFY(spy.isValid());
}

// ---------------------------------------------------------------------------
// Screen controls

namespace {
enum Kind { Button, Label, Frame, Tabs, Combo, ItemView, TextBox, AnyWidget };
}

void HostInterfaceTest::screenControls_data()
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
    row("lblPreCondition", Label, QStringLiteral("PreCondition"));
    row("CmdBuildPre", Button);
    row("CmdPreDoc", Button);
    row("CmdPreEditor", Button);
    row("PicPreResize", AnyWidget);
    row("txtMainQuery", TextBox);
    row("cmdBuildMQ", Button);
    row("CmdMQDoc", Button);
    row("CmdMqEditor", Button);
    row("PicMQResize", AnyWidget);
    row("CmdFunction", Button, QStringLiteral("F&unctions"));
    row("CmdVariables", Button, QStringLiteral("Variable&s / Includes"));
    row("txtFunctions", TextBox);
    row("txtVariables", TextBox);
    row("CmdOk", Button);
    row("CmdCancel", Button);
    row("CmdFuncEditor", Button);
    row("CmbDump", Combo);
    row("Command1", Button, QStringLiteral("Sho&w"));
    row("CmbTargetTable", Combo);
    row("lblTargetTable", Label, QStringLiteral("For Target Table:"));
    row("LBLTargetTableName", Label);
    row("lstSourceFields", ItemView);
    row("lstTargetFields", ItemView);
    row("Details", Frame, QStringLiteral("F&ields of Dump: "));
    row("RulesGrid", ItemView);
    row("txtgrdline", TextBox);
    row("CmdMap", Button, QStringLiteral("Ma&p"));
    row("CmdGuess", Button, QStringLiteral("&Guess"));
    row("CmdCopyDump", Button, QStringLiteral("Cop&y from dump.."));
    row("CmdChange", Button, QStringLiteral("Cha&nge..."));
    row("CmdEditRule", Button, QStringLiteral("Edit &Rule"));
    row("CmdDumpText", Button, QStringLiteral("Te&xt"));
    row("CmdFuncBuild", Button, QStringLiteral("&Build"));
}

void HostInterfaceTest::screenControls()
{
    QFETCH(QString, name);
    QFETCH(int, kind);
    QFETCH(QString, caption);

    Host host;
    const QList<QWidget*> found = host.ctl->findChildren<QWidget*>(name);
    QCOMPARE(found.size(), 1);
    QWidget* w = found.first();

    switch (Kind(kind)) {
    case Button: {
        auto* b = qobject_cast<QAbstractButton*>(w);
        QVERIFY2(b, w->metaObject()->className());
        if (!caption.isNull())
            QCOMPARE(b->text(), caption);
        break;
    }
    case Label: {
        auto* l = qobject_cast<QLabel*>(w);
        QVERIFY2(l, w->metaObject()->className());
        if (!caption.isNull())
            QCOMPARE(l->text(), caption);
        break;
    }
    case Frame: {
        auto* g = qobject_cast<QGroupBox*>(w);
        QVERIFY2(g, w->metaObject()->className());
        if (!caption.isNull())
            QCOMPARE(g->title(), caption);
        break;
    }
    case Tabs:
        QVERIFY2(qobject_cast<QTabWidget*>(w), w->metaObject()->className());
        break;
    case Combo:
        QVERIFY2(qobject_cast<QComboBox*>(w), w->metaObject()->className());
        break;
    case ItemView:
        QVERIFY2(qobject_cast<QAbstractItemView*>(w), w->metaObject()->className());
        break;
    case TextBox: {
        const QMetaObject* mo = w->metaObject();
        const int text = mo->indexOfProperty("plainText");
        const int lock = mo->indexOfProperty("readOnly");
        QVERIFY2(text >= 0, mo->className());
        QVERIFY2(lock >= 0, mo->className());
        QVERIFY(mo->property(text).isWritable());
        QVERIFY(mo->property(lock).isWritable());
        // The text goes in and comes out with "\n" line breaks.
        QVERIFY(w->setProperty("plainText", QStringLiteral("one\ntwo")));
        QCOMPARE(plainText(w), QStringLiteral("one\ntwo"));
        break;
    }
    case AnyWidget:
        break;
    }
}

void HostInterfaceTest::tabTexts()
{
    Host host;
    QTabWidget* tabs = host.tabs();
    QVERIFY(tabs);
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Mapping Object"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Define Dumps"));
    QCOMPARE(tabs->currentIndex(), 0);

    // Each frame sits on its own tab's page.
    auto* frmCondition = host.find(QStringLiteral("FrmCondition"));
    auto* frmRules = host.find(QStringLiteral("FrmRules"));
    QVERIFY(frmCondition && frmRules);
    QVERIFY(tabs->widget(0)->isAncestorOf(frmCondition));
    QVERIFY(tabs->widget(1)->isAncestorOf(frmRules));
}

void HostInterfaceTest::listHeaders_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("headers");

    QTest::newRow("lstSourceTables") << QStringLiteral("lstSourceTables") << QStringList{QStringLiteral("Source Tables")};
    QTest::newRow("lstSourceFields")
        << QStringLiteral("lstSourceFields")
        << QStringList{QString(), QStringLiteral("No"), QStringLiteral("Field Name"), QStringLiteral("Type"),
                       QStringLiteral("Length"), QStringLiteral("Description"), QStringLiteral("Alignment"),
                       QStringLiteral("Case"), QStringLiteral("Domain")};
    QTest::newRow("lstTargetFields")
        << QStringLiteral("lstTargetFields")
        << QStringList{QString(), QString(), QStringLiteral("No"), QStringLiteral("Field Name"),
                       QStringLiteral("Type"), QStringLiteral("Length"), QStringLiteral("Description"),
                       QStringLiteral("Alignment"), QStringLiteral("Case"), QStringLiteral("Domain")};
}

void HostInterfaceTest::listHeaders()
{
    QFETCH(QString, name);
    QFETCH(QStringList, headers);

    Host host;
    auto* view = host.find<QAbstractItemView>(name);
    QVERIFY(view);
    QCOMPARE(headerTexts(view), headers);
    if (auto* tree = qobject_cast<QTreeView*>(view))
        QVERIFY(!tree->isHeaderHidden());
}

// ---------------------------------------------------------------------------
// The document in and out, and the temporary export

void HostInterfaceTest::exportFile_data()
{
    QTest::addColumn<QString>("targetTable");
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<bool>("sectionsFound");

    const QString sample = readSample(QStringLiteral("klmno001.xml"));
    QTest::newRow("eight characters") << QStringLiteral("klmno001") << sample << QStringLiteral("klmno001.xml")
                                      << true;
    QTest::newRow("longer name is cut to eight") << QStringLiteral("klmno001extra") << sample
                                                 << QStringLiteral("klmno001.xml") << true;
    QTest::newRow("short name keeps its blanks") << QStringLiteral("abc") << smallDocument(QStringLiteral("abc"))
                                                 << QStringLiteral("abc     .xml") << false;
}

void HostInterfaceTest::exportFile()
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
    host.load(targetTable, document, true);

    auto* pre = host.find(QStringLiteral("txtPreCondition"));
    auto* migrate = host.find<QAbstractItemView>(QStringLiteral("lstMigrateSource"));
    QVERIFY(pre && migrate);
    QCOMPARE(plainText(pre).isEmpty(), !sectionsFound);
    QCOMPARE(migrate->model()->rowCount() > 0, sectionsFound);
    if (!sectionsFound)
        QCOMPARE(host.ctl->property("SourceTables").toString(), QString());

    const QString first = host.readXml();
    const QString second = host.readXml();
    QVERIFY(!first.isEmpty());
    QCOMPARE(second, first);

    QFile file(folder + fileName);
    QVERIFY2(file.exists(), qPrintable(file.fileName()));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), second.toLocal8Bit());
    QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{fileName});
}

void HostInterfaceTest::malformedDocumentShowsNothing_data()
{
    QTest::addColumn<bool>("afterValidDocument");
    QTest::addColumn<QString>("text");

    const QString unclosed = QStringLiteral("<klmno001><SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</klmno001>");
    const QString twoRoots = QStringLiteral("<klmno001><PREC>migrate pqrst002</PREC></klmno001><klmno001/>");
    const QString notXml = QStringLiteral("migrate pqrst002");
    for (bool after : {false, true}) {
        const char* prefix = after ? "after a shown document, " : "fresh control, ";
        QTest::addRow("%sunclosed element", prefix) << after << unclosed;
        QTest::addRow("%stwo root elements", prefix) << after << twoRoots;
        QTest::addRow("%splain text", prefix) << after << notXml;
        QTest::addRow("%sempty text", prefix) << after << QString();
    }
}

void HostInterfaceTest::malformedDocumentShowsNothing()
{
    QFETCH(bool, afterValidDocument);
    QFETCH(QString, text);

    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.activate());
    if (afterValidDocument) {
        QVERIFY(host.loadSample(QStringLiteral("fghij100.xml"), QStringLiteral("fghij100"), true));
        QVERIFY(!plainText(host.find(QStringLiteral("txtPreCondition"))).isEmpty());
    }
    host.load(QStringLiteral("klmno001"), text, true);
    QTest::qWait(50);

    for (const char* name : {"txtPreCondition", "txtMainQuery"})
        QVERIFY2(plainText(host.find(QString::fromLatin1(name))).isEmpty(), name);
    for (const char* name : {"lstSourceTables", "lstMigrateSource", "lstSourceFields", "lstTargetFields",
                             "RulesGrid"}) {
        auto* view = host.find<QAbstractItemView>(QString::fromLatin1(name));
        QVERIFY2(view, name);
        QVERIFY2(view->model()->rowCount() == 0,
                 qPrintable(QString::fromLatin1(name) + QStringLiteral(" rows: ") +
                            columnTexts(view).join(QStringLiteral("|"))));
    }
    QCOMPARE(host.find<QComboBox>(QStringLiteral("CmbDump"))->count(), 0);
    // Without MSCRIPT the target-table controls are hidden.
    auto* frmRules = host.find(QStringLiteral("FrmRules"));
    for (const char* name : {"CmbTargetTable", "lblTargetTable", "CmdChange"})
        QVERIFY2(!host.find(QString::fromLatin1(name))->isVisibleTo(frmRules), name);
    QCOMPARE(host.ctl->property("SourceTables").toString(), QString());
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

// ---------------------------------------------------------------------------
// Edit mode

void HostInterfaceTest::editMode_data()
{
    QTest::addColumn<QList<bool>>("before"); // Edit assignments before ShowControl
    QTest::addColumn<QList<bool>>("after");  // and after it
    QTest::addColumn<bool>("locked");
    // The main query box follows its own rule on every change of its text:
    // writable while there are migrate sources and the edit flag is set.
    // ShowControl puts the query into it, so the flag at that moment counts,
    // and only a later Edit False locks it again.
    QTest::addColumn<bool>("mainQueryLocked");

    QTest::newRow("never assigned") << QList<bool>{} << QList<bool>{} << true << true;
    QTest::newRow("False") << QList<bool>{false} << QList<bool>{} << true << true;
    QTest::newRow("True") << QList<bool>{true} << QList<bool>{} << false << false;
    QTest::newRow("True then False") << QList<bool>{true} << QList<bool>{false} << true << true;
    QTest::newRow("False then True") << QList<bool>{false} << QList<bool>{true} << true << true;
    QTest::newRow("False then True before showing") << QList<bool>{false, true} << QList<bool>{} << true << false;
    QTest::newRow("True, False, True") << QList<bool>{true} << QList<bool>{false, true} << true << true;
}

void HostInterfaceTest::editMode()
{
    QFETCH(QList<bool>, before);
    QFETCH(QList<bool>, after);
    QFETCH(bool, locked);
    QFETCH(bool, mainQueryLocked);

    Host host;
    for (bool e : before)
        host.ctl->setProperty("Edit", e);
    host.ctl->setProperty("TargetTable", QStringLiteral("klmno001"));
    host.ctl->setProperty("MappingObjectXML", readSample(QStringLiteral("klmno001.xml")));
    QVERIFY(QMetaObject::invokeMethod(host.ctl, "ShowControl"));
    for (bool e : after)
        host.ctl->setProperty("Edit", e);

    for (const QString& name : kLockedEditors) {
        QWidget* box = host.find(name);
        QVERIFY2(box, qPrintable(name));
        const bool expected = name == QStringLiteral("txtMainQuery") ? mainQueryLocked : locked;
        QVERIFY2(isReadOnly(box) == expected, qPrintable(name));
    }
    for (const QString& name : kLockedButtons) {
        QWidget* b = host.find(name);
        QVERIFY2(b, qPrintable(name));
        QVERIFY2(ownEnabled(b) == !locked, qPrintable(name));
    }
}

void HostInterfaceTest::assignmentsEnableTheirBuildButton_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("button");

    QTest::newRow("PreCondition enables CmdBuildPre")
        << QStringLiteral("PreCondition") << QStringLiteral("migrate pqrst002\ndump 1 Customers")
        << QStringLiteral("CmdBuildPre");
    QTest::newRow("MainQuery enables cmdBuildMQ")
        << QStringLiteral("MainQuery") << QStringLiteral("select pqrst002.*") << QStringLiteral("cmdBuildMQ");
    QTest::newRow("FieldMapping enables CmdFuncBuild")
        << QStringLiteral("FieldMapping") << QStringLiteral("pqrst002.name") << QStringLiteral("CmdFuncBuild");
}

void HostInterfaceTest::assignmentsEnableTheirBuildButton()
{
    QFETCH(QString, property);
    QFETCH(QString, value);
    QFETCH(QString, button);

    const QStringList buildButtons{QStringLiteral("CmdBuildPre"), QStringLiteral("cmdBuildMQ"),
                                   QStringLiteral("CmdFuncBuild")};
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), false));
    for (const QString& b : buildButtons)
        QVERIFY2(!ownEnabled(host.find(b)), qPrintable(b));

    host.ctl->setProperty(property.toLatin1().constData(), value);

    for (const QString& b : buildButtons)
        QVERIFY2(ownEnabled(host.find(b)) == (b == button), qPrintable(b));
    // Only the build button: the editors stay locked.
    QVERIFY(isReadOnly(host.find(QStringLiteral("txtPreCondition"))));
    QVERIFY(isReadOnly(host.find(QStringLiteral("txtMainQuery"))));
}

QTEST_MAIN(HostInterfaceTest)
#include "tst_hostinterface.moc"
