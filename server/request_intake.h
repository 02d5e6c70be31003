// Takes each request off atserver's request queue the moment it arrives: a
// thread of its own waits in msgrcv, so that the kernel queue stays (nearly)
// empty whatever room the kernel gives it, and requests wait here instead
// until the event loop, woken through WakeFd(), takes them.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "request_queues.h"

namespace atserver {

class RequestIntake {
  public:
    RequestIntake() = default;
    ~RequestIntake() { Stop(); }
    RequestIntake(const RequestIntake &) = delete;
    RequestIntake &operator=(const RequestIntake &) = delete;

    // Starts taking from queue qid; false when the thread or its wake-up
    // descriptor cannot be made. The thread keeps the signal mask of its
    // creator: atserver's signals stay with the event loop's signalfd.
    bool Start(int qid);
    // Readable while records wait to be taken.
    int WakeFd() const { return wakeFd_; }
    // The queue to take from now: a new one after a recovery, or the same one
    // again after a read of it failed (tried again once per call, never in a
    // loop of its own). -1: none, wait.
    void Serve(int qid);
    // The records taken since the last call, in arrival order, malformed ones
    // left out.
    std::vector<IncomingRecord> Take();
    // Stops and joins the thread. Records it took that were never served go
    // the way of those still in the kernel queue when atserver stops.
    void Stop();

  private:
    void Run();
    bool NextQueue(int *qid);                                            // false when stopping
    bool Publish(int qid, bool received, const IncomingRecord &record);  // false when stopping

    std::mutex mutex_;
    std::condition_variable changed_;
    int qid_ = -1;
    bool failed_ = false;  // reading qid_ failed: wait for the next Serve
    bool stopping_ = false;
    std::vector<IncomingRecord> taken_;
    int wakeFd_ = -1;
    std::thread thread_;
};

}  // namespace atserver
