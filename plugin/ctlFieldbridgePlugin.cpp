#include "ctlFieldbridgePlugin.h"

#include <QIcon>
#include <ctlFieldbridge.h>

ctlFieldbridgePlugin::ctlFieldbridgePlugin(QObject* parent) : QObject(parent) {}

QString ctlFieldbridgePlugin::name() const
{
    return QStringLiteral("ctlFieldbridge");
}

QString ctlFieldbridgePlugin::group() const
{
    return QStringLiteral("VelkPrjFieldbridge");
}

QString ctlFieldbridgePlugin::toolTip() const
{
    return QStringLiteral("Mapping object editor");
}

QString ctlFieldbridgePlugin::whatsThis() const
{
    return QStringLiteral("Edits a data-migration mapping object: source tables, precondition, main queries, "
                          "functions, variables and the rules of every dump. Assign Edit, TargetTable and "
                          "MappingObjectXML, call ShowControl, answer the builder signals and read "
                          "MappingObjectXML back.");
}

QString ctlFieldbridgePlugin::includeFile() const
{
    return QStringLiteral("ctlFieldbridge.h");
}

QIcon ctlFieldbridgePlugin::icon() const
{
    return {};
}

bool ctlFieldbridgePlugin::isContainer() const
{
    return false;
}

QWidget* ctlFieldbridgePlugin::createWidget(QWidget* parent)
{
    return new ctlFieldbridge(parent);
}

bool ctlFieldbridgePlugin::isInitialized() const
{
    return m_initialized;
}

void ctlFieldbridgePlugin::initialize(QDesignerFormEditorInterface* /*core*/)
{
    m_initialized = true;
}

QString ctlFieldbridgePlugin::domXml() const
{
    return QStringLiteral("<ui language=\"c++\">\n"
                          " <widget class=\"ctlFieldbridge\" name=\"fieldbridge\">\n"
                          "  <property name=\"geometry\">\n"
                          "   <rect><x>0</x><y>0</y><width>640</width><height>480</height></rect>\n"
                          "  </property>\n"
                          " </widget>\n"
                          "</ui>\n");
}
