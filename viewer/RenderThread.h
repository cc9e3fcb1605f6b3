// Renders on a thread of its own. The newest request wins: one that is overtaken before it began is never rendered.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include "Frame.h"

namespace z3d::viewer {

class RenderThread {
public:
    // `notify` is called on the rendering thread when a frame waits.
    explicit RenderThread(std::function<void()> notify);
    RenderThread(const RenderThread&) = delete;
    RenderThread& operator=(const RenderThread&) = delete;
    // Waits for the picture that is being rendered.
    ~RenderThread();

    void Ask(const View& view, const std::shared_ptr<LoadedVolume>& volume);

    // The newest finished frame, if it was not taken yet.
    std::shared_ptr<const Frame> Take();

private:
    struct Request {
        View view;
        std::shared_ptr<LoadedVolume> volume;
    };

    void Run();
    std::optional<Request> Next();

    std::function<void()> notify_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<Request> wanted_;
    std::shared_ptr<const Frame> finished_;
    bool stopping_ = false;
    std::thread thread_; // last: it uses all others
};

} // namespace z3d::viewer
