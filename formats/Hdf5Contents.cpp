#include "formats/Hdf5Contents.h"

#include "formats/Hdf5File.h"
#include "formats/StackFault.h"

namespace
{

constexpr int deepestGroup = 8;
constexpr int mostObjects = 2000; ///< that are looked at
constexpr int mostSets = 200;

/// Goes through the groups of a file. Groups may lie in themselves, so that both counts end it.
class Contents
{
public:
    explicit Contents(const Hdf5File& file) : m_file(file) {}

    void add(const std::string& group, int depth)
    {
        for (const std::string& name : m_file.names(group)) {
            if (m_sets >= mostSets || ++m_objects > mostObjects)
                return;
            const std::string path = group + name;
            try {
                if (!m_file.isGroup(path))
                    addSet(path, describe(m_file.data(path)));
                else if (depth < deepestGroup)
                    add(path + '/', depth + 1);
            } catch (const StackFault& fault) {
                const std::string reason = fault.what();
                const bool named = reason.compare(0, path.size(), path) == 0;
                addSet(path, named ? reason.substr(path.size()) : ": " + reason);
            }
        }
    }

    const std::string& lines() const { return m_lines; }

private:
    void addSet(const std::string& path, const std::string& what)
    {
        ++m_sets;
        m_lines += stack_words::line("set", path + what);
    }

    static std::string describe(const Hdf5Data& data)
    {
        std::string size;
        for (const hsize_t n : data.size)
            size += (size.empty() ? "" : " x ") + std::to_string(n);
        return ": " + (size.empty() ? "one number" : size) + ", " + nameOf(data.type);
    }

    const Hdf5File& m_file;
    std::string m_lines;
    int m_objects = 0;
    int m_sets = 0;
};

} // namespace

std::string contentsOfHdf5(const StackRequest& request)
{
    const Hdf5File file(request.value("file"));
    Contents contents(file);
    contents.add("/", 0);
    return contents.lines();
}
