#pragma once

#include "system/ByteSource.h"

#include <QByteArray>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>

/// A SHA-256 digest.
using Digest = std::array<unsigned char, 32>;

/// SHA-256 of bytes that come in pieces.
///
/// Nettle uses the processor's own instructions: 1.6 GB/s, QCryptographicHash 0.2 GB/s
/// (bench_Record --benchmark_filter=digest). OpenSSL is as quick, and 15 times the size to load.
class Hasher
{
public:
    Hasher();
    ~Hasher();
    Hasher(const Hasher&) = delete;
    Hasher& operator=(const Hasher&) = delete;

    void add(const void* bytes, std::size_t size);
    void add(const QByteArray& bytes);
    /// A text with its length before it, so that what follows cannot be taken for a part of it.
    void addText(const QByteArray& text);

    /// Of all that was added since the beginning or the last digest.
    Digest digest();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

Digest digestOf(const QByteArray& bytes);

/// @return nothing where not all can be read
std::optional<Digest> digestOf(const ByteSource& bytes);

/// The bytes of a digest, and back; nothing from bytes of another number.
QByteArray toBytes(const Digest& digest);
std::optional<Digest> fromBytes(const QByteArray& bytes);
