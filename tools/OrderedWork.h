// Numbered pieces of work on several threads, whose results come out in the order of their numbers.
#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <map>
#include <mutex>

namespace z3d::tools {

template <class Result>
class OrderedWork {
public:
    // `deliver` is called with one result after another, on whatever thread, never on two at once. At most
    // `ahead` results wait for an earlier one.
    OrderedWork(int first, int end, int ahead, std::function<void(int, const Result&)> deliver)
        : next_(first), delivered_(first), end_(end), ahead_(ahead), deliver_(std::move(deliver)) {}

    // What a thread does until nothing is left. The first failure, of work or delivery, ends it on all threads.
    void Work(const std::function<Result(int)>& make) {
        try {
            for (int number = Claim(); number < end_; number = Claim())
                Deliver(number, make(number));
        } catch (...) {
            const std::lock_guard lock(mutex_);
            if (failure_ == nullptr) failure_ = std::current_exception();
            changed_.notify_all();
        }
    }

    // After all threads have ended.
    void Rethrow() const {
        if (failure_ != nullptr) std::rethrow_exception(failure_);
    }

private:
    int Claim() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return failure_ != nullptr || next_ < delivered_ + ahead_; });
        return failure_ != nullptr ? end_ : next_ < end_ ? next_++ : end_;
    }

    void Deliver(int number, Result result) {
        const std::lock_guard lock(mutex_);
        waiting_.emplace(number, std::move(result));
        for (auto first = waiting_.begin(); first != waiting_.end() && first->first == delivered_;
             first = waiting_.begin()) {
            deliver_(first->first, first->second);
            waiting_.erase(first);
            ++delivered_;
        }
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<int, Result> waiting_;
    std::exception_ptr failure_;
    int next_;
    int delivered_;
    int end_;
    int ahead_;
    std::function<void(int, const Result&)> deliver_;
};

} // namespace z3d::tools
