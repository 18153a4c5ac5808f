// SPDX-License-Identifier: MIT
// How long GET takes for arrays of growing length: from the start of the program to the whole
// answer, and what each element adds to that.
#include "tests/support/fakeservice.h"
#include "tests/support/movrarun.h"
#include "tests/support/program.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace
{

/// A reply with this many doubles, as GVariant text.
QByteArray reply(int count)
{
    QByteArray text = "(<[0.5";
    for (int i = 1; i < count; ++i) {
        text += ", " + QByteArray::number(i + 0.5);
    }
    return text + "]>,)";
}

/// Milliseconds from the start of the program to its last line; negative if the answer is not
/// whole.
double answerTime(int count)
{
    Program movra(MOVRA_PROGRAM, { "com.varn.tul", "/", "GET", ":x:doubleARRAY:" },
                  busEnvironment());
    const bool whole = movra.waitForLines(count);
    const std::chrono::duration<double, std::milli> time =
        std::chrono::steady_clock::now() - movra.started;
    return whole ? time.count() : -1;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main()
{
    constexpr int runs = 7;
    FakeService service;
    double ofOne = 0;
    std::printf("GET of an array of doubles, medians of %d runs\n\n", runs);
    std::printf("%10s %12s %16s\n", "elements", "ms", "us per element");
    for (const int count : { 1, 1000, 10000, 100000, 1000000 }) {
        service.answer("GetValue", reply(count));
        std::vector<double> times(runs);
        std::generate(times.begin(), times.end(), [count] { return answerTime(count); });
        if (*std::min_element(times.begin(), times.end()) < 0) {
            std::printf("%10d: an answer was not whole\n", count);
            return 1;
        }
        const double time = median(times);
        if (count == 1) {
            ofOne = time;
            std::printf("%10d %12.2f\n", count, time);
        } else {
            std::printf("%10d %12.2f %16.3f\n", count, time, (time - ofOne) * 1000 / count);
        }
        service.takeCalls();
    }
    return 0;
}
