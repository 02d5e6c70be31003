// atserver's two queues: requests come in on one (project id 2), replies go
// out on the other (project id 1).
#pragma once

#include <cstddef>

#include "atapi/at_types.h"

namespace atserver {

// What a received record asks for.
enum class RecordKind {
    kCommand,     // reqType 0 with a usable command line
    kBadCommand,  // reqType 0 that cannot be sent to the modem: answered ERROR
    kControl,     // reqType 6, 7 or 8
    kMalformed,   // wrong size or unknown reqType: dropped
};

// payloadLen is the size of the record behind its type word as received.
RecordKind ClassifyRecord(const AtSrvMsg &msg, size_t payloadLen);

struct IncomingRecord {
    AtSrvMsg msg;
    RecordKind kind;
};

// Waits for the next record of any type on request queue qid and decodes it
// into *record. A malformed record is logged and wiped (its kind says so).
// False, with errno set, when the queue cannot be read.
bool ReceiveRequest(int qid, IncomingRecord *record);

class RequestQueues {
  public:
    RequestQueues() = default;
    ~RequestQueues();
    RequestQueues(const RequestQueues &) = delete;
    RequestQueues &operator=(const RequestQueues &) = delete;

    // Removes the queues a crashed run left behind and creates both.
    bool Create();
    // The records the reply queue holds (known after Create).
    size_t ReplyRoom() const { return replyRoom_; }
    // The request queue served now (-1 when there is none).
    int RequestQid() const { return requestQid_; }
    // Deletes both queues (also done by the destructor).
    void Destroy();
    // A queue removed from outside (or not had since) is taken again by its
    // key: the one made again by whoever removed it, or a new one.
    void Recover();

    enum class SendResult { kSent, kFull, kFailed };
    SendResult SendReply(const AtSrvMsg &reply);
    // Replies not yet taken (0 when that cannot be read).
    size_t RepliesWaiting() const;
    // Drops the oldest unread reply (the queue is full of replies that no
    // client came for). False when there was none.
    bool DropOldestReply();

  private:
    void RecoverQueue(int *qid, int projId, const char *name);
    int requestQid_ = -1;
    int replyQid_ = -1;
    size_t replyRoom_ = 0;
};

}  // namespace atserver
