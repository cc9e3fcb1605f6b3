#include "Failure.h"

#include "Text.h"

namespace z3d::files {

void Refuse(const std::filesystem::path& path, const std::string& reason) {
    throw FileFailure("cannot use " + Shown(path) + ": " + reason);
}

} // namespace z3d::files
