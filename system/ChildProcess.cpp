#include "system/ChildProcess.h"

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
pid_t start(const std::string& program, const std::vector<std::string>& words, int handedOver,
            int output)
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

/// Reads until the writer closes, too much is said or the time is up.
ChildAnswer::Outcome readAll(int input, Clock::time_point end, std::size_t bytes, std::string& text)
{
    std::array<char, 1 << 16> piece{};
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0)
            return ChildAnswer::TookTooLong;
        pollfd ready{input, POLLIN, 0};
        constexpr long longestWait = 10000;
        const int polled = poll(&ready, 1, static_cast<int>(std::min<long>(left, longestWait)));
        if (polled <= 0)
            continue;
        const ssize_t count = read(input, piece.data(), piece.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return ChildAnswer::Answered;
        text.append(piece.data(), static_cast<std::size_t>(count));
        if (text.size() > bytes)
            return ChildAnswer::SaidTooMuch;
    }
}

} // namespace

ChildAnswer askChild(const std::string& program, const std::vector<std::string>& words,
                     int handedOver, double seconds, std::size_t bytes)
{
    ChildAnswer answer;
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return answer;
    const pid_t child = start(program, words, handedOver, ends[1]);
    close(ends[1]);
    if (child < 0) {
        close(ends[0]);
        return answer;
    }
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(seconds));
    answer.outcome = readAll(ends[0], end, bytes, answer.text);
    close(ends[0]);
    if (answer.outcome != ChildAnswer::Answered)
        kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (answer.outcome == ChildAnswer::Answered && status != 0) {
        answer.outcome = ChildAnswer::Failed;
        answer.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }
    return answer;
}
