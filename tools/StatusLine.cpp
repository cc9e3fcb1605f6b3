#include "StatusLine.h"

#include <string>

#include "Console.h"

namespace z3d::tools {

void StatusLine::Show(std::string_view text) {
    Clear();
    PrintError(text);
    length_ = text.size();
}

void StatusLine::Clear() {
    if (length_ == 0) return;
    PrintError("\r" + std::string(length_, ' ') + "\r");
    length_ = 0;
}

} // namespace z3d::tools
