#pragma once

#include <cstdio>
#include <string>
#include <vector>

/// What the reader of stacks is asked, and answers, as lines "key<TAB>value": the words that follow
/// its name on the command line, and what it writes. Pixels that it reads are sent (PixelSender.h),
/// those that it writes lie in memory that both share.
namespace stack_words
{

constexpr int sharedMemory = 3; ///< descriptor of the memory that pixels lie in

inline std::string line(const std::string& key, std::string value)
{
    for (char& c : value)
        if (c == '\n' || c == '\t' || c == '\r')
            c = ' ';
    return key + '\t' + value + '\n';
}

/// Says something at once: it is known whatever becomes of the rest.
inline void tell(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

/// Where a mean in double precision lies behind other pixels.
constexpr std::size_t evenly(std::size_t offset)
{
    return (offset + sizeof(double) - 1) / sizeof(double) * sizeof(double);
}

} // namespace stack_words

/// A request: which file, and what of it.
struct StackRequest {
    std::vector<std::string> words;

    /// The value of "key=value"; empty where there is none.
    std::string value(const std::string& key) const
    {
        for (const std::string& word : words)
            if (word.compare(0, key.size() + 1, key + '=') == 0)
                return word.substr(key.size() + 1);
        return {};
    }
    /// All values of a key, in their order.
    std::vector<std::string> values(const std::string& key) const
    {
        std::vector<std::string> found;
        for (const std::string& word : words)
            if (word.compare(0, key.size() + 1, key + '=') == 0)
                found.push_back(word.substr(key.size() + 1));
        return found;
    }
};
