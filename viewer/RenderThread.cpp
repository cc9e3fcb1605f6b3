#include "RenderThread.h"

#include <utility>

namespace z3d::viewer {

RenderThread::RenderThread(std::function<void()> notify)
    : notify_(std::move(notify)), thread_([this] { Run(); }) {}

RenderThread::~RenderThread() {
    {
        const std::scoped_lock lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void RenderThread::Ask(const View& view, const std::shared_ptr<LoadedVolume>& volume) {
    {
        const std::scoped_lock lock(mutex_);
        wanted_ = Request{view, volume};
    }
    changed_.notify_all();
}

std::shared_ptr<const Frame> RenderThread::Take() {
    const std::scoped_lock lock(mutex_);
    return std::exchange(finished_, nullptr);
}

std::optional<RenderThread::Request> RenderThread::Next() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return stopping_ || wanted_; });
    if (stopping_) return std::nullopt;
    return std::exchange(wanted_, std::nullopt);
}

void RenderThread::Run() {
    std::shared_ptr<const Frame> last;
    while (const std::optional<Request> request = Next()) {
        last = MakeFrame(request->view, request->volume, last.get());
        {
            const std::scoped_lock lock(mutex_);
            finished_ = last;
        }
        notify_();
    }
}

} // namespace z3d::viewer
