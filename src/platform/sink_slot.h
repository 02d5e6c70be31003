// A process-wide slot for one test or tool sink: a callback and its context.
#pragma once

#include <atomic>
#include <mutex>

namespace platform {

template <typename Sink>
class SinkSlot {
  public:
    void Install(Sink sink, void *ctx) {
        std::lock_guard<std::mutex> guard(lock_);
        sink_ = sink;
        ctx_ = ctx;
        installed_.store(sink != nullptr, std::memory_order_release);
    }

    // Cheap check that lets callers skip work nobody will see.
    bool Installed() const { return installed_.load(std::memory_order_acquire); }

    // Call and CallFor run the sink under the slot's lock (sinks need not
    // lock themselves); false when none is installed. CallFor keeps the
    // sink's result.
    template <typename Result, typename... Args>
    bool CallFor(Result *result, Args... args) {
        std::lock_guard<std::mutex> guard(lock_);
        if (sink_ == nullptr) return false;
        *result = sink_(ctx_, args...);
        return true;
    }
    template <typename... Args>
    bool Call(Args... args) {
        std::lock_guard<std::mutex> guard(lock_);
        if (sink_ == nullptr) return false;
        sink_(ctx_, args...);
        return true;
    }

  private:
    std::atomic<bool> installed_{false};
    std::mutex lock_;
    Sink sink_ = nullptr;
    void *ctx_ = nullptr;
};

}  // namespace platform
