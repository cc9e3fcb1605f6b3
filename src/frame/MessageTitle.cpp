#include "frame/MessageTitle.h"

#include "platform/Heap.h"

#include <cstddef>
#include <cstring>

namespace z3d::frame {
namespace {

constexpr const char* kDefaultTitle = "Zentra3DRendering";

char* messageTitle = nullptr;

} // namespace

const char* SetRenderMsgTitle(const char* title) {
    if (title == nullptr) return messageTitle;
    const std::size_t bytes = std::strlen(title) + 1;
    auto* copy = static_cast<char*>(platform::HeapAllocate(bytes));
    if (copy == nullptr) return nullptr;
    std::memcpy(copy, title, bytes);

    // Only now: `title` may be the old copy.
    ReleaseMessageTitle();
    messageTitle = copy;
    return messageTitle;
}

const char* MessageTitle() { return messageTitle != nullptr ? messageTitle : kDefaultTitle; }

void ReleaseMessageTitle() {
    platform::HeapFree(messageTitle);
    messageTitle = nullptr;
}

} // namespace z3d::frame
