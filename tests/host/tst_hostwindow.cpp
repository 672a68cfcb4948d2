// fieldbridge-host end to end, with the real control, as a person uses it:
// open a mapping object, press the control's buttons, answer the host's
// dialogs, save, and read the file that was written.
#include "HostWindow.h"
#include "WidgetHarness.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QFile>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>

using namespace fbtest;

namespace {

QString readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

template <typename T>
T* child(QWidget* root, const QString& name)
{
    return root ? root->findChild<T*>(name) : nullptr;
}

QAction* action(HostWindow& window, const char* name)
{
    return window.findChild<QAction*>(QString::fromLatin1(name));
}

void clickButton(QDialog* dialog, QDialogButtonBox::StandardButton which)
{
    auto* box = dialog->findChild<QDialogButtonBox*>(QStringLiteral("buttons"));
    QVERIFY(box);
    QVERIFY(box->button(which));
    QTest::mouseClick(box->button(which), Qt::LeftButton);
}

void doubleClickItem(QListWidget* list, QListWidgetItem* item)
{
    list->scrollToItem(item);
    const QPoint at = list->visualItemRect(item).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

} // namespace

class TestHostWindow : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<HostWindow> m_window;
    std::unique_ptr<fbtest::ModalAnswerer> m_watcher;

    QString copySample(const QString& name, const QString& from = {}, const QString& to = {})
    {
        QString text = readSample(name);
        if (!from.isEmpty()) {
            const qsizetype at = text.indexOf(from);
            if (at < 0)
                return {};
            text.replace(at, from.size(), to);
        }
        const QString path = m_dir->filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
            return {};
        return path;
    }
    void openAndShow(const QString& path)
    {
        QVERIFY(!path.isEmpty());
        QVERIFY(m_window->openFile(path));
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    void clickInControl(const char* name)
    {
        auto* button = child<QAbstractButton>(m_window->control(), QString::fromLatin1(name));
        QVERIFY2(button, name);
        QVERIFY2(button->isEnabled(), name);
        QTest::mouseClick(button, Qt::LeftButton);
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        m_window = std::make_unique<HostWindow>();
        m_watcher = std::make_unique<fbtest::ModalAnswerer>();
    }

    void cleanup()
    {
        const QStringList unexpected = m_watcher->unexpected();
        const int pending = m_watcher->pending();
        m_window.reset();
        m_watcher.reset();
        m_dir.reset();
        QVERIFY2(unexpected.isEmpty(), qPrintable(u"unexpected boxes: "_s + unexpected.join(u", ")));
        QCOMPARE(pending, 0);
    }

    void opensTheBundledSample()
    {
        QVERIFY(m_window->openSample());
        QWidget* control = m_window->control();
        QVERIFY(control);
        QCOMPARE(control->property("TargetTable").toString().trimmed(), u"klmno001"_s);
        QCOMPARE(control->property("Edit").toBool(), true);
        QCOMPARE(control->property("SourceTables").toString(), u"pqrst002,uvwxy003,abcde004"_s);
        QVERIFY(m_window->windowTitle().contains(u"klmno001.xml"_s));
        QVERIFY(m_window->currentFile().isEmpty());
        QVERIFY(!m_window->isModified());
    }

    void builderAnswersReachTheSavedFile_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("dialog");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("attribute");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("prefilled");
        QTest::addColumn<QStringList>("fieldTables");

        QTest::newRow("condition builder answers PreCondition")
            << u"CmdBuildPre"_s << u"ConditionBuilder"_s << u"PREC"_s << QString() << QString()
            << u"| Customer master"_s << QStringList{u"pqrst002"_s, u"uvwxy003"_s, u"abcde004"_s};
        QTest::newRow("query builder answers MainQuery")
            << u"cmdBuildMQ"_s << u"QueryBuilder"_s << u"QUERY"_s << u"ST"_s << u"pqrst002"_s
            << u"select pqrst002.*"_s << QStringList{u"pqrst002"_s};
    }
    void builderAnswersReachTheSavedFile()
    {
        QFETCH(QString, button);
        QFETCH(QString, dialog);
        QFETCH(QString, section);
        QFETCH(QString, attribute);
        QFETCH(QString, value);
        QFETCH(QString, prefilled);
        QFETCH(QStringList, fieldTables);

        const QString path = copySample(u"klmno001.xml"_s);
        openAndShow(path);
        const QString before = parseXml(readAll(path)).child(section, attribute, value).text;
        QVERIFY(!before.isEmpty());

        bool answered = false;
        m_watcher->expect([&](QWidget* modal) {
            QCOMPARE(modal->objectName(), dialog);
            auto* text = child<QPlainTextEdit>(modal, u"txtScript"_s);
            auto* fields = child<QListWidget>(modal, u"lstFields"_s);
            QVERIFY(text && fields);
            QVERIFY2(text->toPlainText().startsWith(prefilled), qPrintable(text->toPlainText()));
            QVERIFY(!text->toPlainText().contains(u'\r'));
            QStringList tablesListed;
            for (int row = 0; row < fields->count(); ++row) {
                const QString table = fields->item(row)->text().section(u'.', 0, 0);
                if (!tablesListed.contains(table))
                    tablesListed.append(table);
            }
            QCOMPARE(tablesListed, fieldTables);

            text->moveCursor(QTextCursor::End);
            QTest::keyClick(text, Qt::Key_Return);
            QTest::keyClicks(text, u"| reviewed "_s);
            const QList<QListWidgetItem*> custno = fields->findItems(u"pqrst002.custno"_s, Qt::MatchExactly);
            QCOMPARE(custno.size(), 1);
            doubleClickItem(fields, custno.constFirst());
            QVERIFY2(text->toPlainText().endsWith(u"\n| reviewed pqrst002.custno"_s), qPrintable(text->toPlainText()));
            clickButton(qobject_cast<QDialog*>(modal), QDialogButtonBox::Ok);
            answered = true;
        });
        clickInControl(button.toLatin1().constData());
        QTRY_VERIFY(answered);
        QVERIFY(m_window->isWindowModified());

        action(*m_window, "actionSave")->trigger();
        QVERIFY(!m_window->isWindowModified());
        const QString saved = readAll(path);
        const XmlElement element = parseXml(saved).child(section, attribute, value);
        QVERIFY(!element.isNull());
        QCOMPARE(element.text, before + u"\n| reviewed pqrst002.custno"_s);
        QVERIFY(!m_window->isModified());
    }

    void sourceTablePickerAnswersSourceTables_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QList<bool>>("ticked");
        QTest::addColumn<int>("toggle");
        QTest::addColumn<QString>("answer");

        QTest::newRow("ticking a defined table adds it")
            << u"pqrst002,uvwxy003"_s << QStringList{u"pqrst002"_s, u"uvwxy003"_s, u"abcde004"_s}
            << QList<bool>{true, true, false} << 2 << u"pqrst002,uvwxy003,abcde004"_s;
        QTest::newRow("a chosen table keeps its spelling")
            << u"pqrst002,uvwxy003,ABCDE004"_s << QStringList{u"pqrst002"_s, u"uvwxy003"_s, u"ABCDE004"_s}
            << QList<bool>{true, true, true} << -1 << u"pqrst002,uvwxy003,ABCDE004"_s;
    }
    void sourceTablePickerAnswersSourceTables()
    {
        QFETCH(QString, stored);
        QFETCH(QStringList, rows);
        QFETCH(QList<bool>, ticked);
        QFETCH(int, toggle);
        QFETCH(QString, answer);

        const QString path = copySample(u"klmno001.xml"_s, u"<SRCTBL>pqrst002,uvwxy003,abcde004</SRCTBL>"_s,
                                        u"<SRCTBL>"_s + stored + u"</SRCTBL>"_s);
        openAndShow(path);

        bool answered = false;
        m_watcher->expect([&](QWidget* modal) {
            QCOMPARE(modal->objectName(), u"SourceTablesDialog"_s);
            auto* list = child<QListWidget>(modal, u"lstTables"_s);
            QVERIFY(list);
            QStringList shown;
            QList<bool> checks;
            for (int row = 0; row < list->count(); ++row) {
                shown.append(list->item(row)->text());
                checks.append(list->item(row)->checkState() == Qt::Checked);
            }
            QCOMPARE(shown, rows);
            QCOMPARE(checks, ticked);
            if (toggle >= 0) {
                list->setFocus();
                list->setCurrentRow(toggle);
                const Qt::CheckState before = list->item(toggle)->checkState();
                QTest::keyClick(list, Qt::Key_Space);
                QVERIFY(list->item(toggle)->checkState() != before);
            }
            clickButton(qobject_cast<QDialog*>(modal), QDialogButtonBox::Ok);
            answered = true;
        });
        clickInControl("CmdSelectSource");
        QTRY_VERIFY(answered);

        QCOMPARE(m_window->control()->property("SourceTables").toString(), answer);
        QCOMPARE(m_window->isModified(), answer != stored);
        QVERIFY(m_window->saveTo(path));
        QCOMPARE(parseXml(readAll(path)).child(u"SRCTBL"_s).text, answer);
    }

    void functionBuilderKeepsMultiLineRules()
    {
        const QString path = copySample(u"klmno001.xml"_s);
        openAndShow(path);
        ctlFieldbridge* control = m_window->control();

        auto* tabs = child<QTabWidget>(control, u"MainTab"_s);
        QVERIFY(tabs);
        QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(1).center());
        QTRY_COMPARE(tabs->currentIndex(), 1);

        auto* grid = child<QAbstractItemView>(control, u"RulesGrid"_s);
        QVERIFY(grid && grid->model());
        QCOMPARE(grid->model()->index(0, 0).data().toString().mid(9), u"custno"_s);
        grid->setCurrentIndex(grid->model()->index(0, 1));

        bool answered = false;
        m_watcher->expect([&](QWidget* modal) {
            QCOMPARE(modal->objectName(), u"FunctionBuilder"_s);
            auto* text = child<QPlainTextEdit>(modal, u"txtScript"_s);
            QVERIFY(text);
            QCOMPARE(text->toPlainText(), u"pqrst002.custno"_s);
            text->selectAll();
            QTest::keyClicks(text, u"if pqrst002.custno > 0 then"_s);
            QTest::keyClick(text, Qt::Key_Return);
            QTest::keyClicks(text, u"return pqrst002.custno"_s);
            QTest::keyClick(text, Qt::Key_Return);
            QTest::keyClicks(text, u"endif"_s);
            clickButton(qobject_cast<QDialog*>(modal), QDialogButtonBox::Ok);
            answered = true;
        });
        clickInControl("CmdFuncBuild");
        QTRY_VERIFY(answered);

        QVERIFY(m_window->saveTo(path));
        const XmlElement rule = parseXml(readAll(path)).dump(1).child(u"CUSTNO"_s);
        QCOMPARE(rule.text, u"if pqrst002.custno > 0 then\nreturn pqrst002.custno\nendif"_s);
        QCOMPARE(rule.attribute(u"TYPE"_s), u"1"_s);
        QCOMPARE(rule.attribute(u"No"_s), u"1"_s);
    }

    void viewModeLocksAndEditModeRebuildsTheControl()
    {
        openAndShow(copySample(u"fghij100.xml"_s));
        QPointer<ctlFieldbridge> first = m_window->control();
        const QString document = first->property("MappingObjectXML").toString();
        QAction* editMode = action(*m_window, "actionEditMode");
        QVERIFY(editMode && editMode->isChecked());

        editMode->trigger();
        QVERIFY(!m_window->editMode());
        QCOMPARE(m_window->control(), first.data());
        QCOMPARE(first->property("Edit").toBool(), false); // the control locks itself
        QVERIFY(m_window->windowTitle().contains(u"read-only"_s));

        editMode->trigger();
        QVERIFY(m_window->editMode());
        ctlFieldbridge* second = m_window->control();
        QVERIFY(second != first.data());
        QTRY_VERIFY(first.isNull());
        QCOMPARE(second->property("Edit").toBool(), true); // a new control: Edit is one way
        QCOMPARE(second->property("MappingObjectXML").toString(), document);
        QVERIFY(!m_window->isModified());
        QVERIFY(!m_window->windowTitle().contains(u"read-only"_s));
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

        openAndShow(copySample(u"klmno001.xml"_s));
        QAction* save = action(*m_window, "actionSave");
        QAction* saveAs = action(*m_window, "actionSaveAs");
        QAction* editMode = action(*m_window, "actionEditMode");
        QVERIFY(save->isEnabled() && saveAs->isEnabled() && editMode->isEnabled());

        clickInControl(open.toLatin1().constData());
        QVERIFY(m_window->saveLocked());
        QVERIFY(!save->isEnabled());
        QVERIFY(!saveAs->isEnabled());
        QVERIFY(!editMode->isEnabled());
        QVERIFY(!m_window->save());

        clickInControl(close.toLatin1().constData());
        QVERIFY(!m_window->saveLocked());
        QVERIFY(save->isEnabled() && saveAs->isEnabled() && editMode->isEnabled());
    }

    void closingAsksAboutUnsavedChanges_data()
    {
        QTest::addColumn<bool>("change");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("closed");
        QTest::addColumn<bool>("written");

        QTest::newRow("no change, no question") << false << int(QMessageBox::NoButton) << true << false;
        QTest::newRow("cancel keeps the window") << true << int(QMessageBox::Cancel) << false << false;
        QTest::newRow("discard closes without writing") << true << int(QMessageBox::Discard) << true << false;
        QTest::newRow("save writes and closes") << true << int(QMessageBox::Save) << true << true;
    }
    void closingAsksAboutUnsavedChanges()
    {
        QFETCH(bool, change);
        QFETCH(int, answer);
        QFETCH(bool, closed);
        QFETCH(bool, written);

        const QString path = copySample(u"klmno001.xml"_s);
        openAndShow(path);
        const QString original = readAll(path);
        if (change) {
            // A change the host did not make itself: only the comparison sees it.
            m_window->control()->setProperty("SourceTables", u"pqrst002,uvwxy003,abcde004,fghij005"_s);
            m_watcher->expect([answer](QWidget* modal) {
                auto* box = qobject_cast<QMessageBox*>(modal);
                QVERIFY(box);
                QCOMPARE(box->objectName(), u"UnsavedChangesBox"_s);
                QVERIFY(box->text().contains(u"klmno001.xml"_s));
                QVERIFY(box->button(QMessageBox::StandardButton(answer)));
                QTest::mouseClick(box->button(QMessageBox::StandardButton(answer)), Qt::LeftButton);
            });
        }
        m_window->close();
        QTRY_COMPARE(m_watcher->pending(), 0);
        QCOMPARE(m_window->isVisible(), !closed);
        const QString now = readAll(path);
        QCOMPARE(now != original, written);
        if (written)
            QVERIFY(parseXml(now).child(u"SRCTBL"_s).text.endsWith(u",fghij005"_s));
        if (!closed) {
            m_watcher->expect([](QWidget* modal) {
                QTest::mouseClick(qobject_cast<QMessageBox*>(modal)->button(QMessageBox::Discard), Qt::LeftButton);
            });
            m_window->close();
            QTRY_VERIFY(!m_window->isVisible());
        }
    }

    void remembersRecentFiles()
    {
        const QString first = copySample(u"klmno001.xml"_s);
        const QString second = copySample(u"fghij100.xml"_s);
        QVERIFY(m_window->openFile(first));
        QVERIFY(m_window->openFile(second));
        QCOMPARE(m_window->recentFiles().mid(0, 2), (QStringList{second, first}));

        // A fresh window offers the same list and opens from it.
        m_window = std::make_unique<HostWindow>();
        auto* recent = m_window->findChild<QMenu*>(u"menuRecent"_s);
        QVERIFY(recent && recent->isEnabled());
        QAction* entry = nullptr;
        for (QAction* a : recent->actions()) {
            if (a->data().toString() == first)
                entry = a;
        }
        QVERIFY(entry);
        entry->trigger();
        QCOMPARE(m_window->currentFile(), first);
        QCOMPARE(m_window->control()->property("TargetTable").toString().trimmed(), u"klmno001"_s);
        QCOMPARE(m_window->recentFiles().constFirst(), first);
    }

    void refusesMalformedFiles()
    {
        const QString good = copySample(u"klmno001.xml"_s);
        QVERIFY(m_window->openFile(good));
        const QString bad = m_dir->filePath(u"broken.xml"_s);
        QFile file(bad);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<abcde001>\n  <PREC>unfinished\n");
        file.close();

        QString message;
        m_watcher->expect([&message](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            QVERIFY(box);
            message = box->text();
            box->button(QMessageBox::Ok)->click();
        });
        QVERIFY(!m_window->openFile(bad));
        QVERIFY2(message.contains(u"broken.xml"_s) && message.contains(u"line"_s), qPrintable(message));
        QCOMPARE(m_window->currentFile(), good);
        QCOMPARE(m_window->control()->property("TargetTable").toString().trimmed(), u"klmno001"_s);
    }
};

int main(int argc, char* argv[])
{
    // Settings and the control's temporary files go to folders of this run.
    QTemporaryDir scratch;
    qputenv("XDG_CONFIG_HOME", scratch.filePath(u"config"_s).toLocal8Bit());
    qputenv("FIELDBRIDGE_TEMP", scratch.filePath(u"temp"_s).toLocal8Bit());
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(u"FieldbridgeTests"_s);
    QCoreApplication::setApplicationName(u"tst_hostwindow"_s);
    TestHostWindow test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_hostwindow.moc"
