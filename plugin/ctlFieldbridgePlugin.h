#pragma once

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

// Makes ctlFieldbridge known to Qt Designer and to QUiLoader under its class
// name, in the widget box group "VelkPrjFieldbridge".
class ctlFieldbridgePlugin : public QObject, public QDesignerCustomWidgetInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetInterface")
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    explicit ctlFieldbridgePlugin(QObject* parent = nullptr);

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override;
    QWidget* createWidget(QWidget* parent) override;
    bool isInitialized() const override;
    void initialize(QDesignerFormEditorInterface* core) override;
    QString domXml() const override;

private:
    bool m_initialized = false;
};
