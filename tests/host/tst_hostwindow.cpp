// The host window's wiring, with the real control: the control's events
// answered by the host's dialogs, saving locked while a script panel is
// open, the unsaved mark and the question it leads to, the edit/view switch.
#include "HostWindow.h"
#include "WidgetHarness.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>

using namespace fbtest;

namespace {

QString readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void pressOk(QWidget* dialog)
{
    auto* box = dialog->findChild<QDialogButtonBox*>(u"buttons"_s);
    QVERIFY(box && box->button(QDialogButtonBox::Ok));
    QTest::mouseClick(box->button(QDialogButtonBox::Ok), Qt::LeftButton);
}

} // namespace

class TestHostWindow : public QObject {
    Q_OBJECT

    QTemporaryDir m_settings;
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<HostWindow> m_window;
    std::unique_ptr<ModalAnswerer> m_boxes;
    QString m_path;

    QAction* action(const char* name) { return m_window->findChild<QAction*>(QString::fromLatin1(name)); }
    template <typename T = QWidget> T* part(const QString& name)
    {
        return m_window->control()->findChild<T*>(name);
    }
    void click(const QString& name)
    {
        auto* button = part<QAbstractButton>(name);
        QVERIFY2(button && button->isEnabled(), qPrintable(name));
        QTest::mouseClick(button, Qt::LeftButton);
    }

private Q_SLOTS:
    void initTestCase()
    {
        installMessageFilter();
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
        QCoreApplication::setOrganizationName(u"FieldbridgeTests"_s);
    }
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_path = m_dir->filePath(u"klmno001.xml"_s);
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(readSample(u"klmno001.xml"_s).toUtf8()) > 0);
        file.close();
        m_window = std::make_unique<HostWindow>();
        m_boxes = std::make_unique<ModalAnswerer>();
        QVERIFY(m_window->openFile(m_path));
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    void cleanup()
    {
        m_window.reset();
        QVERIFY2(m_boxes->unexpected().isEmpty(), qPrintable(m_boxes->describe()));
        QCOMPARE(m_boxes->pending(), 0);
    }

    void buildersAnswerIntoTheSavedFile_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("dialog");
        QTest::addColumn<QStringList>("element"); // section [attribute value] [rule element]
        QTest::addColumn<QStringList>("fieldTables");

        const QStringList all{u"pqrst002"_s, u"uvwxy003"_s, u"abcde004"_s};
        QTest::newRow("condition builder, PreCondition")
            << u"CmdBuildPre"_s << u"ConditionBuilder"_s << QStringList{u"PREC"_s} << all;
        QTest::newRow("query builder, MainQuery of the migrate table")
            << u"cmdBuildMQ"_s << u"QueryBuilder"_s << QStringList{u"QUERY"_s, u"ST"_s, u"pqrst002"_s}
            << QStringList{u"pqrst002"_s};
        QTest::newRow("function builder, FieldMapping keeps two lines")
            << u"CmdFuncBuild"_s << u"FunctionBuilder"_s
            << QStringList{u"DUMP"_s, u"No"_s, u"1"_s, u"CUSTNO"_s} << all;
    }
    void buildersAnswerIntoTheSavedFile()
    {
        QFETCH(QString, button);
        QFETCH(QString, dialog);
        QFETCH(QStringList, element);
        QFETCH(QStringList, fieldTables);

        const auto find = [&element](const QString& xml) {
            XmlElement e = parseXml(xml).child(element.value(0), element.value(1), element.value(2));
            return element.size() > 3 ? e.child(element.at(3)) : e;
        };
        const QString before = find(readAll(m_path)).text;
        QVERIFY(!before.isEmpty());
        if (element.size() > 3) { // a rule: the first grid row on "Define Dumps"
            auto* tabs = part<QTabWidget>(u"MainTab"_s);
            QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(1).center());
            QTRY_COMPARE(tabs->currentIndex(), 1);
            auto* grid = part<QAbstractItemView>(u"RulesGrid"_s);
            grid->setCurrentIndex(grid->model()->index(0, 1));
        }
        m_boxes->expect([&](QWidget* modal) {
            QCOMPARE(modal->objectName(), dialog);
            auto* text = modal->findChild<QPlainTextEdit*>(u"txtScript"_s);
            auto* fields = modal->findChild<QListWidget*>(u"lstFields"_s);
            QVERIFY(text && fields);
            QCOMPARE(text->toPlainText(), before);
            QStringList tables;
            for (int row = 0; row < fields->count(); ++row)
                tables.append(fields->item(row)->text().section(u'.', 0, 0));
            tables.removeDuplicates();
            QCOMPARE(tables, fieldTables);
            text->moveCursor(QTextCursor::End);
            QTest::keyClick(text, Qt::Key_Return);
            QTest::keyClicks(text, u"| reviewed "_s);
            QListWidgetItem* custno = fields->findItems(u"pqrst002.custno"_s, Qt::MatchExactly).value(0);
            QVERIFY(custno);
            fields->scrollToItem(custno);
            const QPoint at = fields->visualItemRect(custno).center();
            QTest::mouseClick(fields->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(fields->viewport(), Qt::LeftButton, {}, at);
            pressOk(modal);
        });
        click(button);
        QTRY_COMPARE(m_boxes->pending(), 0);
        QVERIFY(m_window->isWindowModified());

        action("actionSave")->trigger();
        QVERIFY(!m_window->isWindowModified());
        const XmlElement saved = find(readAll(m_path));
        QCOMPARE(saved.text, before + u"\n| reviewed pqrst002.custno"_s);
        if (element.size() > 3)
            QCOMPARE(saved.attribute(u"TYPE"_s), u"1"_s);
    }

    void sourceTablePickerAnswersSourceTables()
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(readSample(u"klmno001.xml"_s).replace(u",abcde004<"_s, u"<"_s).toUtf8());
        file.close();
        QVERIFY(m_window->openFile(m_path));
        m_boxes->expect([](QWidget* modal) {
            auto* list = modal->findChild<QListWidget*>(u"lstTables"_s);
            QVERIFY(list);
            QStringList shown;
            for (int row = 0; row < list->count(); ++row)
                shown.append(list->item(row)->text() + (list->item(row)->checkState() ? u" +"_s : u" -"_s));
            QCOMPARE(shown, (QStringList{u"pqrst002 +"_s, u"uvwxy003 +"_s, u"abcde004 -"_s}));
            list->item(2)->setCheckState(Qt::Checked);
            pressOk(modal);
        });
        click(u"CmdSelectSource"_s);
        QTRY_COMPARE(m_boxes->pending(), 0);
        QCOMPARE(m_window->control()->property("SourceTables").toString(), u"pqrst002,uvwxy003,abcde004"_s);
    }

    void saveWaitsForTheScriptPanel_data()
    {
        QTest::addColumn<QString>("open");
        QTest::addColumn<QString>("close");

        QTest::newRow("functions, OK") << u"CmdFunction"_s << u"CmdOk"_s;
        QTest::newRow("variables, Cancel") << u"CmdVariables"_s << u"CmdCancel"_s;
    }
    void saveWaitsForTheScriptPanel()
    {
        QFETCH(QString, open);
        QFETCH(QString, close);

        const QList<QAction*> locked{action("actionSave"), action("actionSaveAs"), action("actionRevert"),
                                     action("actionEditMode")};
        for (int step = 0; step < 2; ++step) {
            click(step == 0 ? open : close);
            QCOMPARE(m_window->saveLocked(), step == 0);
            for (QAction* a : locked)
                QVERIFY2(a->isEnabled() == (step == 1), qPrintable(a->objectName()));
            QCOMPARE(m_window->save(), step == 1);
        }
    }

    void unsavedChangesAreMarkedAndAsked_data()
    {
        QTest::addColumn<QString>("change"); // "", "typed" into the precondition, "assigned" by a host
        QTest::addColumn<bool>("revert");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("closed");
        QTest::addColumn<bool>("written");

        const int none = QMessageBox::NoButton;
        QTest::newRow("no change, no question") << QString() << false << none << true << false;
        QTest::newRow("typed, cancel keeps the window")
            << u"typed"_s << false << int(QMessageBox::Cancel) << false << false;
        QTest::newRow("typed, save writes and closes")
            << u"typed"_s << false << int(QMessageBox::Save) << true << true;
        QTest::newRow("assigned, discard writes nothing")
            << u"assigned"_s << false << int(QMessageBox::Discard) << true << false;
        QTest::newRow("reverted, no question") << u"assigned"_s << true << none << true << false;
    }
    void unsavedChangesAreMarkedAndAsked()
    {
        QFETCH(QString, change);
        QFETCH(bool, revert);
        QFETCH(int, answer);
        QFETCH(bool, closed);
        QFETCH(bool, written);

        const QString original = readAll(m_path);
        if (change == u"typed") {
            auto* box = part(u"txtPreCondition"_s);
            clickInto(box);
            QVERIFY(keyToFocus(Qt::Key_End, Qt::ControlModifier));
            QVERIFY(!m_window->isWindowModified());
            typeText(box, u"\n| x"_s);
            QTRY_VERIFY(m_window->isWindowModified());
        } else if (!change.isEmpty()) {
            // A change the host did not make itself: only the comparison sees it.
            m_window->control()->setProperty("SourceTables", u"pqrst002,uvwxy003,abcde004,fghij005"_s);
            QVERIFY(!m_window->isWindowModified());
        }
        if (revert) {
            m_boxes->expect([](QWidget* modal) {
                QCOMPARE(modal->objectName(), u"RevertBox"_s);
                ModalAnswerer::press(QMessageBox::Discard)(modal);
            });
            action("actionRevert")->trigger();
            QCOMPARE(m_window->control()->SourceTables(), u"pqrst002,uvwxy003,abcde004"_s);
        }
        if (answer != QMessageBox::NoButton) {
            m_boxes->expect([answer](QWidget* modal) {
                QCOMPARE(modal->objectName(), u"UnsavedChangesBox"_s);
                ModalAnswerer::press(QMessageBox::StandardButton(answer))(modal);
            });
        }
        m_window->close();
        QTRY_COMPARE(m_boxes->pending(), 0);
        QCOMPARE(m_window->isVisible(), !closed);
        QCOMPARE(readAll(m_path) != original, written);
        if (!closed) {
            m_boxes->expect(ModalAnswerer::press(QMessageBox::Discard));
            m_window->close();
        }
    }

    void viewModeLocksAndEditModeRebuildsTheControl()
    {
        QPointer<ctlFieldbridge> first = m_window->control();
        const QString document = first->MappingObjectXML();
        action("actionEditMode")->trigger();
        QCOMPARE(m_window->control(), first.data());
        QCOMPARE(first->property("Edit").toBool(), false);
        QVERIFY(m_window->windowTitle().contains(u"read-only"_s));

        action("actionEditMode")->trigger();
        QVERIFY(m_window->control() != first.data());
        QTRY_VERIFY(first.isNull());
        QCOMPARE(m_window->control()->property("Edit").toBool(), true);
        QCOMPARE(m_window->control()->MappingObjectXML(), document);
        QVERIFY(!m_window->windowTitle().contains(u"read-only"_s));
    }

    // Saving would drop a dump that holds rules but that no script names any
    // more: the host lists it and asks; Cancel writes nothing, Save writes
    // the document indented and keeps the previous file as a backup.
    void saveAsksBeforeRemovingWork()
    {
        QString text = readAll(m_path);
        text.replace(u"</klmno001>"_s,
                     u"<DUMP No=\"7\"><CUSTNO No=\"1\">kept.rule</CUSTNO></DUMP></klmno001>"_s);
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(text.toUtf8()) > 0);
        file.close();
        QVERIFY(m_window->openFile(m_path));
        m_boxes->expect(ModalAnswerer::press(QMessageBox::Cancel));
        QVERIFY(!m_window->save());
        QCOMPARE(m_boxes->records().value(0).text,
                 u"Saving removes work that no script references any more:"_s);
        QCOMPARE(readAll(m_path), text);
        m_boxes->expect(ModalAnswerer::press(QMessageBox::Save));
        QVERIFY(m_window->save());
        QVERIFY(!readAll(m_path).contains(u"kept.rule"_s));
        QVERIFY(readAll(m_path).contains(u"\n  <DUMP No=\"1\""_s));
        QCOMPARE(readAll(HostDocument::backupPath(m_path)), text);
        QVERIFY(m_window->save()); // nothing left to ask about
    }

    void editMenuUndoesTheControlsSteps()
    {
        part<QTabWidget>(u"MainTab"_s)->setCurrentIndex(1);
        const QStringList before = rows(part<QAbstractItemView>(u"RulesGrid"_s), 1);
        m_boxes->expect(ModalAnswerer::press(QMessageBox::Yes));
        click(u"CmdGuess"_s);
        QVERIFY(action("actionUndo")->isEnabled());
        QVERIFY2(action("actionUndo")->text().contains(u"Guess: "_s),
                 qPrintable(action("actionUndo")->text()));
        action("actionUndo")->trigger();
        QCOMPARE(rows(part<QAbstractItemView>(u"RulesGrid"_s), 1), before);
        QVERIFY(action("actionRedo")->isEnabled());
        m_window->activateWindow(); // offscreen, no window is active again after a modal box
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        action("actionFind")->trigger();
        QVERIFY(part(u"txtFindTarget"_s)->hasFocus());
    }

    // The report comes from the control's document, not from the file: a dump
    // the precondition names only in the control is in every format.
    void exportWritesTheReport_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("filter"); // HTML, Markdown, CSV
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("begins");
        QTest::newRow("the chosen filter adds its suffix")
            << u"signoff"_s << 0 << u"signoff.html"_s << u"<!DOCTYPE html>"_s;
        QTest::newRow("markdown") << u"signoff"_s << 1 << u"signoff.md"_s << u"# Mapping report: klmno001"_s;
        QTest::newRow("the suffix typed wins over the filter")
            << u"signoff.csv"_s << 0 << u"signoff.csv"_s << u"\uFEFFDump,"_s;
        QTest::newRow("a name ending in a dot")
            << u"signoff."_s << 0 << u"signoff.html"_s << u"<!DOCTYPE html>"_s;
        // Typed alone, as a name in the folder shown; Qt takes ":" for the
        // start of a resource path.
        QTest::newRow("a name beginning with a colon")
            << u":signoff"_s << 1 << u":signoff.md"_s << u"# Mapping report: klmno001"_s;
    }
    void exportWritesTheReport()
    {
        QFETCH(QString, typed);
        QFETCH(int, filter);
        QFETCH(QString, written);
        QFETCH(QString, begins);
        ctlFieldbridge* control = m_window->control();
        control->setProperty("PreCondition", control->PreCondition() + u"\ndump 9 Signed off"_s);
        m_boxes->expect([&](QWidget* modal) {
            auto* dialog = qobject_cast<QFileDialog*>(modal);
            QVERIFY(dialog);
            dialog->setDirectory(m_dir->path());
            dialog->selectNameFilter(dialog->nameFilters().value(filter));
            auto* name = dialog->findChild<QLineEdit*>(u"fileNameEdit"_s);
            QVERIFY(name);
            name->selectAll();
            QTest::keyClicks(name, typed.startsWith(u':') ? typed : m_dir->filePath(typed));
            static_cast<QDialog*>(dialog)->accept(); // QFileDialog::accept(), as the Save button does
        });
        action("actionExportReport")->trigger();
        QTRY_COMPARE(m_boxes->pending(), 0);
        QFile file(m_dir->path() + u'/' + written); // filePath() would take ":" for a resource
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll(); // as written: a byte-order mark included
        QVERIFY2(bytes.startsWith(begins.toUtf8()), bytes.left(80).constData());
        QVERIFY(bytes.contains("Signed off"));
    }

    // The file proposed is named after the root element beside the document;
    // a leading ":" (a resource path to Qt) is left out.
    void exportProposesTheRootName()
    {
        const QString path = m_dir->filePath(u"colon.xml"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<:bcdefgh><SRCTBL/><PREC/></:bcdefgh>");
        file.close();
        QVERIFY(m_window->openFile(path));
        QString proposed;
        m_boxes->expect([&](QWidget* modal) {
            auto* dialog = qobject_cast<QFileDialog*>(modal);
            QVERIFY(dialog);
            proposed = dialog->selectedFiles().value(0);
            dialog->reject();
        });
        action("actionExportReport")->trigger();
        QTRY_COMPARE(m_boxes->pending(), 0);
        QCOMPARE(proposed, m_dir->path() + u"/bcdefgh.html"_s);
    }

    void exportFailureIsShown()
    {
        m_boxes->expect(ModalAnswerer::press(QMessageBox::Ok));
        QVERIFY(!m_window->exportReportTo(m_path + u"/signoff.html"_s, fb::ReportFormat::Html));
        QTRY_COMPARE(m_boxes->pending(), 0);
        QCOMPARE(m_boxes->records().value(0).icon, QMessageBox::Critical);
        QVERIFY(m_boxes->records().value(0).text.contains(m_path));
    }

    void opensFromTheRecentMenu()
    {
        QVERIFY(m_window->openSample());
        auto* menu = m_window->findChild<QMenu*>(u"menuRecent"_s);
        QVERIFY(menu && !menu->actions().isEmpty());
        QCOMPARE(menu->actions().constFirst()->data().toString(), m_path);
        menu->actions().constFirst()->trigger();
        QCOMPARE(m_window->document().path(), m_path);
    }
};

QTEST_MAIN(TestHostWindow)
#include "tst_hostwindow.moc"
