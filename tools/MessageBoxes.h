// The library tells its user some failures in a message box. A command may run where no one can close it.
#pragma once

namespace z3d::tools {

// While it lives, message boxes of this thread return at once, unseen.
class NoMessageBoxes {
public:
    NoMessageBoxes();
    ~NoMessageBoxes();
    NoMessageBoxes(const NoMessageBoxes&) = delete;
    NoMessageBoxes& operator=(const NoMessageBoxes&) = delete;

private:
    void* hook_;
};

} // namespace z3d::tools
