#include "tests/forms/CompiledCatalogue.h"

#include <QDataStream>

namespace
{

const QByteArray magic = QByteArray::fromHex("3cb86418caef9c95cd211cbf60a1bddd");

// Fields of a message; the end has no bytes, the others a length and that many bytes.
enum MessageField : quint8 { End = 1, Translation = 3, SourceText = 6, Context = 7, Comment = 8 };

/// Bytes of the next field that carries a length; an absent text has the length -1.
QByteArray readField(QDataStream& in)
{
    qint32 length = 0;
    in >> length;
    QByteArray bytes(qMax(length, 0), '\0');
    if (in.readRawData(bytes.data(), bytes.size()) != bytes.size())
        in.setStatus(QDataStream::ReadPastEnd);
    return bytes;
}

} // namespace

QVector<CatalogueSection> catalogueSections(const QByteArray& catalogue)
{
    if (!catalogue.startsWith(magic))
        return {};
    QDataStream in(catalogue);
    in.skipRawData(magic.size());
    QVector<CatalogueSection> sections;
    while (!in.atEnd()) {
        CatalogueSection section{};
        in >> section.tag;
        section.bytes = readField(in);
        sections.append(section);
    }
    return in.status() == QDataStream::Ok ? sections : QVector<CatalogueSection>();
}

QVector<QByteArray> messageContexts(const QByteArray& messages)
{
    QDataStream in(messages);
    QVector<QByteArray> contexts;
    QByteArray context;
    while (!in.atEnd() && in.status() == QDataStream::Ok) {
        quint8 field = 0;
        in >> field;
        if (field == End) {
            contexts.append(context);
            context.clear();
            continue;
        }
        const QByteArray bytes = readField(in);
        if (field == Context)
            context = bytes;
        else if (field != Translation && field != SourceText && field != Comment)
            return {};
    }
    return in.status() == QDataStream::Ok ? contexts : QVector<QByteArray>();
}
