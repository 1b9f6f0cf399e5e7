#pragma once

#include <QString>
#include <chrono>
#include <vector>

class SourceView;

namespace Bench {

// Types `count` characters one key at a time at a place in the view, each painted before the
// next as the component asks, as a user would; gives the median time of a key in microseconds.
double TypeKeys(SourceView& view, int line, int column, int count = 1000);

// A MultiValue BASIC program of `lines` lines, about 53 bytes a line on average (so 53 MB
// for the default million): labels,
// nested IF/FOR/LOOP blocks, comments, strings with marks, CALLs and GOSUBs.
QString Program(int lines = 1000000);

// Prints one figure as "BENCH name=<name> value=<number> unit=<unit>".
void Report(const char* name, double value, const char* unit);

double Median(std::vector<double> values);

class Stopwatch {
public:
    Stopwatch() : start_(std::chrono::steady_clock::now()) {}
    double Ms() const { return Us() / 1000.0; }
    double Us() const {
        return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start_)
            .count();
    }

private:
    std::chrono::steady_clock::time_point start_;
};

} // namespace Bench
