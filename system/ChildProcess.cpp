#include "system/ChildProcess.h"

#include "system/PieceStream.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using Clock = std::chrono::steady_clock;

/// Starts a program whose output goes into a pipe.
/// @return its number; a negative number where it does not start
pid_t startProgram(const std::string& program, const std::vector<std::string>& words,
                   int handedOver, int output)
{
    std::vector<char*> arguments{const_cast<char*>(program.c_str())};
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    if (handedOver >= 0)
        posix_spawn_file_actions_adddup2(&actions, handedOver, STDERR_FILENO + 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    pid_t child = -1;
    if (posix_spawn(&child, program.c_str(), &actions, &attributes, arguments.data(), environ) != 0)
        child = -1;
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

void closeEnd(int& end)
{
    if (end >= 0)
        close(end);
    end = -1;
}

/// A program that runs, what it says, and the memory that it fills.
class Child
{
public:
    Child(const std::string& program, const std::vector<std::string>& words, int handedOver)
    {
        start(program, words, handedOver);
    }
    Child(const std::string& program, const std::vector<std::string>& words,
          const FilledMemory& memory)
        : m_receiver(memory.data, memory.size)
    {
        constexpr int pipeBytes = 1 << 20; // what one may ask for
        std::array<int, 2> ends{-1, -1};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            return;
        fcntl(ends[1], F_SETPIPE_SZ, pipeBytes); // a wish; refusal costs only speed
        m_pieces = ends[0];
        start(program, words, ends[1]);
        close(ends[1]);
        if (m_input < 0)
            closeEnd(m_pieces);
    }

    bool runs() const { return m_input >= 0 || m_pieces >= 0; }
    int input() const { return m_input; }
    int pieces() const { return m_pieces; }
    const ChildAnswer& answer() const { return m_answer; }

    /// Takes what it says.
    void listen(std::size_t bytes)
    {
        std::array<char, 1 << 16> piece{};
        const ssize_t count = read(m_input, piece.data(), piece.size());
        if (count < 0 && errno == EINTR)
            return;
        if (count <= 0) {
            closeEnd(m_input);
            return endWhereSilent();
        }
        m_answer.text.append(piece.data(), static_cast<std::size_t>(count));
        if (m_answer.text.size() > bytes)
            end(ChildAnswer::SaidTooMuch);
    }

    /// Takes what it has of the memory.
    void receive()
    {
        if (m_receiver.receive(m_pieces))
            return;
        closeEnd(m_pieces);
        endWhereSilent();
    }

    /// Waits for its end; before an answer it is ended.
    void end(ChildAnswer::Outcome outcome)
    {
        m_answer.outcome = outcome;
        m_answer.received = m_receiver.received();
        closeEnd(m_input);
        closeEnd(m_pieces);
        if (outcome != ChildAnswer::Answered)
            kill(m_child, SIGKILL);
        int status = 0;
        while (waitpid(m_child, &status, 0) < 0 && errno == EINTR) {
        }
        if (outcome == ChildAnswer::Answered && status != 0) {
            m_answer.outcome = ChildAnswer::Failed;
            m_answer.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        }
    }

private:
    void start(const std::string& program, const std::vector<std::string>& words, int handedOver)
    {
        std::array<int, 2> ends{-1, -1};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            return;
        m_child = startProgram(program, words, handedOver, ends[1]);
        close(ends[1]);
        m_input = ends[0];
        if (m_child < 0)
            closeEnd(m_input);
    }

    /// It has ended where it says and sends no more.
    void endWhereSilent()
    {
        if (!runs())
            end(ChildAnswer::Answered);
    }

    pid_t m_child = -1;
    int m_input = -1;  ///< of what it says
    int m_pieces = -1; ///< of what it sends
    PieceReceiver m_receiver;
    ChildAnswer m_answer;
};

using Children = std::vector<Child>;

/// Listens to all that say or send something.
/// @return false where nobody runs, or the time is up
bool listenToAll(Children& children, Clock::time_point end, std::size_t bytes)
{
    std::vector<pollfd> ends; // two of each; a negative one is passed over
    for (const Child& child : children) {
        ends.push_back({child.input(), POLLIN, 0});
        ends.push_back({child.pieces(), POLLIN, 0});
    }
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    const auto runs = [](const Child& child) { return child.runs(); };
    if (left <= 0 || std::none_of(children.begin(), children.end(), runs))
        return false;
    constexpr long longestWait = 10000;
    if (poll(ends.data(), ends.size(), static_cast<int>(std::min<long>(left, longestWait))) <= 0)
        return true;
    for (std::size_t k = 0; k < children.size(); ++k) {
        if (ends[2 * k + 1].revents != 0)
            children[k].receive();
        if (ends[2 * k].revents != 0 && children[k].input() >= 0)
            children[k].listen(bytes);
    }
    return true;
}

/// Waits for all; those behind one that has a fault are ended.
template <class IsFault>
std::vector<ChildAnswer> answersOf(Children& children, double seconds, std::size_t bytes,
                                   const IsFault& isFault)
{
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(seconds));
    const auto hasFault = [&isFault](const Child& child) {
        return !child.runs() && isFault(child.answer());
    };
    while (listenToAll(children, end, bytes)) {
        const auto fault = std::find_if(children.begin(), children.end(), hasFault);
        for (auto behind = fault; behind != children.end(); ++behind)
            if (behind->runs())
                behind->end(ChildAnswer::Failed);
    }
    std::vector<ChildAnswer> answers;
    for (Child& child : children) {
        if (child.runs())
            child.end(ChildAnswer::TookTooLong);
        answers.push_back(child.answer());
    }
    return answers;
}

} // namespace

ChildAnswer askChild(const std::string& program, const std::vector<std::string>& words,
                     int handedOver, double seconds, std::size_t bytes)
{
    Children children{Child(program, words, handedOver)};
    return answersOf(children, seconds, bytes, [](const ChildAnswer&) { return false; }).front();
}

std::vector<ChildAnswer> askChildren(const std::string& program,
                                     const std::vector<std::vector<std::string>>& words,
                                     const FilledMemory& memory, double seconds, std::size_t bytes,
                                     const std::function<bool(const ChildAnswer&)>& isFault)
{
    Children children;
    for (const std::vector<std::string>& own : words)
        children.emplace_back(program, own, memory);
    return answersOf(children, seconds, bytes, isFault);
}
