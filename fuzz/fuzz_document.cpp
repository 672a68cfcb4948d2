// The mapping object through the pure core, as the control handles it:
// loaded under the root element's name, its scripts scanned, tidied and
// serialised. A serialised document must load again and serialise to the
// same text, and tidying it once more must change nothing.

#include "FuzzSupport.h"
#include "core/document/Interaction.h"
#include "core/document/MappingDocument.h"
#include "core/scripts/ScriptScanner.h"

namespace {

// Scans and tidies as a read of the control does; returns the text handed back.
QString tidied(fb::MappingDocument& doc)
{
    fb::SilentInteraction ui;
    fb::ScriptScanner scanner(doc, ui);
    scanner.ParseMigrateTables(doc.GetPreconditionText());
    scanner.CollectDumpReferences();
    scanner.PruneSections();
    return doc.Serialize();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = fbfuzz::inputText(data, size);
    const QString table = fbfuzz::rootElementName(text);

    fb::MappingDocument doc;
    doc.SetTableName(table);
    if (!doc.LoadXml(text))
        return 0;
    const QString first = tidied(doc);

    fb::MappingDocument again;
    again.SetTableName(table);
    if (!again.LoadXml(first))
        fbfuzz::differs("a serialised document does not load again", first, QString());
    const QString second = again.Serialize();
    if (second != first)
        fbfuzz::differs("loading a serialised document and serialising it changes it", first, second);
    const QString third = tidied(again);
    if (third != first)
        fbfuzz::differs("tidying a tidied document changes it", first, third);
    return 0;
}
