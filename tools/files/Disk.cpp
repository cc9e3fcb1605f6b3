#include "ByteStream.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#if defined(_WIN32)
#include <share.h>
#include <stdlib.h>
#endif

#include "Failure.h"
#include "Text.h"

namespace z3d::files {

namespace {

constexpr size_t kBufferBytes = 1 << 18;

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileOwner = std::unique_ptr<std::FILE, Closer>;

#if defined(_WIN32)

// Others may read the file meanwhile, nobody may write it.
std::FILE* OpenFile(const std::filesystem::path& path) { return _wfsopen(path.c_str(), L"rb", _SH_DENYWR); }
int Seek(std::FILE* file, uint64_t offset, int from) {
    return _fseeki64(file, static_cast<int64_t>(offset), from);
}
int64_t Tell(std::FILE* file) { return _ftelli64(file); }

bool IsUsedElsewhere() {
    constexpr unsigned long kSharingViolation = 32;
    return _doserrno == kSharingViolation;
}

#else

std::FILE* OpenFile(const std::filesystem::path& path) { return std::fopen(path.c_str(), "rb"); }
int Seek(std::FILE* file, uint64_t offset, int from) {
    return fseeko(file, static_cast<off_t>(offset), from);
}
int64_t Tell(std::FILE* file) { return ftello(file); }
bool IsUsedElsewhere() { return false; }

#endif

bool IsFolderOnDisk(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

std::string OpenFailure(const std::filesystem::path& path, int error) {
    const std::string start = "cannot open " + Shown(path) + ": ";
    if (IsFolderOnDisk(path)) return start + "it is a folder";
    if (error == ENOENT) {
        const bool hasFolder = !path.has_parent_path() || IsFolderOnDisk(path.parent_path());
        return start + (hasFolder ? "there is no such file" : "there is no such folder");
    }
    if (error == EINVAL) return start + "the name is not valid";
    if (IsUsedElsewhere()) return start + "another program uses it";
    if (error == EACCES) return start + "access is denied";
    return start + Format("system error %d", error);
}

class DiskFile : public ByteStream {
public:
    explicit DiskFile(const std::filesystem::path& path) : path_(path), file_(Opened(path)) {
        std::setvbuf(file_.get(), nullptr, _IOFBF, kBufferBytes);
        if (Seek(file_.get(), 0, SEEK_END) == 0) size_ = static_cast<uint64_t>(Tell(file_.get()));
        Seek(file_.get(), 0, SEEK_SET);
    }

    size_t Read(void* bytes, size_t count) override {
        const size_t got = std::fread(bytes, 1, count, file_.get());
        if (got < count && std::ferror(file_.get()) != 0)
            throw FileFailure("cannot read " + Shown(path_) + ": " + Format("system error %d", errno));
        return got;
    }

    std::optional<uint64_t> Size() const override { return size_; }

    bool Skip(uint64_t count) override {
        const auto here = static_cast<uint64_t>(Tell(file_.get()));
        if (here > size_ || count > size_ - here) return false;
        return Seek(file_.get(), here + count, SEEK_SET) == 0;
    }

private:
    static std::FILE* Opened(const std::filesystem::path& path) {
        std::FILE* const file = IsFolderOnDisk(path) ? nullptr : OpenFile(path);
        if (file == nullptr) throw FileFailure(OpenFailure(path, errno));
        return file;
    }

    std::filesystem::path path_;
    FileOwner file_;
    uint64_t size_ = 0;
};

class DiskFiles : public FileSystem {
public:
    std::unique_ptr<ByteStream> Open(const std::filesystem::path& path) const override {
        return std::make_unique<DiskFile>(path);
    }

    bool Exists(const std::filesystem::path& path) const override {
        std::error_code ignored;
        return std::filesystem::exists(path, ignored);
    }

    bool IsFolder(const std::filesystem::path& path) const override { return IsFolderOnDisk(path); }

    std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder) const override {
        std::error_code error;
        std::vector<std::filesystem::path> files;
        for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end;
             at.increment(error))
            if (!IsFolderOnDisk(at->path())) files.push_back(at->path());
        if (error) throw FileFailure("cannot list " + Shown(folder) + ": there is no such folder");
        return files;
    }
};

} // namespace

bool ByteStream::Skip(uint64_t count) {
    std::vector<unsigned char> unwanted(count < kBufferBytes ? static_cast<size_t>(count) : kBufferBytes);
    while (count > 0) {
        const size_t wanted = count < unwanted.size() ? static_cast<size_t>(count) : unwanted.size();
        if (Read(unwanted.data(), wanted) < wanted) return false;
        count -= wanted;
    }
    return true;
}

const FileSystem& Disk() {
    static const DiskFiles disk;
    return disk;
}

} // namespace z3d::files
