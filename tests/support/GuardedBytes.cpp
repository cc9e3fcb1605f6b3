#include "support/GuardedBytes.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace z3d::test {

namespace {

#ifdef _WIN32
std::size_t PageBytes() {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    return system.dwPageSize;
}
void* Reserve(std::size_t bytes) {
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}
bool Protect(void* page, std::size_t bytes) {
    DWORD before = 0;
    return VirtualProtect(page, bytes, PAGE_NOACCESS, &before) != 0;
}
void Release(void* pages, std::size_t) { VirtualFree(pages, 0, MEM_RELEASE); }
#else
std::size_t PageBytes() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }
void* Reserve(std::size_t bytes) {
    void* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}
bool Protect(void* page, std::size_t bytes) { return mprotect(page, bytes, PROT_NONE) == 0; }
void Release(void* pages, std::size_t bytes) { munmap(pages, bytes); }
#endif

std::string whatIsDone;
void (*handlerBefore)(int) = SIG_DFL;

void Report(int) {
    std::fprintf(stderr, "a guard page was accessed: %s\n", whatIsDone.c_str());
    std::fflush(stderr);
    std::_Exit(FaultReport::kExitCode);
}

} // namespace

GuardedBytes::GuardedBytes(std::size_t bytes, GuardedEnd end) {
    const std::size_t page = PageBytes();
    const std::size_t inner = (bytes + page - 1) / page * page;
    reserved_ = inner + 2 * page;
    pages_ = static_cast<std::uint8_t*>(Reserve(reserved_));
    if (pages_ == nullptr) throw std::bad_alloc();
    if (!Protect(pages_, page) || !Protect(pages_ + page + inner, page)) {
        Release(pages_, reserved_);
        throw std::bad_alloc();
    }
    bytes_ = pages_ + page + (end == GuardedEnd::First ? 0 : inner - bytes);
}

GuardedBytes::GuardedBytes(GuardedBytes&& other) noexcept
    : pages_(std::exchange(other.pages_, nullptr)), reserved_(other.reserved_), bytes_(other.bytes_) {}

GuardedBytes::~GuardedBytes() {
    if (pages_ != nullptr) Release(pages_, reserved_);
}

FaultReport::FaultReport() { handlerBefore = std::signal(SIGSEGV, Report); }
FaultReport::~FaultReport() { std::signal(SIGSEGV, handlerBefore); }
void FaultReport::Say(const std::string& doing) { whatIsDone = doing; }

} // namespace z3d::test
