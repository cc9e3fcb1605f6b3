// One line per check on standard output, and the count of what failed.
#pragma once

#include <cstdarg>
#include <cstdio>

namespace z3d::sdk {

class Report {
public:
    // `details` is a format of printf.
    [[gnu::format(printf, 4, 5)]] void Check(bool passed, const char* name, const char* details, ...) {
        ++checks_;
        if (!passed) ++failures_;
        std::va_list values;
        va_start(values, details);
        Print(passed ? "ok" : "FAILED", name, details, values);
        va_end(values);
    }

    [[gnu::format(printf, 3, 4)]] void Note(const char* name, const char* details, ...) {
        std::va_list values;
        va_start(values, details);
        Print("", name, details, values);
        va_end(values);
    }

    int Checks() const { return checks_; }
    int Failures() const { return failures_; }

private:
    static void Print(const char* verdict, const char* name, const char* details, std::va_list values) {
        std::printf("%-7s %-10s ", verdict, name);
        std::vprintf(details, values);
        std::printf("\n");
    }

    int checks_ = 0;
    int failures_ = 0;
};

} // namespace z3d::sdk
