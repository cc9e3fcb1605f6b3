// The caption of the library's message boxes: the one thing that is kept between calls. Unguarded.
#pragma once

namespace z3d::frame {

// Keeps a copy of `title` in place of the current title and returns the copy, which stays valid until the next
// call that succeeds, or until the library is unloaded. The current title itself may be given. Null changes
// nothing and returns the current title, or null when there is none; so does, returning null, a copy that
// cannot be had.
const char* SetRenderMsgTitle(const char* title);

// The current title, or the library's name before the first.
const char* MessageTitle();

// Frees the title: for the library's unloading.
void ReleaseMessageTitle();

} // namespace z3d::frame
