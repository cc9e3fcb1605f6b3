#include "platform/File.h"

#include "platform/Refusal.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace z3d::platform {
namespace {

constexpr int kNotOpen = -1;

// A signal that the host handles meanwhile is no failure.
int Open(const char* name, int flags) {
    int opened;
    do {
        opened = open(name, flags | O_RDONLY | O_CLOEXEC);
    } while (opened == kNotOpen && errno == EINTR);
    return opened;
}

int OpenForReading(const char* name) {
    if (name == nullptr || IsRefused(Resource::FileOpen)) return kNotOpen;
    // Unlike on Windows a directory can be opened here. (Asking for its kind takes a C library of 2021.)
    const int directory = Open(name, O_DIRECTORY);
    if (directory == kNotOpen) return Open(name, 0);
    close(directory);
    return kNotOpen;
}

} // namespace

File::File(const char* name) : handle_(OpenForReading(name)) {
    if (IsOpen()) NoteGranted(Resource::FileOpen);
}

File::~File() {
    if (!IsOpen()) return;
    NoteReleased(Resource::FileOpen);
    close(static_cast<int>(handle_));
}

bool File::IsOpen() const { return handle_ != kNotOpen; }

std::size_t File::Read(void* to, std::size_t bytes) {
    if (!IsOpen() || IsRefused(Resource::FileRead)) return 0;
    // One call of the system reads up to 2 GiB.
    std::size_t got = 0;
    while (got < bytes) {
        const ssize_t now =
            read(static_cast<int>(handle_), static_cast<std::uint8_t*>(to) + got, bytes - got);
        if (now < 0 && errno == EINTR) continue; // as above
        if (now <= 0) break;
        got += static_cast<std::size_t>(now);
    }
    return got;
}

} // namespace z3d::platform
