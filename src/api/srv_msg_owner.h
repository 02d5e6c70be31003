// The request and reply record of one call. On the way out it may carry a
// PIN or password in its command line, on the way back reply text the caller
// has not asked to keep: it is wiped on every way out of the call.
#pragma once

#include "atapi/at_types.h"
#include "platform/bounded.h"

namespace atapi::api {

class OwnedSrvMsg {
  public:
    OwnedSrvMsg() { Wipe(); }
    ~OwnedSrvMsg() { Wipe(); }
    OwnedSrvMsg(const OwnedSrvMsg &) = delete;
    OwnedSrvMsg &operator=(const OwnedSrvMsg &) = delete;

    AtSrvMsg *Get() { return &msg_; }
    int32_t RetVal() const { return msg_.sndRcvMsg.rMsg.retVal; }
    char *Report() { return msg_.sndRcvMsg.rMsg.atReportStr; }
    void WipeReport() { memset_s(Report(), AT_REPORT_STR_LEN, 0, AT_REPORT_STR_LEN); }
    void Wipe() { memset_s(&msg_, sizeof msg_, 0, sizeof msg_); }

  private:
    AtSrvMsg msg_;
};

}  // namespace atapi::api
