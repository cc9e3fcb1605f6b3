// One line of the error stream that is written over and over. Only for a console.
#pragma once

#include <cstddef>
#include <string_view>

namespace z3d::tools {

class StatusLine {
public:
    StatusLine() = default;
    // A failure message must not start in the middle of the line.
    ~StatusLine() { Clear(); }
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    // ASCII, shorter than the console is wide.
    void Show(std::string_view text);
    void Clear();

private:
    size_t length_ = 0;
};

} // namespace z3d::tools
