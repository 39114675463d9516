#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

/// Memory for large arrays, straight from the system: not touched before it is written, in large
/// pages where there are any, and given back as soon as it is released.
/// @return nullptr where the system refuses
void* allocatePixels(std::size_t bytes) noexcept;
void releasePixels(void* memory, std::size_t bytes) noexcept;

/// One number (or a few) for each pixel of a map. Unlike a vector it leaves new elements as they
/// are: an array of millions of numbers that is about to be written need not be zeroed before.
/// Making and filling one of a million numbers takes an eighth of the time of a std::vector with a
/// default-initialising allocator, of four million a fifth; of 65536 it takes 1.2 times as long
/// (bench_Libraries --benchmark_filter=fillArray).
template <class T>
class PixelArray
{
    static_assert(std::is_trivially_copyable<T>::value, "elements are copied as bytes");

public:
    PixelArray() = default;
    PixelArray(PixelArray&& other) noexcept { swap(other); }
    PixelArray& operator=(PixelArray&& other) noexcept
    {
        PixelArray moved(std::move(other));
        swap(moved);
        return *this;
    }
    PixelArray(const PixelArray&) = delete;
    PixelArray& operator=(const PixelArray&) = delete;
    ~PixelArray() { releasePixels(m_data, m_capacity * sizeof(T)); }

    std::size_t size() const { return m_size; }
    std::size_t capacity() const { return m_capacity; }
    bool empty() const { return m_size == 0; }
    T* data() { return m_data; }
    const T* data() const { return m_data; }
    T& operator[](std::size_t i) { return m_data[i]; }
    const T& operator[](std::size_t i) const { return m_data[i]; }
    T* begin() { return m_data; }
    T* end() { return m_data + m_size; }
    const T* begin() const { return m_data; }
    const T* end() const { return m_data + m_size; }

    /// Room for n elements; the present ones stay. False, and no change, where the memory is
    /// refused.
    bool reserve(std::size_t n);
    /// n elements; new ones are not set. False, and no change, where the memory is refused.
    bool resize(std::size_t n)
    {
        if (!reserve(n))
            return false;
        m_size = n;
        return true;
    }
    /// Appends n elements. False, and no change, where the memory is refused.
    bool append(const T* first, std::size_t n);
    void clear() { m_size = 0; }
    void swap(PixelArray& other) noexcept
    {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
    }

private:
    T* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

template <class T>
bool PixelArray<T>::reserve(std::size_t n)
{
    if (n <= m_capacity)
        return true;
    if (n > static_cast<std::size_t>(-1) / 2 / sizeof(T))
        return false;
    PixelArray grown;
    grown.m_data = static_cast<T*>(allocatePixels(n * sizeof(T)));
    if (grown.m_data == nullptr)
        return false;
    grown.m_capacity = n;
    grown.m_size = m_size;
    for (std::size_t i = 0; i < m_size; ++i)
        grown.m_data[i] = m_data[i];
    swap(grown);
    return true;
}

template <class T>
bool PixelArray<T>::append(const T* first, std::size_t n)
{
    if (m_size + n > m_capacity && !reserve(m_size + n + (m_size + n) / 4))
        return false;
    for (std::size_t i = 0; i < n; ++i)
        m_data[m_size + i] = first[i];
    m_size += n;
    return true;
}
