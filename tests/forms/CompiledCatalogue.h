#pragma once

#include <QByteArray>
#include <QVector>

/// One section of a compiled catalogue (a .qm file): a tag and its bytes.
struct CatalogueSection {
    quint8 tag;
    QByteArray bytes;
};

constexpr quint8 hashSection = 0x42;
constexpr quint8 messageSection = 0x69;

/// Splits a compiled catalogue into its sections, in their order. Nothing comes back where the
/// magic number is wrong or a section reaches over the end.
QVector<CatalogueSection> catalogueSections(const QByteArray& catalogue);

/// Contexts of the messages of a message section, one for each message. Nothing comes back where
/// the bytes are no message section.
QVector<QByteArray> messageContexts(const QByteArray& messages);
