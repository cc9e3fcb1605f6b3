// Loads volumes on threads of their own. The newest load counts; older ones are cancelled and forgotten.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "VolumeLoad.h"

namespace z3d::viewer {

// What became of a load: a volume, or a sentence, or neither after a cancel.
struct LoadResult {
    Source source;
    std::shared_ptr<LoadedVolume> volume;
    std::string failure;
};

class LoadThread {
public:
    // `notify` is called on the loading thread when a result waits.
    explicit LoadThread(std::function<void()> notify) : notify_(std::move(notify)) {}
    ~LoadThread() { Cancel(); }
    LoadThread(const LoadThread&) = delete;
    LoadThread& operator=(const LoadThread&) = delete;

    void Start(const Source& source);
    void Cancel();

    bool Running() const { return current_ != nullptr; }
    const Source& Loading() const { return current_->source; }
    double Done() const { return current_->done; } // 0 to 1

    // The result of the newest load once it is there; nothing while it runs or after a cancel.
    std::unique_ptr<LoadResult> Take();

private:
    // Shared with the thread that works on it; lives as long as either needs it.
    struct Job {
        Source source;
        std::atomic<bool> cancelled = false;
        std::atomic<double> done = 0;
        std::mutex mutex;
        std::unique_ptr<LoadResult> result;
    };

    static std::unique_ptr<LoadResult> Work(Job& job);

    std::function<void()> notify_;
    std::shared_ptr<Job> current_;
};

} // namespace z3d::viewer
