// SPDX-License-Identifier: MIT
// Runs a program, or several copies of it in parallel, and prints what they used:
//   bench_launch COPIES PROGRAM [ARGUMENT...]
// prints, on one line: milliseconds from the start until the last byte of standard output had been
// read and until the end, processor time of all in milliseconds, the peak memory of the largest in
// KiB, bytes and lines that were read, and how many copies failed.
//
// This program is small, because the reported peak memory of a started program is never below that
// of its parent.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

double milliseconds(const timeval &time)
{
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

} // namespace

int main(int argc, char **argv)
{
    std::array<int, 2> pipe {};
    if (argc < 3 || pipe2(pipe.data(), O_CLOEXEC) != 0) {
        std::fputs("usage: bench_launch COPIES PROGRAM [ARGUMENT...]\n", stderr);
        return 2;
    }
    posix_spawn_file_actions_t streams {};
    posix_spawn_file_actions_init(&streams);
    posix_spawn_file_actions_adddup2(&streams, pipe[1], STDOUT_FILENO);

    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const auto sinceStart = [start](Clock::time_point moment) {
        return std::chrono::duration<double, std::milli>(moment - start).count();
    };
    std::vector<pid_t> copies(static_cast<std::size_t>(std::atoi(argv[1])));
    for (pid_t &copy : copies) {
        if (posix_spawnp(&copy, argv[2], &streams, nullptr, &argv[2], environ) != 0) {
            std::perror(argv[2]);
            return 2;
        }
    }
    close(pipe[1]);

    std::array<char, 65536> block {};
    Clock::time_point answered = start;
    long bytes = 0;
    long lines = 0;
    for (ssize_t got = 0; (got = read(pipe[0], block.data(), block.size())) > 0;) {
        answered = Clock::now();
        bytes += got;
        lines += std::count(block.data(), block.data() + got, '\n');
    }
    int failed = 0;
    for (const pid_t copy : copies) {
        int status = 0;
        waitpid(copy, &status, 0);
        failed += status != 0 ? 1 : 0;
    }
    const Clock::time_point ended = Clock::now();
    rusage used {};
    getrusage(RUSAGE_CHILDREN, &used);
    std::printf("%.3f %.3f %.3f %ld %ld %ld %d\n", sinceStart(answered), sinceStart(ended),
                milliseconds(used.ru_utime) + milliseconds(used.ru_stime), used.ru_maxrss, bytes,
                lines, failed);
    return 0;
}
