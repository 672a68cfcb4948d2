// The Designer plugin as Qt Designer and QUiLoader use it: found in a plugin
// folder, it creates ctlFieldbridge by class name, alone or inside a form,
// and the widget it makes is a working control driven by property names.
// The folder is FIELDBRIDGE_DESIGNER_PLUGIN_DIR: the build tree's, or an
// installed tree's when the package test runs this program.
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QPluginLoader>
#include <QTabWidget>
#include <QTest>
#include <QUiLoader>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

using namespace Qt::StringLiterals;

namespace {

const QString pluginDir = qEnvironmentVariable("FIELDBRIDGE_DESIGNER_PLUGIN_DIR");

const QByteArray formWithControl = R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>HostForm</class>
 <widget class="QWidget" name="HostForm">
  <layout class="QVBoxLayout" name="layout">
   <item>
    <widget class="ctlFieldbridge" name="mapping">
     <property name="TargetTable"><string>klmno001</string></property>
     <property name="Edit"><bool>true</bool></property>
    </widget>
   </item>
  </layout>
 </widget>
</ui>
)";

} // namespace

class TestDesignerPlugin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void describesTheControl()
    {
        const QStringList plugins = QDir(pluginDir).entryList({u"*.so"_s}, QDir::Files);
        QCOMPARE(plugins.size(), 1);
        QPluginLoader loader(QDir(pluginDir).filePath(plugins.constFirst()));
        QVERIFY2(loader.load(), qPrintable(loader.errorString()));
        auto* widget = qobject_cast<QDesignerCustomWidgetInterface*>(loader.instance());
        QVERIFY(widget);
        QCOMPARE(widget->name(), u"ctlFieldbridge"_s);
        QCOMPARE(widget->includeFile(), u"ctlFieldbridge.h"_s);
        QVERIFY(widget->domXml().contains(u"class=\"ctlFieldbridge\""_s));
        QVERIFY(!widget->toolTip().isEmpty());
    }

    void loaderCreatesAWorkingControl_data()
    {
        QTest::addColumn<bool>("fromForm");
        QTest::newRow("createWidget by class name") << false;
        QTest::newRow("form that names the class") << true;
    }
    void loaderCreatesAWorkingControl()
    {
        QFETCH(bool, fromForm);
        QFile sample(qEnvironmentVariable("FIELDBRIDGE_EXAMPLES") + u"/klmno001.xml"_s);
        QVERIFY(sample.open(QIODevice::ReadOnly));
        QUiLoader loader;
        loader.addPluginPath(pluginDir);
        QVERIFY2(loader.availableWidgets().contains(u"ctlFieldbridge"_s),
                 qPrintable(loader.availableWidgets().join(u' ')));

        QWidget host;
        QWidget* control = nullptr;
        if (fromForm) {
            QBuffer form;
            form.setData(formWithControl);
            QVERIFY(form.open(QIODevice::ReadOnly));
            QWidget* top = loader.load(&form, &host);
            QVERIFY2(top, qPrintable(loader.errorString()));
            control = top->findChild<QWidget*>(u"mapping"_s);
            QVERIFY(control);
            // The form's own property values reached the control.
            QCOMPARE(control->property("TargetTable").toString().trimmed(), u"klmno001"_s);
            QCOMPARE(control->property("Edit").toBool(), true);
        } else {
            control = loader.createWidget(u"ctlFieldbridge"_s, &host, u"mapping"_s);
            QVERIFY(control);
            QCOMPARE(control->objectName(), u"mapping"_s);
            QVERIFY(control->setProperty("Edit", true));
            QVERIFY(control->setProperty("TargetTable", u"klmno001"_s));
        }
        QCOMPARE(QByteArray(control->metaObject()->className()), QByteArray("ctlFieldbridge"));
        QCOMPARE(control->window(), &host);

        QVERIFY(control->setProperty("MappingObjectXML", QString::fromUtf8(sample.readAll())));
        QVERIFY(QMetaObject::invokeMethod(control, "ShowControl"));
        QCOMPARE(control->property("SourceTables").toString(), u"pqrst002,uvwxy003,abcde004"_s);
        QVERIFY(control->findChild<QTabWidget*>(u"MainTab"_s));
    }
};

QTEST_MAIN(TestDesignerPlugin)
#include "tst_designerplugin.moc"
