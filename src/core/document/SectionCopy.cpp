// Copies of the root's children kept outside the document, and putting them
// back: the ground that undo and redo stand on.

#include "MappingDocument_p.h"

namespace fb {

using detail::toPugi;
using detail::utf8;

struct SectionCopy::Data {
    pugi::xml_document holder; // the copy is its only child
};

bool SectionCopy::exists() const
{
    return d && d->holder.first_child();
}

QByteArray SectionCopy::markup() const
{
    struct Writer : pugi::xml_writer {
        QByteArray out;
        void write(const void* data, size_t size) override
        {
            out.append(static_cast<const char*>(data), qsizetype(size));
        }
    } writer;
    if (exists())
        d->holder.first_child().print(writer, "", pugi::format_raw, pugi::encoding_utf8);
    return writer.out;
}

SectionCopy MappingDocument::CopySection(const Node& element) const
{
    SectionCopy copy;
    const pugi::xml_node n = toPugi(element.m_node);
    const pugi::xml_node root = d->doc.document_element();
    if (!n || n.parent() != root)
        return copy;
    auto data = std::make_shared<SectionCopy::Data>();
    data->holder.append_copy(n);
    int position = 0;
    for (pugi::xml_node c = root.first_child(); c != n; c = c.next_sibling())
        ++position;
    copy.d = std::move(data);
    copy.position = position;
    return copy;
}

Node MappingDocument::RestoreSection(const SectionCopy& copy, const Node& current)
{
    pugi::xml_node root = d->doc.document_element();
    pugi::xml_node now = toPugi(current.m_node);
    if (!root || (now && now.parent() != root))
        return Node();
    d->invalidate();
    pugi::xml_node restored;
    if (copy.exists()) {
        const pugi::xml_node source = copy.d->holder.first_child();
        if (now) {
            restored = root.insert_copy_before(source, now);
        } else {
            pugi::xml_node at = root.first_child();
            for (int i = 0; at && i < copy.position; ++i)
                at = at.next_sibling();
            restored = at ? root.insert_copy_before(source, at) : root.append_copy(source);
        }
    }
    if (now)
        root.remove_child(now);
    return Node(restored.internal_object());
}

Node MappingDocument::RootChild(const QString& name, const QString& attrName, const QString& attrValue) const
{
    const std::string n = utf8(name);
    const std::string a = utf8(attrName);
    const std::string v = utf8(attrValue);
    for (pugi::xml_node c = d->doc.document_element().child(n.c_str()); c; c = c.next_sibling(n.c_str()))
        if (a.empty() || v == c.attribute(a.c_str()).value())
            return Node(c.internal_object());
    return Node();
}

} // namespace fb
