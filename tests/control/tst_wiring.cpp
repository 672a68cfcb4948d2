// The widgets' wiring: the host interface by name, the screen controls by
// objectName and kind, clicks and keys reaching the session, the session's
// state reaching the widgets, focus moves storing, and the modal boxes being
// real. What the control does is tested at the session; here, that it is
// connected.

#include "WidgetHarness.h"

#include <QDir>
#include <QGroupBox>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QScreen>
#include <QSignalSpy>

using namespace fbtest;

class WiringTest : public HostTest {
    Q_OBJECT

    QPoint at(const QString& name) const { return host->find(name)->mapTo(host->ctl, QPoint(0, 0)); }

private Q_SLOTS:
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
        method("signal", u"ShowConditionBuilderPopUp(QString,QString)"_s,
               {u"i_ConditionString"_s, u"i_SourceTables"_s});
        method("signal", u"ShowQueryBuilderPopUp(QString,QString)"_s,
               {u"i_QueryString"_s, u"i_SourceTables"_s});
        method("signal", u"ShowFunctionalTextPopUp(QString,int,QString,QString)"_s,
               {u"DocType"_s, u"LngTextNumber"_s, u"StrKey1"_s, u"StrKey2"_s});
        method("signal", u"ShowFunctionBuilderPopUp(QString,QString)"_s,
               {u"StrCondition"_s, u"StrSourceTables"_s});
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
        const int index =
            kind == u"signal"_s ? mo->indexOfSignal(name.constData()) : mo->indexOfMethod(name.constData());
        QVERIFY2(index >= 0, name.constData());
        QStringList names;
        for (const QByteArray& n : mo->method(index).parameterNames())
            names.append(QString::fromLatin1(n));
        QCOMPARE(names, parameters);
    }

    // Every screen control a host or a test reads generically, by its kind.
    void screenControlsByKind()
    {
        const QStringList buttons{
            u"CmdSelectSource"_s, u"CmdBuildPre"_s, u"CmdPreDoc"_s,   u"CmdPreEditor"_s,  u"PicPreResize"_s,
            u"cmdBuildMQ"_s,      u"CmdMQDoc"_s,    u"CmdMqEditor"_s, u"PicMQResize"_s,   u"CmdFunction"_s,
            u"CmdVariables"_s,    u"CmdOk"_s,       u"CmdCancel"_s,   u"CmdFuncEditor"_s, u"Command1"_s,
            u"CmdChange"_s,       u"CmdMap"_s,      u"CmdGuess"_s,    u"CmdCopyDump"_s,   u"CmdEditRule"_s,
            u"CmdDumpText"_s,     u"CmdFuncBuild"_s};
        for (const QString& name : buttons)
            QVERIFY2(host->button(name), qPrintable(name));
        for (const QString& name : {u"lblPreCondition"_s, u"lblTargetTable"_s, u"LBLTargetTableName"_s})
            QVERIFY2(host->find<QLabel>(name), qPrintable(name));
        for (const QString& name : {u"FrmCondition"_s, u"FrmRules"_s, u"Details"_s})
            QVERIFY2(host->find<QGroupBox>(name), qPrintable(name));
        for (const QString& name : {u"CmbDump"_s, u"CmbTargetTable"_s})
            QVERIFY2(host->find<QComboBox>(name), qPrintable(name));
        for (const QString& name : {u"lstSourceTables"_s, u"lstMigrateSource"_s, u"lstSourceFields"_s,
                                    u"lstTargetFields"_s, u"RulesGrid"_s})
            QVERIFY2(host->view(name), qPrintable(name));
        for (const QString& name : {u"txtPreCondition"_s, u"txtMainQuery"_s, u"txtFunctions"_s,
                                    u"txtVariables"_s, u"txtgrdline"_s}) {
            QWidget* box = host->find(name);
            QVERIFY2(box && box->property("plainText").isValid() && box->property("readOnly").isValid(),
                     qPrintable(name));
        }
        QCOMPARE(host->tabs()->tabText(0), u"Mapping Object"_s);
        QCOMPARE(host->tabs()->tabText(1), u"Define Dumps"_s);
    }

    // The session's state reaches the widgets: texts, lists, locks and
    // enabled commands, after ShowControl in either mode.
    void stateReachesTheWidgets_data()
    {
        QTest::addColumn<bool>("edit");
        QTest::newRow("edit mode") << true;
        QTest::newRow("read-only") << false;
    }
    void stateReachesTheWidgets()
    {
        QFETCH(bool, edit);
        QVERIFY(host->openSample(u"klmno001.xml"_s, edit));
        QVERIFY(host->text(u"txtPreCondition"_s).contains(u"migrate uvwxy003"_s));
        QVERIFY(host->text(u"txtMainQuery"_s).startsWith(u"select pqrst002.*\n"_s));
        QCOMPARE(host->rows(u"lstSourceTables"_s),
                 (QStringList{u"pqrst002"_s, u"uvwxy003"_s, u"abcde004"_s}));
        QCOMPARE(host->rows(u"lstMigrateSource"_s),
                 (QStringList{u"migrate pqrst002"_s, QString(), u"migrate uvwxy003"_s, QString()}));
        QCOMPARE(host->readOnly(u"txtPreCondition"_s), !edit);
        QCOMPARE(host->readOnly(u"txtMainQuery"_s), !edit);
        QCOMPARE(ownEnabled(host->button(u"CmdMap"_s)), edit);
        QCOMPARE(ownEnabled(host->button(u"CmdBuildPre"_s)), edit);
        QVERIFY(!host->find(u"txtFunctions"_s)->isVisible());
        QVERIFY(!host->find(u"lblTargetTable"_s)->isVisibleTo(host->ctl));
        // A host's answer reaches its box and enables its build button.
        host->ctl->setProperty("MainQuery", u"select 1"_s);
        QCOMPARE(host->text(u"txtMainQuery"_s), u"select 1"_s);
        QVERIFY(host->button(u"cmdBuildMQ"_s)->isEnabled());
    }

    // Clicks reach the session; its events reach the host; the panel shown
    // follows.
    void clicksReachTheSession()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        QSignalSpy select(host->ctl, SIGNAL(ShowSourceTablesPopUp(QString)));
        QSignalSpy locked(host->ctl, SIGNAL(SaveDoneDisabled()));
        host->click(u"CmdSelectSource"_s);
        QCOMPARE(select.value(0).value(0).toString(), u"pqrst002,uvwxy003,abcde004"_s);
        host->click(u"CmdFunction"_s);
        QCOMPARE(locked.size(), 1);
        QVERIFY(host->find(u"txtFunctions"_s)->isVisible());
        QVERIFY(!host->find(u"txtPreCondition"_s)->isVisible());
        QCOMPARE(host->find<QLabel>(u"lblPreCondition"_s)->text(), u"Functions"_s);
        QVERIFY(host->focusIn(u"txtFunctions"_s));
        host->click(u"CmdCancel"_s);
        QVERIFY(host->find(u"txtPreCondition"_s)->isVisible());
        // Enlarging the main query and restoring it twice returns every box
        // to its place.
        const QPoint pre = at(u"txtPreCondition"_s), mq = at(u"txtMainQuery"_s);
        for (int i = 0; i < 2; ++i) {
            host->click(u"PicMQResize"_s);
            QCOMPARE(at(u"txtMainQuery"_s), pre);
            host->click(u"PicMQResize"_s);
            QCOMPARE(at(u"txtMainQuery"_s), mq);
        }
        // The migrate list's click shows that table's query.
        host->clickRow(u"lstMigrateSource"_s, 2);
        QVERIFY(host->text(u"txtMainQuery"_s).startsWith(u"select uvwxy003.*"_s));
    }

    // Typing and moving the focus stores: a refused migrate statement raises
    // a real message box and sends the focus back; Delete in the list
    // removes the row.
    void focusMovesStore()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        host->replaceText(u"txtPreCondition"_s, u"migrate KLM\ndump 1 Customers"_s);
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->clickBelowRows(u"lstSourceTables"_s);
        QCOMPARE(host->modals.records().value(0).text, u"Table Name not Valid"_s);
        QCOMPARE(host->modals.records().value(0).icon, QMessageBox::Critical);
        QCOMPARE(host->modals.records().value(0).title, QString());
        QVERIFY(host->activate());
        QTRY_VERIFY(host->focusIn(u"txtPreCondition"_s));
        // Reading the document stores the precondition and tidies the
        // document: both parse it again, message and all.
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        QCOMPARE(host->document().child(u"PREC"_s).text, u"migrate KLM\ndump 1 Customers"_s);
        host->ctl->setProperty("PreCondition", u"dump 1 Customers"_s);
        QVERIFY(host->activate());
        host->clickRow(u"lstSourceTables"_s, 2);
        QTest::keyClick(host->view(u"lstSourceTables"_s), Qt::Key_Delete);
        QCOMPARE(host->ctl->property("SourceTables").toString(), u"pqrst002,uvwxy003"_s);
    }

    // The "Define Dumps" tab: the selector, the grid and its overlay over
    // the cell, a rule typed and committed by a click elsewhere, the
    // selector showing the chosen dump when the focus leaves it.
    void defineDumpsWiring()
    {
        QVERIFY(host->open(u"rules001"_s, rulesDocument()));
        host->clickTab(1);
        QComboBox* cmb = host->find<QComboBox>(u"CmbDump"_s);
        QCOMPARE(rows(cmb->view()), (QStringList{u"01--First"_s, u"02--Second"_s, u"03--Third"_s}));
        QCOMPARE(cmb->itemData(1).toInt(), 2);
        QCOMPARE(host->rules(), firstDumpRules());
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 1:First"_s);
        clickCell(host->grid(), 1, 1);
        QTest::keyClick(host->grid(), Qt::Key_Q);
        QWidget* overlay = host->overlay();
        QVERIFY(overlay->isVisible());
        const QRect cellRect = host->grid()->visualRect(host->grid()->currentIndex());
        QCOMPARE(overlay->height(), cellRect.height());
        QVERIFY(overlay->width() < cellRect.width());
        QTest::keyClicks(overlay, u"uoted"_s);
        clickCell(host->grid(), 4, 1);
        QVERIFY(!overlay->isVisible());
        QCOMPARE(host->rule(1), u"quoted"_s);
        QCOMPARE(host->document().dump(1).child(u"NAME"_s).text, u"quoted"_s);
        host->chooseDump(2);
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 2:Second"_s);
        QCOMPARE(host->rule(7), u"line one\r\nline two"_s);
        // A header click sorts; a tick and Ma&p write into the grid.
        clickHeader(host->sourceFields(), 2);
        QCOMPARE(cell(host->sourceFields(), 0, 2), u"srcaa001.born"_s);
        clickCell(host->targetFields(), 2, 3);
        clickCheckBox(host->sourceFields(), 7);
        host->click(u"CmdMap"_s);
        QCOMPARE(host->rule(2), cell(host->sourceFields(), 7, 2));
        QVERIFY(!ticked(host->sourceFields(), 7));
    }

    // The modal boxes are real: the documentation dialog and the input box.
    void realDialogs()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        host->modals.expect(ModalAnswerer::document(true, u"new text"_s));
        host->click(u"CmdPreDoc"_s);
        QCOMPARE(host->modals.records().value(0).title, u"Precondition Text"_s);
        QVERIFY(host->modals.records().value(0).textVisible);
        QCOMPARE(host->document().child(u"PREC"_s).attribute(u"TEXT"_s), u"new text"_s);
        QVERIFY(host->activate());
        host->clickTab(1);
        host->modals.expect(ModalAnswerer::input(QString(), false));
        host->click(u"CmdCopyDump"_s);
        QCOMPARE(host->modals.records().value(1).className, u"QInputDialog"_s);
        QCOMPARE(host->modals.records().value(1).text, u"Please enter the dump number to be copied from: "_s);
    }

    // The Alt shortcuts are the control's whichever of its children has the
    // focus; on "Define Dumps" Alt+P reaches "Ma&p" through its access key.
    void altShortcuts()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        host->clickInto(u"lstSourceTables"_s);
        QVERIFY(keyToFocus(Qt::Key_M, Qt::AltModifier));
        QTRY_VERIFY(host->focusIn(u"txtMainQuery"_s));
        QVERIFY(keyToFocus(Qt::Key_Q, Qt::AltModifier));
        QTRY_VERIFY(host->focusIn(u"lstMigrateSource"_s));
        host->clickTab(1);
        host->clickInto(u"lstTargetFields"_s);
        QVERIFY(keyToFocus(Qt::Key_U, Qt::AltModifier));
        QTRY_VERIFY(host->focusIn(u"CmbDump"_s));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        clickCell(host->targetFields(), 1, 3);
        QVERIFY(keyToFocus(Qt::Key_P, Qt::AltModifier));
        QTRY_COMPARE(host->modals.count(), 1);
        QCOMPARE(host->modals.records().value(0).text, u"Please choose a source field to map"_s);
    }

    // Ctrl+Space completes a field of the listed source tables: one match is
    // written, several are offered in a list on the editor's screen even
    // where the caret lies beyond the screen's edge.
    void completion_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("completed"); // "" when a list is offered
        QTest::newRow("unique match")
            << u"txtPreCondition"_s << u"x = pqrst002.cus"_s << u"x = pqrst002.custno"_s;
        QTest::newRow("any case") << u"txtMainQuery"_s << u"where UVWXY003.STR"_s
                                  << u"where uvwxy003.street"_s;
        QTest::newRow("list beyond the screen")
            << u"txtMainQuery"_s << QString(130, u' ') + u"y = "_s << QString();
    }
    void completion()
    {
        QFETCH(QString, box);
        QFETCH(QString, typed);
        QFETCH(QString, completed);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        host->window->resize(screen.width() + 400, 600);
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        QWidget* editor = host->find(box);
        clickInto(editor);
        QTest::keyClick(editor, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClick(editor, Qt::Key_Return);
        QTest::keyClicks(editor, typed);
        QTest::keyClick(editor, Qt::Key_Space, Qt::ControlModifier);
        auto* list = qobject_cast<QListWidget*>(QApplication::activePopupWidget());
        if (!completed.isEmpty()) {
            QVERIFY(!list);
            QCOMPARE(host->text(box).section(u'\n', -1), completed);
            return;
        }
        QVERIFY(list && list->count() > 1);
        QVERIFY(screen.contains(list->geometry()));
        const QString first = list->item(0)->text();
        QTest::keyClick(list, Qt::Key_Return);
        QTRY_VERIFY(!QApplication::activePopupWidget());
        QCOMPARE(host->text(box).section(u'\n', -1), typed + first);
    }

    // Reading the document writes the export into the temporary folder,
    // named after the table padded to eight characters, its folders encoded.
    void exportOnRead_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("fileName");
        QTest::newRow("the table's name") << u"klmno001"_s << u"klmno001.xml"_s;
        QTest::newRow("a short name keeps its blanks") << u"abc"_s << u"abc     .xml"_s;
        QTest::newRow("folders in the name") << u"../a/b/c"_s << u"..%2Fa%2Fb%2Fc.xml"_s;
    }
    void exportOnRead()
    {
        QFETCH(QString, table);
        QFETCH(QString, fileName);
        QDir(tempDir()).removeRecursively();
        host->load(table, readSample(u"klmno001.xml"_s));
        const QString xml = host->xml();
        QCOMPARE(QDir(tempDir()).entryList(QDir::Files | QDir::Hidden), QStringList{fileName});
        QFile file(tempDir() + fileName);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(file.readAll()), xml);
    }
};

QTEST_MAIN(WiringTest)
#include "tst_wiring.moc"
