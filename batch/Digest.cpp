#include "batch/Digest.h"

#include <algorithm>
#include <cstring>
#include <nettle/sha2.h>
#include <vector>

struct Hasher::State {
    sha256_ctx context{};
};

Hasher::Hasher() : m_state(std::make_unique<State>())
{
    sha256_init(&m_state->context);
}

Hasher::~Hasher() = default;

void Hasher::add(const void* bytes, std::size_t size)
{
    sha256_update(&m_state->context, size, static_cast<const std::uint8_t*>(bytes));
}

void Hasher::add(const QByteArray& bytes)
{
    add(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

void Hasher::addText(const QByteArray& text)
{
    add(QByteArray::number(text.size()) + ':');
    add(text);
}

Digest Hasher::digest()
{
    Digest digest{};
    sha256_digest(&m_state->context, digest.size(), digest.data());
    return digest;
}

Digest digestOf(const QByteArray& bytes)
{
    Hasher hasher;
    hasher.add(bytes);
    return hasher.digest();
}

std::optional<Digest> digestOf(const ByteSource& bytes)
{
    constexpr std::int64_t pieceBytes = std::int64_t{1} << 18;
    Hasher hasher;
    std::vector<char> piece(static_cast<std::size_t>(std::min(pieceBytes, bytes.size())));
    for (std::int64_t at = 0; at < bytes.size(); at += pieceBytes) {
        const auto size = static_cast<std::size_t>(std::min(pieceBytes, bytes.size() - at));
        if (!bytes.read(piece.data(), size, at))
            return std::nullopt;
        hasher.add(piece.data(), size);
    }
    return hasher.digest();
}

QByteArray toBytes(const Digest& digest)
{
    return {reinterpret_cast<const char*>(digest.data()), static_cast<int>(digest.size())};
}

std::optional<Digest> fromBytes(const QByteArray& bytes)
{
    Digest digest{};
    if (static_cast<std::size_t>(bytes.size()) != digest.size())
        return std::nullopt;
    std::memcpy(digest.data(), bytes.constData(), digest.size());
    return digest;
}
