#include "formats/StackProcess.h"

#include "system/AvailableMemory.h"
#include "system/ChildProcess.h"
#include "system/Workers.h"
#include "text/TextBytes.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

/// Small memory is taken without asking how much there is.
constexpr std::size_t smallMemory = std::size_t{1} << 26;

/// Energies of some hundred thousand frames.
constexpr std::size_t longestAnswer = std::size_t{1} << 23;

struct Program {
    QString path;
    StackLimits limits;
};

Program& program()
{
    static Program program;
    return program;
}

QString foundProgram()
{
    const QString folder = QCoreApplication::applicationDirPath();
    for (const char* const place : {"/drovik-stack", "/../libexec/drovik/drovik-stack"})
        if (QFile::exists(folder + QLatin1String(place)))
            return folder + QLatin1String(place);
    return QStringLiteral("drovik-stack");
}

/// The toolkit finds out the folder of this program when it is first asked, for one thread only.
QString programPath()
{
    static const QString found = foundProgram();
    return program().path.isEmpty() ? found : program().path;
}

QString failureText(const ChildAnswer& answer, double seconds)
{
    switch (answer.outcome) {
    case ChildAnswer::NotStarted:
        return QStringLiteral("cannot be read: the program drovik-stack does not start");
    case ChildAnswer::TookTooLong:
        return QStringLiteral("takes longer than %1 s to read; it may be damaged").arg(seconds);
    case ChildAnswer::SaidTooMuch:
        return QStringLiteral("says more of itself than any stack does");
    default:
        return QStringLiteral("makes its reader fail; it is damaged");
    }
}

StackWords wordsOf(const std::string& text)
{
    StackWords words;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        const std::size_t tab = std::min(line.find('\t'), line.size());
        words.values.emplace(line.substr(0, tab), line.substr(std::min(tab + 1, line.size())));
        begin = end + 1;
    }
    return words;
}

bool isRoomFor(std::size_t bytes)
{
    return bytes > 0 && (bytes <= smallMemory || bytes <= availableMemory());
}

/// Adds the limits of a process to what it is asked.
/// @return the seconds that it may take
double addLimits(std::size_t bytes, std::size_t copied, std::vector<std::string>& words)
{
    const StackLimits& limits = program().limits;
    const double seconds = limits.seconds + static_cast<double>(bytes + copied) /
                                                static_cast<double>(limits.bytesASecond);
    words.push_back("seconds=" + std::to_string(static_cast<long>(seconds) + 1));
    words.push_back("memory=" + std::to_string(limits.memory + 2 * bytes));
    return seconds;
}

/// @return why it is none
std::optional<FileFault> takeAnswer(const QString& path, const ChildAnswer& said, double seconds,
                                    StackWords& answer)
{
    answer = wordsOf(said.text);
    if (said.outcome != ChildAnswer::Answered)
        return FileFault{path, 0, failureText(said, seconds)};
    if (answer.values.count("refused") > 0)
        return FileFault{path, 0, textFromUtf8(answer.value("refused"))};
    if (answer.values.count("done") == 0)
        return FileFault{path, 0, failureText({ChildAnswer::Failed, 0, {}, 0}, seconds)};
    return std::nullopt;
}

} // namespace

void setStackProgram(const QString& path, const StackLimits& limits)
{
    program() = {path, limits};
}

bool mayReadRaw()
{
    return !program().limits.alwaysAsked;
}

PixelMemory::PixelMemory(std::size_t bytes) : m_bytes(bytes)
{
    if (!isRoomFor(bytes))
        return;
    m_descriptor = memfd_create("pixels", MFD_CLOEXEC);
    if (m_descriptor < 0 || ftruncate(m_descriptor, static_cast<off_t>(bytes)) != 0)
        return;
    void* const memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, m_descriptor, 0);
    if (memory != MAP_FAILED)
        m_data = static_cast<char*>(memory);
}

PixelMemory::~PixelMemory()
{
    if (m_data != nullptr)
        munmap(m_data, m_bytes);
    if (m_descriptor >= 0)
        close(m_descriptor);
}

long StackWords::number(const std::string& key, std::size_t at) const
{
    return std::strtol(value(key, at).c_str(), nullptr, 10);
}

std::optional<FileFault> askStackProcess(const QString& path, std::vector<std::string> words,
                                         const PixelMemory* pixels, StackWords& answer,
                                         std::size_t copied)
{
    const std::size_t bytes = pixels != nullptr ? pixels->size() : 0;
    const double seconds = addLimits(bytes, copied, words);
    const ChildAnswer said =
        askChild(QFile::encodeName(programPath()).toStdString(), words,
                 pixels != nullptr ? pixels->descriptor() : -1, seconds, longestAnswer);
    return takeAnswer(path, said, seconds, answer);
}

std::shared_ptr<PixelArray<char>> pixelsToCome(std::size_t bytes)
{
    auto pixels = std::make_shared<PixelArray<char>>();
    return isRoomFor(bytes) && pixels->resize(bytes) ? pixels : nullptr;
}

std::optional<FileFault> askForPixels(const QString& path, const std::vector<std::string>& words,
                                      PixelArray<char>& pixels, const Workers* workers,
                                      StackWords& answer)
{
    const std::size_t bytesAProcess = std::max<std::size_t>(1, program().limits.bytesAProcess);
    const std::size_t count =
        std::clamp<std::size_t>(pixels.size() / bytesAProcess, 1, workers ? workers->size() : 1);
    std::vector<std::vector<std::string>> shares(count, words);
    double seconds = 0.0;
    for (std::size_t k = 0; k < count; ++k) {
        shares[k].push_back("bytes=" + std::to_string(pixels.size()));
        shares[k].push_back("share=" + std::to_string(k) + '/' + std::to_string(count));
        seconds = addLimits(pixels.size(), 0, shares[k]);
    }
    const auto isFault = [&](const ChildAnswer& said) {
        StackWords its;
        return takeAnswer(path, said, seconds, its).has_value();
    };
    const std::vector<ChildAnswer> said =
        askChildren(QFile::encodeName(programPath()).toStdString(), shares,
                    {pixels.data(), pixels.size()}, seconds, longestAnswer, isFault);
    const auto fault = std::find_if(said.begin(), said.end(), isFault);
    if (fault != said.end())
        return takeAnswer(path, *fault, seconds, answer);
    std::size_t received = 0;
    for (const ChildAnswer& share : said)
        received += share.received;
    if (received != pixels.size())
        return FileFault{path, 0, failureText({ChildAnswer::Failed, 0, {}, 0}, seconds)};
    return takeAnswer(path, said.front(), seconds, answer);
}

WriteOutcome writeByStackProcess(const QString& path, std::vector<std::string> words,
                                 const PixelMemory& pixels, std::size_t copied)
{
    SafeFile file(path);
    if (!pixels.isThere() || !file.open())
        return WriteOutcome::CannotOpen;
    words.push_back("file=" + QFile::encodeName(file.beside()).toStdString());
    StackWords answer;
    const bool written = !file.beside().isEmpty() &&
                         !askStackProcess(path, words, &pixels, answer, copied) && file.commit();
    return written ? WriteOutcome::Written : WriteOutcome::CannotWrite;
}
