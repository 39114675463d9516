#include "tests/forms/CatalogueText.h"

#include <QFile>
#include <QXmlStreamReader>

namespace
{

CatalogueEntry readMessage(QXmlStreamReader& xml, const QString& context)
{
    CatalogueEntry entry;
    entry.context = context;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("source")) {
            entry.source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            entry.finished = !xml.attributes().hasAttribute(QLatin1String("type"));
            entry.translation = xml.readElementText();
        } else {
            xml.skipCurrentElement();
        }
    }
    return entry;
}

void readContext(QXmlStreamReader& xml, QVector<CatalogueEntry>& entries)
{
    QString context;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("name"))
            context = xml.readElementText();
        else if (xml.name() == QLatin1String("message"))
            entries.append(readMessage(xml, context));
        else
            xml.skipCurrentElement();
    }
}

} // namespace

QVector<CatalogueEntry> readCatalogueText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    QVector<CatalogueEntry> entries;
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("TS"))
        return {};
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("context"))
            readContext(xml, entries);
        else
            xml.skipCurrentElement();
    }
    return xml.hasError() ? QVector<CatalogueEntry>() : entries;
}
