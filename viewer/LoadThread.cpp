#include "LoadThread.h"

#include <new>
#include <thread>

namespace z3d::viewer {

void LoadThread::Start(const Source& source) {
    Cancel();
    auto job = std::make_shared<Job>();
    job->source = source;
    // Not joined: a load may hang in the file system, and closing must not wait for it.
    std::thread([job, notify = notify_] {
        std::unique_ptr<LoadResult> result = Work(*job);
        {
            const std::scoped_lock lock(job->mutex);
            job->result = std::move(result);
        }
        if (!job->cancelled) notify();
    }).detach();
    current_ = std::move(job);
}

std::unique_ptr<LoadResult> LoadThread::Work(Job& job) {
    auto result = std::make_unique<LoadResult>();
    result->source = job.source;
    try {
        const auto progress = [&job](double done) {
            job.done = done;
            return !job.cancelled;
        };
        result->volume = std::make_shared<LoadedVolume>(LoadVolume(job.source, progress));
    } catch (const std::bad_alloc&) {
        result->failure = "not enough memory to load " + job.source.Name();
    } catch (const std::exception& problem) {
        result->failure = problem.what();
    }
    return result;
}

void LoadThread::Cancel() {
    if (current_ != nullptr) current_->cancelled = true;
    current_.reset();
}

std::unique_ptr<LoadResult> LoadThread::Take() {
    if (current_ == nullptr) return nullptr;
    std::unique_ptr<LoadResult> result;
    {
        const std::scoped_lock lock(current_->mutex);
        result = std::move(current_->result);
    }
    if (result != nullptr) current_.reset();
    return result;
}

} // namespace z3d::viewer
