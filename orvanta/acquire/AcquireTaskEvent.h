#pragma once
// AcquireTaskEvent: what the scan and copy tasks tell their listener, through sendEventLater.
//
// Contract: kind is always kTaskKind; task is the sender's address, for the receiver to tell the
// two tasks apart; code is one of the codes below. A kItem event carries the asset's id and, from
// the copy task, the path of the copy (empty from the scan task).

#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class Task;

class AcquireTaskEvent : public Event {
public:
    static constexpr int kTaskKind = 2;
    enum Code : int { kStarted = 0, kFinished = 1, kStopped = 2, kError = 3, kItem = 4 };

    static AcquireTaskEvent* create(Task* task, int code, const UniqueID& id = UniqueID(),
                                    const CString& path = CString()) {
        return new AcquireTaskEvent(task, code, id, path);
    }

    int getKind() const { return kTaskKind; }
    Task* getTask() const { return mTask; }
    int getTaskCode() const { return getCode(); }
    const UniqueID& getID() const { return mID; }
    const CString& getPath() const { return mPath; }

private:
    AcquireTaskEvent(Task* task, int code, const UniqueID& id, const CString& path)
        : Event(code), mTask(task), mID(id), mPath(path) {}

    Task* mTask;
    UniqueID mID;
    CString mPath;
};

}  // namespace Orvanta
